#include "lexer/keywords.h"

#include <array>
#include <string>
#include <unordered_map>

#include "lexer/token_text.h"

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, keywordCount> texts = {
    "",
    "autocall",
    "case",
    "const",
    "continue",
    "default",
    "eachseq",
    "element",
    "else",
    "elseif",
    "end",
    "endelement",
    "endextern",
    "endfunction",
    "endif",
    "endinlinecpp",
    "endmethod",
    "endprecalc",
    "endselect",
    "endtype",
    "endwith",
    "exit",
    "extern",
    "field",
    "for",
    "forever",
    "function",
    "global",
    "if",
    "import",
    "include",
    "inlinecpp",
    "input",
    "linker",
    "local",
    "method",
    "next",
    "nextseq",
    "precalc",
    "print",
    "private",
    "public",
    "remove",
    "repeat",
    "return",
    "select",
    "seqadd",
    "seqaddfirst",
    "seqclear",
    "seqdelete",
    "seqdeleteat",
    "seqfromarray",
    "seqinsert",
    "seqreverse",
    "seqset",
    "seqsort",
    "seqswap",
    "stopcall",
    "type",
    "until",
    "useconsole",
    "wend",
    "while",
    "with",
    "as",
    "each",
    "eachin",
    "in",
    "its",
    "of",
    "sequence",
    "step",
    "then",
    "to",
    "and",
    "bitand",
    "bitnot",
    "bitor",
    "bitxor",
    "mod",
    "not",
    "or",
    "shl",
    "shr",
    "after",
    "before",
    "create",
    "false",
    "first",
    "getkey",
    "insert",
    "last",
    "new",
    "null",
    "seqbefore",
    "seqfirst",
    "seqlast",
    "seqnext",
    "seqremovefirst",
    "seqremovelast",
    "this",
    "true",
};

constexpr std::size_t longest = 14;

std::unordered_map<std::string_view, Keyword> MakeIndex() {
    std::unordered_map<std::string_view, Keyword> index;
    for (std::size_t i = 1; i < keywordCount; ++i) index.emplace(texts[i], static_cast<Keyword>(i));
    return index;
}

}  // namespace

std::string_view TextOf(Keyword keyword) { return texts[IndexOf(keyword)]; }

Keyword FindKeyword(std::string_view text) {
    static const std::unordered_map<std::string_view, Keyword> index = MakeIndex();
    if (text.empty() || text.size() > longest) return Keyword::None;
    std::array<char, longest> lower{};
    for (std::size_t i = 0; i < text.size(); ++i) lower[i] = LowerLetter(text[i]);
    const auto found = index.find(std::string_view(lower.data(), text.size()));
    return found == index.end() ? Keyword::None : found->second;
}
