#include "statements/string_append.h"

#include <algorithm>

#include "analysis/effects.h"
#include "expressions/order.h"

namespace {

bool AreEqual(TokenSpan a, TokenSpan b) { return std::equal(a.first, a.last, b.first, b.last); }

// A variable or a Field; what brackets hold would be worked out less often.
bool IsPlainName(TokenSpan target) {
    for (std::size_t i = 0; i < target.size(); ++i)
        if (OpensBracket(target.SignAt(i))) return false;
    return !target.empty();
}

// Appending to the target, which may be the variable of a loop and so an item of what that walks.
EffectSet AppendingTo(const Expr& target, bool item) {
    EffectSet append = EffectsOfTarget(target.source);
    append.changesItems = append.changesItems || item;
    append.changesPassed = append.changesPassed || item;
    return append;
}

// Whether the part reads or changes the target, or changes what the target is found through.
bool Notices(const Expr& part, const EffectSet& append, TokenSpan target) {
    const EffectSet does = EffectsOf(part.source);
    return Conflict(append, does) || MayChange(does, EffectsOfPlace(target));
}

}  // namespace

Code AppendStatement(const Expr& target, const Expr& value, bool item) {
    if (value.kind != ExprKind::Sum || value.to > 0 || !IsPlainName(target.source)) return {};
    if (PartsOf(value).size() > manyTexts) return {};
    if (!AreEqual(value.first->source, target.source)) return {};
    const EffectSet append = AppendingTo(target, item);
    Code text = ValueText(target);
    for (const Expr& part : PartRange{value.first->next}) {
        if (Notices(part, append, target.source)) return {};
        if (&part != value.first->next) text = "(" + text + ")";
        text += " += ";
        WritePart(text, part);
    }
    return text + ";";
}
