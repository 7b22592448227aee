#include "collect/parameters.h"

#include "base/report.h"
#include "collect/inference.h"
#include "expressions/defaults.h"
#include "lexer/source_lines.h"
#include "symbols/identifiers.h"
#include "symbols/type_reader.h"

namespace {

[[noreturn]] void FailInList(TokenSpan tokens, std::size_t at) {
    const bool hasWordBefore = at > 0 && IsName(tokens[at - 1]) && IsName(tokens[at]);  // int x, ByRef x
    const std::size_t word = hasWordBefore ? at - 1 : at;
    const bool isType = IsBasicType(tokens[word]) || IsClass(tokens[word]);
    ReportFatal("Unexpected token in parameter list." +
                    Hint{isType ? "The type stands behind the name: n:Int"
                                : "Parameters stand apart by commas: Function Add:Int(a:Int, b:Int = 1)"},
                tokens.Slice(word, word + 1));
}

bool IsMain(TokenSpan tokens) {
    return tokens.KeywordAt(0) == Keyword::Function && IsWord(tokens[1], "main");
}

// Reads a result type whose ":" stands at `at`; returns the position behind it.
std::size_t ReadResult(TokenSpan tokens, std::size_t at, Routine& routine) {
    if (!Is(tokens[at], ":")) return at;
    if (IsMain(tokens)) {
        TypeNote skipped;
        ReadSizes(tokens, at + 2, skipped);
        return skipped.end;
    }
    const TypeNote note = ReadResultType(tokens, at + 1);
    routine.result = note.type;
    return note.end;
}

std::size_t ReadDefault(TokenSpan tokens, std::size_t at, Parameter& parameter) {
    if (!Is(tokens[at], "=")) return at;
    parameter.hasDefault = true;
    const std::size_t begin = ++at;
    while (at < tokens.size() && tokens.SignAt(at) != ',' && tokens.SignAt(at) != ')') at = tokens.Behind(at);
    parameter.defaultValue = tokens.Slice(begin, at).Copy();
    return at;
}

std::size_t ReadParameter(TokenSpan tokens, std::size_t at, Parameter& parameter) {
    if (!IsName(tokens[at])) FailInList(tokens, at);
    parameter.name = tokens[at++];
    parameter.untyped = !Is(tokens[at], ":") && tokens.KeywordAt(at) != Keyword::As;
    if (!parameter.untyped) {
        const TypeNote note = ReadType(tokens, at + 1);
        parameter.type = note.type;
        at = note.end;
    }
    return ReadDefault(tokens, at, parameter);
}

// Reads the list from its "(" on; returns the position behind its ")".
std::size_t ReadParameters(TokenSpan tokens, std::size_t at, Routine& routine) {
    if (!Is(tokens[at], "(")) return at;
    if (Is(tokens[at + 1], ")")) return at + 2;
    do {
        at = ReadParameter(tokens, at + 1, routine.parameters.emplace_back());
    } while (Is(tokens[at], ","));
    if (!Is(tokens[at], ")")) FailInList(tokens, at);
    return at + 1;
}

// A Const of the program comes first.
bool IsOfCall(TokenSpan value, const char* word) {
    return value.size() == 1 && value[0] == word && FindGlobal(value.At(0)) == nullptr;
}

ValueType DefaultType(const Routine& routine, const Parameter& parameter) {
    if (parameter.placed) return Single(Base::String);
    return parameter.counted ? Single(Base::Int) : TypeOfDefault(routine, parameter);
}

void SettleDefault(const Routine& routine, Parameter& parameter) {
    for (const std::string& name : parameter.defaultValue) SettleTypeOf(name);
    parameter.placed = IsOfCall(parameter.defaultValue, "CallerPlace");
    parameter.counted = IsOfCall(parameter.defaultValue, "ItemCount");
    const ValueType type = DefaultType(routine, parameter);
    if (type.base == Base::Void)
        ReportUnknown("The default value of parameter '" + parameter.name +
                          "' must be a number, a text, True, False, Null or a Const",
                      parameter.defaultValue, Sought::Value);
    if (!parameter.untyped && !Assignable(parameter.type, type)) {
        const Wording expected(ParameterCppName(parameter.type), KorvelName(parameter.type));
        ReportFatal("Type mismatch: Cannot assign " + InWords(type) + " to " + expected + " variable '" +
                        parameter.name + "'" + ConversionHint(parameter.type, type),
                    Tokens{parameter.name});
    }
    if (!parameter.untyped) return;
    if (type.base == Base::Null)
        ReportFatal("Parameter '" + parameter.name + "' = Null requires a type annotation (:Type)",
                    Tokens{parameter.name});
    parameter.type = type;
}

}  // namespace

Routine ParseRoutineHeader(TokenSpan tokens) {
    Routine routine;
    routine.name = tokens[1];
    std::size_t at = ReadResult(tokens, 2, routine);
    at = ReadParameters(tokens, at, routine);
    at = ReadResult(tokens, at, routine);
    if (at < tokens.size()) FailInList(tokens, at);
    return routine;
}

void SettleParameters(Routine& routine) {
    const Parameter* defaulted = nullptr;
    for (Parameter& parameter : routine.parameters) {
        if (parameter.hasDefault) {
            SettleDefault(routine, parameter);
            defaulted = &parameter;
            continue;
        }
        if (parameter.untyped) parameter.type = Single(Base::Int);
        if (defaulted) {
            ReportFatal("Parameter '" + parameter.name + "' needs a default value, because '" +
                            defaulted->name + "' before it has one",
                        Tokens{parameter.name});
        }
    }
}

std::string ParameterText(const Routine& routine, bool withDefaults) {
    if (routine.parameters.empty()) return "()";
    std::string text;
    for (const Parameter& parameter : routine.parameters) {
        text += text.empty() ? "(" : ", ";
        text += ParameterCppName(parameter.type);
        text += ' ';
        text += SafeName(parameter.name);
        if (withDefaults && parameter.hasDefault) {
            text += " = " + TextOf(TranslateDefault(routine, parameter)).text;
        }
    }
    text += ')';
    return text;
}

std::string PrototypeText(const Routine& routine) {
    return ResultCppName(routine.result) + " " + routine.cppName + ParameterText(routine, false) + ";";
}
