#include "lsp/snippets.h"

namespace lsp {

namespace {

struct SnippetRow {
    const char *word, *text;
};

constexpr SnippetRow rows[] = {
#define SNIPPET(word, text) {word, text},
#include "lsp/snippets.inc"
#undef SNIPPET
};

}  // namespace

std::string SnippetOf(const std::string& word) {
    for (const SnippetRow& row : rows)
        if (word == row.word) return row.text;
    return {};
}

}  // namespace lsp
