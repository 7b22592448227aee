#include "collect/parameters.h"

#include "base/report.h"
#include "collect/inference.h"
#include "expressions/defaults.h"
#include "lexer/source_lines.h"
#include "symbols/identifiers.h"
#include "symbols/type_reader.h"

namespace {

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
    if (!IsName(tokens[at])) ReportFatal("Unexpected token in parameter list.");
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
    if (!Is(tokens[at], ")")) ReportFatal("Unexpected token in parameter list.");
    return at + 1;
}

ValueType NumberType(const std::string& token) {
    const bool isDouble = token.find_first_of(".eE") != std::string::npos;
    if (isDouble) return Single(Base::Double);
    return Single(token.size() > 9 ? Base::Long : Base::Int);
}

ValueType WordType(const std::string& token) {
    const std::string word = Lower(token);
    if (word == "true" || word == "false") return Single(Base::Bool);
    if (word == "null") return Single(Base::Null);
    SettleTypeOf(token);
    const Variable* constant = FindGlobal(token);
    return constant && constant->isConst ? constant->type : Single(Base::Void);
}

// Type of a default value; Void when it is none.
ValueType DefaultType(TokenSpan value) {
    const bool isSigned = value[0] == "-" || value[0] == "+";
    const TokenSpan rest = value.From(isSigned ? 1 : 0);
    ValueType type = Single(Base::Void);
    if (rest.size() == 2 && rest[0] == "." && IsDigit(rest[1][0])) {
        type = Single(Base::Double);
    } else if (rest.size() == 1) {
        const char first = rest[0][0];
        if (first == '"')
            type = Single(Base::String);
        else if (first == '$')
            type = Single(Base::Int);
        else if (IsDigit(first))
            type = NumberType(rest[0]);
        else
            type = WordType(rest[0]);
    }
    const bool fits = !isSigned || !type.IsKnown() || type.IsNumber();
    return fits ? type : Single(Base::Void);
}

void SettleDefault(Parameter& parameter) {
    const ValueType type = DefaultType(parameter.defaultValue);
    if (type.base == Base::Void)
        ReportUnknown("The default value of parameter '" + parameter.name +
                          "' must be a number, a text, True, False, Null or a Const",
                      Tokens{parameter.name});
    if (!parameter.untyped && !Assignable(parameter.type, type)) {
        ReportFatal("Type mismatch: Cannot assign " + CppName(type) + " to " +
                        ParameterCppName(parameter.type) + " variable '" + parameter.name + "'" +
                        ConversionHint(parameter.type, type),
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
    if (at < tokens.size()) ReportFatal("Unexpected token in parameter list.");
    return routine;
}

void SettleParameters(Routine& routine) {
    const Parameter* defaulted = nullptr;
    for (Parameter& parameter : routine.parameters) {
        if (parameter.hasDefault) {
            SettleDefault(parameter);
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
