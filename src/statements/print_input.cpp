#include "statements/handlers.h"

#include "analysis/effects.h"
#include "base/report.h"
#include "base/settings.h"
#include "expressions/order.h"
#include "prelude/support.h"
#include "statements/words.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

// Under -fast lines are written in larger pieces, see prelude/texts/fast.
const char* LineEnd() { return settings.fastMode ? " << '\\n';" : " << std::endl;"; }

// One item between two "<<"; true when it runs code. What binds weaker than "<<" goes in parentheses, and a Byte is a
// number, not a character.
bool WriteItem(Code& out, TokenSpan tokens, const std::string& keyword, ExprMode mode) {
    const Expr& item = TranslateValue(tokens, mode);
    if (!item.type.IsSingle() || item.type.Is(Base::Element) || item.type.Is(Base::Void))
        ReportFatal("'" + keyword + "' cannot show a value of type " + KorvelName(item.type) +
                        (item.type.IsSingle() ? Hint() : Hint{"It shows items one by one, in a loop"}),
                    tokens);
    if (item.type.Is(Base::Null)) {
        out += "static_cast<void*>(nullptr)";
    } else if (item.type.Is(Base::Byte)) {
        Put(out, "static_cast<int>(", AsValue{item}, ")");
    } else {
        // "Shl" stands as it is, a further "<<"; ">>" has no meaning there.
        const bool shiftsRight = item.level == Level::Shift && tokens.Find(Keyword::Shr) != noToken;
        WriteGuarded(out, item, shiftsRight ? Level::Sum : Level::Shift);
    }
    return item.effects;
}

// The trace of look-ups follows one name, here as in IsVariableInScope.
void TraceTokens(TokenSpan tokens) {
    if (!settings.verbose) return;
    for (const std::string& token : tokens) {
        if (token != "scopedVar") continue;
        Say("DEBUG Print: checking token '" + token + "'");
        Say(std::string("  IsDefined=") + (FindVariable(token) != nullptr ? "1" : "0"));
        const bool inScope = IsVariableInScope(token);
        Say(std::string("  IsVariableInScope=") + (inScope ? "1" : "0"));
    }
}

// Items are separated by "&" outside parentheses; "&&" separates nothing. True when one of them runs code.
bool WriteItems(Code& out, TokenSpan tokens, const std::string& keyword, ExprMode mode) {
    TraceTokens(tokens);
    bool effects = false;
    std::size_t start = 0, items = 0;
    for (std::size_t i = 0; i <= tokens.size(); i = tokens.Behind(i)) {
        bool separator = i == tokens.size() || (tokens.SignAt(i) == '&' && tokens.SignAt(i + 1) != '&');
        if (!separator) continue;
        LimitParts(++items);
        if (start > 0) out += " << ";
        const TokenSpan item = tokens.Slice(start, i);
        const std::size_t sign = i == tokens.size() && i > 0 ? i - 1 : i;
        if (item.empty())
            ReportFatal("'" + keyword + "' has an empty item beside '&'", tokens.Slice(sign, sign + 1));
        effects = WriteItem(out, item, keyword, mode) || effects;
        start = i + 1;
    }
    return effects;
}

struct InputTarget {
    std::string name;  // as written, for messages
    Code text;
    ValueType type;
    bool foundOnce = false;  // it could be told that the loop finds it again when it asks again
};

InputTarget TargetOf(TokenSpan tokens) {
    InputTarget target;
    target.name = tokens[0];
    if (tokens.size() == 1) {
        const Variable* variable = FindVariable(tokens.At(0));
        if (variable == nullptr)
            ReportUnknown("Variable '" + target.name + "' not found in Input statement", Tokens{target.name},
                          Sought::Value);
        if (variable != nullptr && variable->isConst)
            ReportFatal("Cannot assign to const variable '" + target.name + "'", Tokens{target.name});
    }
    const Expr& expr = TranslateValue(tokens, ExprMode::Statement);
    if (!expr.assignable && expr.type.IsKnown())
        ReportFatal("Input needs a variable after the comma, '" + target.name + "' cannot be assigned to",
                    Tokens{target.name});
    bool readable = !expr.type.IsKnown() || expr.type.IsNumber() || expr.type.Is(Base::String);
    if (!readable)
        ReportFatal("Input cannot read into '" + target.name + "', which is " + KorvelName(expr.type),
                    Tokens{target.name});
    target.text = TextOf(expr);
    target.type = expr.type;
    // A Byte is only found when the number is there.
    target.foundOnce = !expr.type.Is(Base::Byte) && !MayRepeat(expr);
    return target;
}

// Whether working out the prompt once more may lead to another target.
bool Moves(TokenSpan prompt, TokenSpan target) {
    return MayChange(EffectsOf(prompt), EffectsOfPlace(target));
}

const char* RetryMessage(const ValueType& type) {
    if (type.Is(Base::Int)) return "Invalid input. Please enter a valid integer.";
    if (type.Is(Base::Double)) return "Invalid input. Please enter a valid number.";
    return "Invalid input. Please try again.";
}

// Asks until the input parses. A Byte is read as a number first. A target that is found once is so behind the
// first prompt:
//     { std::cout << prompt; auto&& __kvTarget = KVL_a[KVL_Next ( )];
//     while(true) { if(std::cin >> __kvTarget) ... else { ... std::cout << prompt; } } }
void EmitRetryLoop(State& state, const Code& prompt, InputTarget target) {
    const std::string ignoreLine =
        "        std::cin.ignore(std::numeric_limits<std::streamsize>::max(), '\\n');";
    const bool byte = target.type.Is(Base::Byte);
    const bool once = target.foundOnce;
    const Code show = "std::cout << " + prompt + ";";
    if (once) {
        EmitLine(state, "{ " + show + " auto&& __kvTarget = " + target.text + ";");
        target.text = "__kvTarget";
    }
    EmitLine(state, "while(true) {");
    if (byte) EmitLine(state, "    int __kvNumber = 0;");
    if (!once) EmitLine(state, "    " + show);
    if (byte)
        EmitLine(state, "    if(std::cin >> __kvNumber && __kvNumber >= 0 && __kvNumber <= 255) {");
    else
        EmitLine(state, "    if(std::cin >> " + target.text + ") {");
    if (byte) EmitLine(state, "        " + target.text + " = static_cast<uint8_t>(__kvNumber);");
    EmitLine(state, ignoreLine);
    EmitLine(state, "        break;");
    EmitLine(state, "    } else {");
    EmitLine(state, std::string("        std::cout << \"") + RetryMessage(target.type) + "\"" + LineEnd());
    // The loop would ask for ever once the input has ended.
    if (!settings.fastMode)
        RequireSupport(Support::InputEnd);
    else
        EmitLine(state, "        if(std::cin.eof()) { std::cerr << \"Input has ended\" << std::endl; " +
                            std::string(EndOfFailure()) + "(1); }");
    EmitLine(state, "        std::cin.clear();");
    EmitLine(state, ignoreLine);
    if (once) EmitLine(state, "        " + show);
    EmitLine(state, "    }");
    EmitLine(state, once ? "} }" : "}");
}

// Index of the comma behind the prompt, which is at least one token long.
std::size_t CommaBehindPrompt(TokenSpan tokens) {
    for (std::size_t i = tokens.Behind(1); i < tokens.size(); i = tokens.Behind(i))
        if (tokens.SignAt(i) == ',') return i;
    return noToken;
}

}  // namespace

// Print [item & item ...]
//     std::cout << item << item << std::endl;
void TranslatePrint(State& state, TokenSpan tokens) {
    if (tokens.size() < 2) {
        EmitLine(state, std::string("std::cout") + LineEnd());
        return;
    }
    Code& line = FreshLine();
    line += "std::cout << ";
    WriteItems(line, tokens.From(1), tokens[0], ExprMode::Print);
    line += LineEnd();
    EmitLine(state, line);
}

// Input prompt , variable
//     std::cout << prompt;
//     std::getline(std::cin, KVL_name);     a String; numbers are asked for until they can be read
void TranslateInput(State& state, TokenSpan tokens) {
    if (tokens.size() < 3) ReportFatal("Input statement requires a prompt and a variable");
    std::size_t comma = CommaBehindPrompt(tokens);
    if (comma == noToken) ReportFatal("Input statement requires a comma between prompt and variable");
    if (comma + 1 == tokens.size()) ReportFatal("Input statement requires a variable after the comma");
    InputTarget target = TargetOf(tokens.From(comma + 1));
    Code prompt;
    const bool effects = WriteItems(prompt, tokens.Slice(1, comma), tokens[0], ExprMode::Input);
    if (effects && Moves(tokens.Slice(1, comma), tokens.From(comma + 1))) target.foundOnce = true;
    if (target.type.Is(Base::String)) {
        EmitLine(state, "std::cout << " + prompt + ";");
        EmitLine(state, "std::getline(std::cin, " + target.text + ");");
        return;
    }
    EmitRetryLoop(state, prompt, target);
}
