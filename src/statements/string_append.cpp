#include "statements/string_append.h"

#include <algorithm>

#include "analysis/effects.h"
#include "expressions/text_sum.h"

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
bool Notices(const TextSum::Part& part, const EffectSet& append, TokenSpan target) {
    const EffectSet does = EffectsOf(part.source);
    return Conflict(append, does) || MayChange(does, EffectsOfPlace(target));
}

}  // namespace

std::string AppendStatement(const Expr& target, const Expr& value, bool item) {
    if (value.sum == nullptr || value.sum->to > 0 || !IsPlainName(target.source)) return {};
    const std::vector<TextSum::Part>& parts = value.sum->parts;
    if (parts.size() > TextSum::many) return {};
    if (!AreEqual(parts[0].source, target.source)) return {};
    const EffectSet append = AppendingTo(target, item);
    std::string text = ValueText(target);
    for (std::size_t i = 1; i < parts.size(); ++i) {
        if (Notices(parts[i], append, target.source)) return {};
        if (i > 1) text = "(" + text + ")";
        text += " += " + parts[i].text;
    }
    return text + ";";
}
