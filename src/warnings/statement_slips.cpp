#include <algorithm>

#include "base/settings.h"
#include "expressions/constants.h"
#include "lexer/holes.h"
#include "lexer/source_lines.h"
#include "statements/state.h"
#include "symbols/scopes.h"
#include "symbols/symbols.h"
#include "warnings/slips.h"

namespace {

// A place to assign to: names, members and items, no operator.
bool IsPlace(TokenSpan tokens) {
    for (std::size_t i = 0; i < tokens.size(); i = tokens.Behind(i)) {
        const char sign = tokens.SignAt(i);
        if (sign != '\0' && sign != '\\' && sign != '.' && sign != '[') return false;
        if (Has(tokens.KeywordAt(i), trait::operation)) return false;
    }
    return !tokens.empty() && IsNameByte(tokens[0][0]) && !IsDigit(tokens[0][0]);
}

bool JoinsConditions(TokenSpan tokens) {
    return std::any_of(tokens.begin(), tokens.end(), [](const std::string& token) {
        const Keyword word = FindKeyword(token);
        return word == Keyword::And || word == Keyword::Or;
    });
}

// "a\nb" of C, which C:\news and data\new.txt are not.
bool IsEscaped(std::string_view text) {
    constexpr std::string_view letters = "ntr";
    bool found = false;
    for (std::size_t at = text.find('\\'); at < text.size(); at = text.find('\\', at + 1)) {
        if (at + 1 == text.size() || letters.find(text[at + 1]) == std::string_view::npos) return false;
        found = true;
    }
    const bool isPath =
        text.find(":\\") != std::string_view::npos || text.find('.', text.rfind('\\')) < text.size() - 1;
    return found && !isPath;
}

// Of a literal what stands outside of its holes.
std::string TextOf(const Word& literal) {
    if (!HasHoles(literal)) return std::string(Unquoted(literal.text));
    std::string text;
    for (const StringPiece& piece : PiecesOf(literal))
        if (piece.kind == StringPiece::Kind::Text)
            text += literal.text.substr(piece.from, piece.to - piece.from);
    return text;
}

struct Counting {
    std::optional<ConstantValue> start, end, step;
    bool hasStep = false;
};

// For i = start To end [Step step], as far as it is known
Counting CountingOf(TokenSpan statement) {
    Counting counting;
    const std::size_t equals = statement.FindEquals(), to = statement.Find(Keyword::To);
    if (equals == noToken || to == noToken || to < equals) return counting;
    const std::size_t step = statement.Find(Keyword::Step, to);
    counting.start = ConstantIn(statement.Slice(equals + 1, to));
    counting.end = ConstantIn(statement.Slice(to + 1, step));
    counting.hasStep = step != noToken;
    if (counting.hasStep) counting.step = ConstantIn(statement.From(step + 1));
    return counting;
}

bool IsNegative(TokenSpan tokens) {
    return tokens.SignAt(0) == '-' && tokens.size() == 2 && IsDigit(tokens[1][0]);
}

}  // namespace

ValueType TypeOfPlace(TokenSpan place) {
    const Variable* variable = FindVariable(place.At(0));
    ValueType type = variable == nullptr ? ValueType() : variable->type;
    for (std::size_t i = 1; i < place.size() && type.IsKnown();) {
        if (place.SignAt(i) == '[' && type.dims > 0) {
            --type.dims;
            i = place.Behind(i);
            continue;
        }
        const ClassInfo* cls = place.SignAt(i) == '\\' && type.IsSingle() ? type.cls : nullptr;
        const Variable* field = cls == nullptr ? nullptr : FindField(*cls, place.At(i + 1));
        type = field == nullptr ? ValueType() : field->type;
        i += 2;
    }
    return type;
}

// flag = a = b, where a is no Bool that somebody may want to set as well
TokenSpan AssignsTwice(const State&, TokenSpan statement) {
    if (statement.KeywordAt(0) != Keyword::None) return {};
    const std::size_t first = statement.FindEquals();
    if (first == noToken || first == 0) return {};
    const std::size_t second = statement.FindEquals(first + 1);
    const TokenSpan between = statement.Slice(first + 1, second);
    if (second == noToken || !IsPlace(between) || !TypeOfPlace(statement.Slice(0, first)).Is(Base::Bool))
        return {};
    return TypeOfPlace(between).Is(Base::Bool) ? TokenSpan() : between;
}

// Local a = b = 2, where a is not called a Bool
TokenSpan ComparesInstead(const State&, TokenSpan statement) {
    if (!Has(statement.KeywordAt(0), trait::variables)) return {};
    for (const TokenSpan declared : statement.From(1).SplitAt(',')) {
        const std::size_t first = declared.FindEquals();
        if (first == noToken || (first > 2 && IsWord(declared[2], "bool"))) continue;
        const TokenSpan value = declared.From(first + 1);
        const std::size_t second = value.FindEquals();
        if (second != noToken && IsPlace(value.Slice(0, second)) && !JoinsConditions(value)) return value;
    }
    return {};
}

// n = n
TokenSpan AssignsToItself(const State&, TokenSpan statement) {
    const std::size_t equals = statement.size() / 2;
    if (statement.size() % 2 == 0 || !statement.IsEquals(equals) || statement.FindEquals() != equals ||
        Has(statement.KeywordAt(0), trait::variables))
        return {};
    const TokenSpan target = statement.Slice(0, equals), value = statement.From(equals + 1);
    const bool same = std::equal(target.first, target.last, value.first);
    const bool runsCode =
        std::any_of(target.first, target.last, [](Token token) { return token->sign == '('; });
    return same && IsPlace(target) && !runsCode ? statement : TokenSpan();
}

// Include util.kvl
TokenSpan NamesFileBare(const State&, TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    const bool names = word == Keyword::Include || word == Keyword::Import;
    return names && !IsQuoted(statement[1]) ? statement.From(1) : TokenSpan();
}

// PreCalc names:String[3], whose items are Ints
TokenSpan NamesOtherItems(const State&, TokenSpan statement) {
    if (statement.KeywordAt(0) != Keyword::PreCalc || statement.size() < 4 || IsWord(statement[3], "int"))
        return {};
    const Variable* table = symbols.globals.Find(statement.At(1));
    return table != nullptr && table->type.base == Base::Int ? statement.Slice(3, 4) : TokenSpan();
}

// Type TPlayer, where there has been one
TokenSpan DeclaresTypeAgain(const State& state, TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    if (!Has(word, trait::classes) || InRoutine(state)) return {};
    const ClassInfo* first = FindClass(statement.At(1));
    if (first == nullptr || statement.size() != 2 || !first->registered) return {};
    const bool isFirst =
        first->line == settings.currentLine && FileId(first->sourceFile) == FileId(settings.currentFile);
    return isFirst ? TokenSpan() : statement.Slice(1, 2);
}

// Method New(hp:Int), in a Type without the Method that Create calls
TokenSpan NamesConstructor(const State& state, TokenSpan statement) {
    if (statement.KeywordAt(0) != Keyword::Method || state.cls == nullptr) return {};
    const std::string name = Lower(statement[1]);
    const bool isLike =
        name == "new" || name == "constructor" || name == "__init__" || name == Lower(state.cls->name);
    return isLike && !state.cls->routines.Has("constructor") ? statement.Slice(1, 2) : TokenSpan();
}

// A Case or Default that the one before it runs into
TokenSpan RunsIntoLabel(const State& state, TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    if ((word != Keyword::Case && word != Keyword::Default) || !InnermostIs(state, BlockKind::Select))
        return {};
    const bool runsInto =
        state.blocks.back().braces.select->labelSeen && !state.routine.bareLabel && state.routine.reachable;
    return runsInto ? statement : TokenSpan();
}

// End While
TokenSpan EndsWithWord(const State&, TokenSpan statement) {
    return statement.KeywordAt(0) == Keyword::End && statement.size() == 2 && statement.SignAt(1) == '\0'
               ? statement
               : TokenSpan();
}

// For i = 10 To 1, or While False
TokenSpan CountsNothing(const State&, TokenSpan statement) {
    if (statement.KeywordAt(0) == Keyword::While && statement.KeywordAt(1) == Keyword::False &&
        statement.size() == 2)
        return statement;
    if (statement.KeywordAt(0) != Keyword::For) return {};
    const Counting counting = CountingOf(statement);
    if (!counting.start || !counting.end || (counting.hasStep && !counting.step)) return {};
    const double step = counting.hasStep ? counting.step->AsReal() : 1;
    const double way = counting.end->AsReal() - counting.start->AsReal();
    return way * step < 0 ? statement : TokenSpan();
}

// For i = 1 To 10 Step 0
TokenSpan CountsForever(const State&, TokenSpan statement) {
    if (statement.KeywordAt(0) != Keyword::For || statement.Find(Keyword::Step) == noToken) return {};
    const Counting counting = CountingOf(statement);
    return counting.step && counting.step->AsReal() == 0 ? statement : TokenSpan();
}

// SeqGet(s, SeqLength(s)), or SeqGet(s, -1)
TokenSpan GetsBeyondEnd(const State&, TokenSpan statement) {
    for (std::size_t i = 0; i < statement.size(); ++i) {
        if (!IsWord(statement[i], "seqget") || statement.SignAt(i + 1) != '(') continue;
        const std::vector<TokenSpan> arguments = statement.Inside(i + 1).SplitAt(',');
        if (arguments.size() != 2) continue;
        const TokenSpan sequence = arguments[0], index = arguments[1];
        const bool isLength = IsWord(index[0], "seqlength") && index.size() == sequence.size() + 3 &&
                              std::equal(sequence.first, sequence.last, index.first + 2);
        if (isLength || IsNegative(index)) return index;
    }
    return {};
}

// Print a Shl b
TokenSpan PrintsShifted(const State&, TokenSpan statement) {
    if (statement.KeywordAt(0) != Keyword::Print) return {};
    for (std::size_t i = 1; i < statement.size(); i = statement.Behind(i))
        if (statement.KeywordAt(i) == Keyword::Shl) return statement.Slice(i, i + 1);
    return {};
}

// Print "a\nb"
TokenSpan EscapesByBackslash(const State&, TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    if (word == Keyword::Include || word == Keyword::Import || word == Keyword::Linker) return {};
    for (std::size_t i = 0; i < statement.size(); ++i)
        if (IsQuoted(statement[i]) && IsEscaped(TextOf(statement.At(i)))) return statement.Slice(i, i + 1);
    return {};
}
