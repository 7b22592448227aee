#include "expressions/defaults.h"

#include "base/journal.h"
#include "base/settings.h"
#include "expressions/walk.h"
#include "linking/runtime_code.h"
#include "prelude/line_marks.h"
#include "symbols/scopes.h"

namespace {

// Where the statement under way stands: "lib/game.kvl:12". The path counts from the main source.
Expr& PlaceOfCall() {
    const std::string shown = ShownPath(settings.currentFile);
    Expr& place = NewNode(ExprKind::Fixed, Single(Base::String));
    place.text = WordOf(CppLiteral(shown + ":" + std::to_string(settings.currentLine))).text.c_str();
    place.literal = true;
    place.given = false;
    return place;
}

// How many items an array has, as far as that is known here.
Expr& CountOfItems(const Expr* array) {
    Expr& count = NewNode(ExprKind::Fixed, Single(Base::Int));
    count.text = WordOf(array == nullptr ? "-1" : KnownSize(*array)).text.c_str();
    count.given = false;
    return count;
}

}  // namespace

Expr& TranslateDefault(const Routine& routine, const Parameter& parameter, const Expr* firstArgument) {
    if (parameter.placed) return PlaceOfCall();
    if (parameter.counted) return CountOfItems(firstArgument);
    const FileLevelNames names;
    const AtPlace declaration(routine.file, routine.line);
    Expr& value = TranslateExpression(parameter.defaultValue, ExprMode::Condition);
    value.given = false;
    return value;
}

namespace {

bool IsConstOrLiteral(const Expr& expr) {
    switch (expr.kind) {
        case ExprKind::Number:
        case ExprKind::Text:
        case ExprKind::Holes:
            return true;
        case ExprKind::Fixed:
            return expr.type.Is(Base::Bool) || expr.type.Is(Base::Null);
        default:
            return VariableOf(expr) != nullptr && expr.isConst;
    }
}

bool IsDefault(const Expr& expr) {
    const bool isSigned = expr.kind == ExprKind::Sign && (expr.text[0] == '-' || expr.text[0] == '+');
    return IsConstOrLiteral(isSigned ? *expr.first : expr);
}

}  // namespace

ValueType TypeOfDefault(const Routine& routine, const Parameter& parameter) {
    const BorrowedNodes nodes;
    Chapter untold;
    const OpenChapter nothingIsSaid(untold);
    try {
        const Expr& value = TranslateDefault(routine, parameter);
        return IsDefault(value) ? value.type : Single(Base::Void);
    } catch (const Stop& stop) {
        if (!stop.ofUnknown) throw;
        return Single(Base::Void);
    }
}
