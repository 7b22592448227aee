#include "statements/with.h"
#include "statements/handlers.h"

#include <algorithm>

#include "base/report.h"
#include "lexer/holes.h"
#include "statements/open_ifs.h"
#include "statements/words.h"
#include "symbols/scopes.h"

namespace {

// Whether `its` stands at `at` as a word of its own.
bool ItsAt(const std::string& text, std::size_t at) {
    if (!IsWord(text.substr(at, 3), "its")) return false;
    return (at == 0 || !IsNameByte(text[at - 1])) && (at + 3 >= text.size() || !IsNameByte(text[at + 3]));
}

// Replaces `its` inside the holes of a string literal.
std::string SubstituteInHoles(const Word& literal, const std::string& object) {
    std::string result = "\"";
    for (const StringPiece& piece : PiecesOf(literal)) {
        if (piece.kind == StringPiece::Kind::Trouble) return literal.text;
        for (std::size_t i = piece.from; i < piece.to; ++i) {
            const bool its = piece.kind == StringPiece::Kind::Hole && ItsAt(literal.text, i);
            if (its) i += 2;
            result += its ? object : std::string(1, literal.text[i]);
        }
    }
    return result + "\"";
}

// A With on the line of an If. One that begins a statement of its own is open already when `its` is replaced.
bool OpensOnLine(TokenSpan tokens, std::size_t at) {
    return tokens.KeywordAt(at) == Keyword::With && at > 0 && BeginsStatement(tokens, at);
}

// What the innermost With is over while a statement is gone through, with those on its line; null without one.
class Objects {
public:
    explicit Objects(const State& state)
        : outer(state.withs.empty() ? nullptr : &state.withs.back().object) {}
    const Tokens* Innermost() const { return onLine.empty() ? outer : &onLine.back(); }
    void Open(const Tokens& object) { onLine.push_back(object); }
    void Close() {
        if (!onLine.empty()) onLine.pop_back();
    }

private:
    const Tokens* outer;
    std::vector<Tokens> onLine;
};

// The token with `its` replaced by the object.
void PutReplaced(Tokens& result, const Word& word, const Tokens* object) {
    if (object != nullptr && word.keyword == Keyword::Its)
        result.insert(result.end(), object->begin(), object->end());
    else if (object != nullptr && HasHoles(word))
        result.push_back(SubstituteInHoles(word, Spelling(*object)));
    else
        result.push_back(word);
}

// Whether the position ends what stands behind a With on the line.
bool EndsObject(TokenSpan tokens, std::size_t at) {
    return at >= tokens.size() || tokens.SignAt(at) == '|' || BlockOf(tokens.KeywordAt(at)) == Keyword::If;
}

}  // namespace

std::string Spelling(TokenSpan tokens) {
    std::string text;
    for (const std::string& token : tokens) {
        if (!text.empty() && IsNameByte(text.back()) && IsNameByte(token[0])) text += ' ';
        text += token;
    }
    return text;
}

// With object
// Nothing comes out: `its` becomes the object in the statements that follow.
void TranslateWith(State& state, TokenSpan tokens) {
    if (tokens.size() < 2) ReportFatal("With requires an object: With <variable>");
    Tokens object = tokens.From(1).Copy();
    if (object.size() > 1) object = SubstituteIts(state, object);
    ValueType type;
    const bool unknownName =
        object.size() == 1 && FindVariable(object[0]) == nullptr && object[0]->keyword != Keyword::This;
    if (!unknownName) {
        const Expr& expr = TranslateValue(object, ExprMode::Statement);
        type = expr.type;
        if (!expr.assignable && object[0]->keyword != Keyword::This && type.IsKnown() && !expr.isConst)
            ReportFatal("With requires a variable that holds an object, not an expression" +
                        Hint{"Put it into a Local first"});
    }
    if (!type.Is(Base::Object) && !type.Is(Base::Element)) {
        const Wording message = "With requires an object (a Type or Element), but '" + Spelling(object) +
                                "' is " + (unknownName ? Wording("", "not known here") : InWords(type));
        if (unknownName) ReportUnknown(message, object, Sought::Value);
        ReportFatal(message, object);
    }
    state.withs.push_back({std::move(object), state.place.line});
}

void OpenUnknownWith(State& state) { state.withs.push_back({{WordOf("its")}, state.place.line}); }

// EndWith
// Nothing comes out.
void TranslateEndWith(State& state, TokenSpan tokens) {
    if (state.withs.empty()) ReportFatal("EndWith without a matching With");
    RefuseMore(tokens, 1);
    state.withs.pop_back();
}

bool MentionsIts(const State& state, TokenSpan tokens) {
    bool open = !state.withs.empty();
    return std::any_of(tokens.first, tokens.last, [&open](const Token& token) {
        open = open || token->keyword == Keyword::With;
        return token->keyword == Keyword::Its || (open && HasHoles(*token));
    });
}

Tokens SubstituteIts(State& state, TokenSpan tokens) {
    Tokens result;
    result.reserve(tokens.size() + 4);
    Objects objects(state);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Keyword keyword = tokens.KeywordAt(i);
        if (keyword == Keyword::Its && objects.Innermost() == nullptr && Is(tokens[i + 1], "\\"))
            ReportFatal("'its' is only valid inside a With ... EndWith block");
        PutReplaced(result, tokens.At(i), objects.Innermost());
        if (keyword == Keyword::EndWith) objects.Close();
        if (!OpensOnLine(tokens, i)) continue;
        const std::size_t begin = result.size();
        for (; !EndsObject(tokens, i + 1); ++i) PutReplaced(result, tokens.At(i + 1), objects.Innermost());
        objects.Open(TokenSpan(result).From(begin).Copy());
    }
    return result;
}
