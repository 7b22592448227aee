#include "statements/handlers.h"

#include "base/report.h"
#include "expressions/sequence_walks.h"
#include "statements/words.h"
#include "symbols/type_reader.h"

namespace {

// this, and what is found in the list of its Type: no variable, but an object that others know.
bool StandsInAList(Keyword word) {
    return word == Keyword::This || word == Keyword::First || word == Keyword::Last ||
           word == Keyword::Before || word == Keyword::After;
}

}  // namespace

// Remove object
//     delete KVL_p;
//     KVL_p = nullptr;
// A variable that calls lead to is found once:
//     { auto& _kvRemoved = KVL_fleet[KVL_TakeSlot ( )]; delete _kvRemoved; _kvRemoved = nullptr; }
void TranslateRemove(State& state, TokenSpan tokens) {
    if (tokens.size() < 2) ReportFatal("Expected variable name after 'Remove'");
    const TokenSpan written = tokens.From(1).WithoutParentheses();
    const Expr& object = TranslateValue(written, ExprMode::Statement);
    if (object.type.IsKnown() && !object.type.Is(Base::Object))
        ReportFatal("Cannot use 'Remove' on primitive type " + InWords(object.type) +
                    ". Remove only works on objects (custom Types)." + HintAtAnyObject(object.type));
    if (object.type.cls != nullptr) NeedClass(object.type.cls);
    NoteDestruction();
    const Code text = GuardedText(object, Level::Unary);
    const bool variable = object.assignable || !object.type.IsKnown();
    if (!variable && !StandsInAList(written.KeywordAt(0)))
        ReportFatal("Remove requires a variable that holds an object, not an expression");
    if (variable && object.effects) {
        EmitLine(state, "{ auto& _kvRemoved = " + text + "; delete _kvRemoved; _kvRemoved = nullptr; }");
        return;
    }
    EmitLine(state, "delete " + text + ";");
    if (variable) EmitLine(state, text + " = nullptr;");
}
