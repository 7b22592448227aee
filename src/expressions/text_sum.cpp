#include "expressions/text_sum.h"

#include "analysis/effects.h"
#include "base/report.h"
#include "prelude/support.h"

void TextSum::Limit(std::size_t count) {
    constexpr std::size_t most = 1000;
    if (count > most)
        ReportFatal("Expression joins more than " + std::to_string(most) +
                    " Strings. Spread them over several statements");
}

void TextSum::Add(Expr&& operand) {
    Part part;
    const bool text = operand.type.Is(Base::String) || !operand.type.IsKnown();
    part.text = text ? std::move(operand.text) : "std::to_string(" + operand.text + ")";
    part.literal = operand.literal;
    part.source = operand.source;
    part.effects = operand.effects;
    parts.push_back(std::move(part));
    Limit(parts.size());
    if (!watched && operand.effects) {
        watched = true;
        for (std::size_t i = 0; i + 1 < parts.size(); ++i) Watch(i);
    }
    if (watched) Watch(parts.size() - 1);
}

// Extends the braces from the first part that cannot trade places with this one to this one.
void TextSum::Watch(std::size_t at) {
    Part& part = parts[at];
    part.does = EffectsOf(part.source);
    for (std::size_t i = 0; i < at; ++i) {
        if ((!parts[i].effects && !part.effects) || !Conflict(parts[i].does, part.does)) continue;
        from = to == 0 || i < from ? i : from;
        to = at + 1;
        return;
    }
}

void TextSum::Close(Expr& sum) const {
    const bool flat = parts.size() > many;
    const std::size_t open = flat ? 0 : from, end = flat ? parts.size() : to;
    if (end > 0) RequireSupport(Support::TextInOrder);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const bool inside = i >= open && i < end;
        if (i > 0) sum.text += inside && i > open ? ", " : " + ";
        if (inside && i == open) sum.text += "__kvText({";
        // C++ cannot add two literals.
        const bool bare = i == 0 && parts.size() > 1 && parts[0].literal && parts[1].literal && !inside;
        sum.text += bare ? "std::string(" + parts[i].text + ")" : parts[i].text;
        if (inside && i + 1 == end) sum.text += "})";
    }
    sum.type = Single(Base::String);
    sum.level = open == 0 && end == parts.size() ? Level::Primary : Level::Sum;
}
