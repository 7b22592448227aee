#include "analysis/routine_names.h"

namespace {

OwnName KindOfLocal(TokenSpan declaration) {
    if (declaration.SignAt(1) == '[') return OwnName::Items;
    std::size_t at = 2;
    if (declaration.SignAt(1) == ':') {
        if (declaration.KeywordAt(2) == Keyword::Sequence || declaration.SignAt(3) == '[')
            return OwnName::Items;
    } else {
        if (Has(declaration.KeywordAt(2), trait::creates)) at = 3;
    }
    return IsElement(declaration.At(at)) ? OwnName::Element : OwnName::Value;
}

void AddLocals(TokenSpan statement, RoutineNames& names) {
    for (TokenSpan declaration : statement.From(1).SplitAt(',')) {
        if (declaration.KeywordAt(0) == Keyword::Local) declaration = declaration.From(1);
        if (!declaration.empty()) names.own[&declaration.At(0)] = KindOfLocal(declaration);
    }
}

// For x EachIn items , For Each x In items
void AddWalker(TokenSpan statement, RoutineNames& names) {
    const bool each = statement.KeywordAt(1) == Keyword::Each;
    const std::size_t in = statement.Find(each ? Keyword::In : Keyword::EachIn);
    if (in == noToken) return;
    const Word& variable = statement.At(each ? 2 : 1);
    const TokenSpan walked = statement.From(in + 1);
    const std::size_t last = LastName(walked);
    names.own.erase(&variable);
    if (last < walked.size()) names.walkers[&variable] = &walked.At(last);
}

void OpenWith(TokenSpan object, RoutineNames& names) {
    const std::size_t last = LastName(object);
    const Word& name = object.At(last);
    names.withs.push_back(last == 0 ? &Meant(name, names) : &name);
}

}  // namespace

OwnName KindOf(const ValueType& type) {
    if (!type.IsSingle()) return OwnName::Items;
    return type.Is(Base::Element) ? OwnName::Element : OwnName::Value;
}

std::size_t LastName(TokenSpan tokens) {
    std::size_t last = tokens.size();
    for (std::size_t i = 0; i < tokens.size(); i = tokens.Behind(i))
        if (IsLetterByte(tokens[i][0])) last = i;
    return last;
}

RoutineNames NamesOf(const Routine* routine) {
    RoutineNames names;
    if (routine == nullptr) return names;
    if (routine->owner != nullptr && routine->owner->isElement) names.self = routine->owner;
    for (const Parameter& parameter : routine->parameters) {
        const OwnName kind = KindOf(parameter.type);
        names.own[&WordOf(parameter.name)] = kind == OwnName::Items ? OwnName::Passed : kind;
    }
    return names;
}

void AddNames(TokenSpan statement, bool outermost, RoutineNames& names) {
    switch (statement.KeywordAt(0)) {
        case Keyword::Local:
            if (outermost) AddLocals(statement, names);
            return;
        case Keyword::EachSeq:  // the variable may be anything else behind the loop
            if (statement.size() > 1) names.own[&statement.At(1)] = OwnName::Item;
            return;
        case Keyword::For:
            return AddWalker(statement, names);
        case Keyword::With:
            return OpenWith(statement.From(1), names);
        case Keyword::EndWith:
            if (!names.withs.empty()) names.withs.pop_back();
            return;
        default:
            return;
    }
}

const Word& Meant(const Word& name, const RoutineNames& names) {
    if (name.keyword == Keyword::Its && !names.withs.empty()) return *names.withs.back();
    if (names.own.count(&name) != 0) return name;
    const auto walker = names.walkers.find(&name);
    return walker == names.walkers.end() ? name : *walker->second;
}
