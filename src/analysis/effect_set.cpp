#include "analysis/effect_set.h"

#include <algorithm>

namespace {

// Longer lists cost time with every call that asks; who changes so much changes nearly everything.
constexpr std::size_t longestList = 500;

void Settle(std::vector<Thing>& things) {
    std::sort(things.begin(), things.end());
    things.erase(std::unique(things.begin(), things.end()), things.end());
}

}  // namespace

void EffectSet::Settle() {
    ::Settle(reads);
    ::Settle(changes);
    ::Settle(ownReads);
    ::Settle(ownChanges);
    if (reads.size() + changes.size() <= longestList) return;
    *this = EffectSet();
    anything = true;
}

void EffectSet::Add(const EffectSet& other) {
    anything = anything || other.anything;
    readsItems = readsItems || other.readsItems;
    changesItems = changesItems || other.changesItems;
    readsPassed = readsPassed || other.readsPassed;
    changesPassed = changesPassed || other.changesPassed;
    reads.insert(reads.end(), other.reads.begin(), other.reads.end());
    changes.insert(changes.end(), other.changes.begin(), other.changes.end());
    ownReads.insert(ownReads.end(), other.ownReads.begin(), other.ownReads.end());
    ownChanges.insert(ownChanges.end(), other.ownChanges.begin(), other.ownChanges.end());
}

bool Meet(const std::vector<Thing>& a, const std::vector<Thing>& b) {
    for (std::size_t i = 0, k = 0; i < a.size() && k < b.size();) {
        if (a[i] == b[k]) return true;
        a[i] < b[k] ? ++i : ++k;
    }
    return false;
}

bool ChangesNothing(const EffectSet& set) {
    return !set.anything && !set.changesItems && !set.changesPassed && set.changes.empty() &&
           set.ownChanges.empty();
}

static bool ReadsShared(const EffectSet& set) {
    return set.anything || set.readsItems || set.readsPassed || !set.reads.empty();
}

bool MayChange(const EffectSet& change, const EffectSet& read) {
    if (Meet(change.ownChanges, read.ownReads)) return true;
    if (change.anything) return ReadsShared(read) || !ChangesNothing(read);
    if (read.anything) return !ChangesNothing(change);
    const bool readsAnyItems = read.readsItems || read.readsPassed;
    if ((change.changesPassed && readsAnyItems) || (change.changesItems && read.readsPassed)) return true;
    return Meet(change.changes, read.reads);
}

bool Conflict(const EffectSet& a, const EffectSet& b) {
    if (MayChange(a, b) || MayChange(b, a)) return true;
    if (Meet(a.changes, b.changes) || Meet(a.ownChanges, b.ownChanges)) return true;
    return (a.changesPassed && (b.changesPassed || b.changesItems)) || (b.changesPassed && a.changesItems);
}
