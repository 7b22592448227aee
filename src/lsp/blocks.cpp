#include "lsp/blocks.h"

#include "base/token_span.h"
#include "lexer/lexer.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

Keyword OpenerOf(Kind kind) {
    switch (kind) {
        case Kind::Type:
        case Kind::Element:
            return Keyword::Type;
        case Kind::Method:
            return Keyword::Method;
        case Kind::Function:
            return Keyword::Function;
        default:
            return Keyword::None;
    }
}

// A Type may end with EndElement, and the other way round.
Keyword AsOne(Keyword opener) { return opener == Keyword::Element ? Keyword::Type : opener; }

}  // namespace

int LastLine(const Lines& lines, const korvel::Symbol& symbol) {
    const int first = symbol.line - 1;
    const Keyword opener = OpenerOf(symbol.kind);
    Lexer lexer;
    for (int i = first; opener != Keyword::None && i < lines.Count(); ++i) {
        lexer.Cut(lines.Line(i));
        const Keyword begun = TokenSpan(lexer.tokens).KeywordAt(0);
        if (begun == Keyword::EndExtern || (i > first && AsOne(begun) == opener)) break;
        for (const Token token : lexer.tokens)
            if (AsOne(BlockOf(token->keyword)) == opener) return i;
    }
    return first;
}

Json WholeRange(Workspace& workspace, const korvel::Symbol& symbol) {
    const Lines& lines = workspace.LinesOf(symbol.file);
    const int last = LastLine(lines, symbol);
    return {{"start", {{"line", symbol.line - 1}, {"character", 0}}},
            {"end", {{"line", last}, {"character", lines.UnitOf(last, std::string::npos)}}}};
}

}  // namespace lsp
