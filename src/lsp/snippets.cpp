#include "lsp/snippets.h"

namespace lsp {

namespace {

struct SnippetRow {
    const char *word, *text;
};

constexpr SnippetRow rows[] = {
    {"If", "If ${1:condition}\n\t$0\nEndIf"},
    {"For", "For Local ${1:i} = ${2:1} To ${3:10}\n\t$0\nNext"},
    {"While", "While ${1:condition}\n\t$0\nWend"},
    {"Repeat", "Repeat\n\t$0\nUntil ${1:condition}"},
    {"EachSeq", "EachSeq ${1:item} In ${2:list}\n\t$0\nNextSeq"},
    {"Select", "Select ${1:value}\n\tCase ${2:1}\n\t\t$0\n\t\tExit\nEndSelect"},
    {"With", "With ${1:object}\n\t$0\nEndWith"},
    {"Function", "Function ${1:Name}($2)\n\t$0\nEndFunction"},
    {"Method", "Method ${1:Name}($2)\n\t$0\nEndMethod"},
    {"Type", "Type ${1:TName}\n\tField $0\nEndType"},
    {"Element", "Element ${1:TName}\n\tField $0\nEndElement"},
};

}  // namespace

std::string SnippetOf(const std::string& word) {
    for (const SnippetRow& row : rows)
        if (word == row.word) return row.text;
    return {};
}

}  // namespace lsp
