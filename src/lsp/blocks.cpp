#include "lsp/blocks.h"

#include "base/token_span.h"
#include "lexer/lexer.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

Keyword CloserOf(Kind kind) {
    switch (kind) {
        case Kind::Type:
            return Keyword::EndType;
        case Kind::Element:
            return Keyword::EndElement;
        case Kind::Method:
            return Keyword::EndMethod;
        case Kind::Function:
            return Keyword::EndFunction;
        default:
            return Keyword::None;
    }
}

}  // namespace

int LastLine(const Lines& lines, const korvel::Symbol& symbol) {
    const Keyword closer = CloserOf(symbol.kind);
    Lexer lexer;
    for (int i = symbol.line - 1; closer != Keyword::None && i < lines.Count(); ++i) {
        lexer.Cut(lines.Line(i));
        for (const Token token : lexer.tokens)
            if (token->keyword == closer) return i;
    }
    return symbol.line - 1;
}

Json WholeRange(Workspace& workspace, const korvel::Symbol& symbol) {
    const Lines& lines = workspace.LinesOf(symbol.file);
    const int last = LastLine(lines, symbol);
    return {{"start", {{"line", symbol.line - 1}, {"character", 0}}},
            {"end", {{"line", last}, {"character", UnitOf(lines.Line(last), std::string::npos)}}}};
}

}  // namespace lsp
