#include "prelude/value_order.h"

#include <algorithm>

#include "analysis/effect_reader.h"
#include "analysis/effects.h"
#include "lexer/mentions.h"
#include "symbols/identifiers.h"

namespace {

bool IsVariable(const std::string& name) {
    return symbols.globals.Has(name) || symbols.constants.Has(name) || symbols.fieldOwners.Has(name);
}

void AddNames(TokenSpan tokens, GlobalEntry& entry) {
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Word& word = tokens.At(i);
        if (word.text[0] == '"') AddNames(HoleTokens(word), entry);
        if (word.keyword != Keyword::None || !IsName(word.text)) continue;
        const bool member = i > 0 && tokens.SignAt(i - 1) == '\\';
        if (!member) entry.mentioned.push_back(&word);
        if (IsVariable(word.text)) entry.effects.reads.insert(ThingOf(word));
    }
}

// Whether making the Element runs code or gives a Field a value.
bool HasInitialValues(const ClassInfo& cls) {
    if (cls.routines.Has("constructor")) return true;
    return std::any_of(cls.members.begin(), cls.members.end(), [](const auto& member) {
        const ValueType& type = member.second.type;
        const bool nested = type.base == Base::Element && !type.sequence && type.cls != nullptr;
        return !member.second.initialiser.empty() || (nested && HasInitialValues(*type.cls));
    });
}

bool MakesElements(const GlobalEntry& entry) {
    const ValueType& type = entry.variable->type;
    return entry.variable->initialiser.empty() && type.base == Base::Element && !type.sequence &&
           type.cls != nullptr && HasInitialValues(*type.cls);
}

// Brackets behind a name, "Create" and "New" are the signs of calls; of Methods, whose names only their
// Types know, the "\" is one, too.
bool MayRunCode(TokenSpan tokens) {
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Word& word = tokens.At(i);
        const bool creates = Has(word.keyword, trait::creates);
        const bool calls = tokens.SignAt(i + 1) == '(' && word.sign == '\0';
        const bool member = word.sign == '\\' && !symbols.fieldOwners.Has(tokens[i + 1]);
        if (creates || calls || member) return true;
        if (word.text[0] == '"' && MayRunCode(HoleTokens(word))) return true;
    }
    return false;
}

// Who changes what parameters stand for may change all arrays and Sequences that are in reach.
void Merge(const EffectSet& from, ValueEffects& into) {
    into.reads.insert(from.reads.begin(), from.reads.end());
    into.changes.insert(from.changes.begin(), from.changes.end());
    into.anything = into.anything || from.anything;
    if (!from.changesPassed) return;
    for (const Thing thing : from.reads)
        if (HoldsItems(thing)) into.changes.insert(thing);
}

void FindEffects(GlobalEntry& entry) {
    Tokens tokens = entry.variable->initialiser;
    for (const std::string& name : entry.global->sizeNames) tokens.emplace_back(name);
    AddNames(tokens, entry);
    if (MayRunCode(tokens)) Merge(EffectsOf(tokens), entry.effects);
    if (MakesElements(entry)) Merge(EffectsOfMaking(*entry.variable->type.cls), entry.effects);
}

// Timers that an initial value starts may fire in all routines that others call.
void AddTimers(std::vector<GlobalEntry>& entries) {
    const bool started = std::any_of(entries.begin(), entries.end(), [](const GlobalEntry& entry) {
        return entry.effects.changes.count(timers) != 0;
    });
    if (!started) return;
    for (GlobalEntry& entry : entries)
        if (MayRunCode(entry.variable->initialiser)) Merge(EffectsOfTimers(), entry.effects);
}

std::vector<GlobalEntry> CollectEntries(Program& program) {
    std::vector<GlobalEntry> entries;
    for (FileOutput* file : program.headers) {
        for (GlobalDefinition& global : file->globals) {
            GlobalEntry entry;
            entry.global = &global;
            entry.file = file;
            entry.variable = FindGlobal(global.name);
            if (entry.variable == nullptr) continue;
            entry.position = entries.size();
            FindEffects(entry);
            entries.push_back(std::move(entry));
        }
    }
    AddTimers(entries);
    return entries;
}

// Walks from each entry to those that have to come before it, without recursion: chains may be long.
class Sorter {
public:
    explicit Sorter(std::vector<GlobalEntry> all) : entries(std::move(all)) {
        std::sort(entries.begin(), entries.end(), [](const GlobalEntry& a, const GlobalEntry& b) {
            return a.global->number < b.global->number;
        });
        for (std::size_t i = 0; i < entries.size(); ++i) indexes[ThingOf(*entries[i].Name())] = i;
        met.resize(entries.size());
        empty.resize(entries.size());
    }

    std::vector<GlobalEntry> Run() {
        for (here = 0; here < entries.size(); ++here) Enter(here);
        std::vector<GlobalEntry> sorted;
        for (const Turn& turn : order) {
            sorted.push_back(entries[turn.index]);
            sorted.back().part = turn.part;
        }
        return sorted;
    }

private:
    // An entry under way.
    struct Step {
        std::size_t index = 0;
        std::vector<std::size_t> before;  // those that it names, then those that it touches
        std::size_t namedEnd = 0;
        std::size_t next = 0;
    };

    struct Turn {
        std::size_t index;
        EntryPart part;
    };

    std::vector<GlobalEntry> entries;  // in source order
    std::unordered_map<Thing, std::size_t> indexes;
    std::vector<bool> met, empty;  // those under way or done; those that are there without their value
    std::vector<Step> steps;
    std::vector<Turn> order;
    std::size_t here = 0;  // how far the source has been walked

    void Enter(std::size_t index) {
        if (met[index]) {
            if (IsTakenAgain(index) && IsAlwaysTheSame(entries[index]))
                order.push_back({index, EntryPart::Value});
            return;
        }
        const std::size_t bottom = steps.size();
        Push(index);
        while (steps.size() > bottom) GoOn();
    }

    void Push(std::size_t index) {
        met[index] = true;
        Step step;
        step.index = index;
        AddIndexes(entries[index].mentioned, step.before);
        step.namedEnd = step.before.size();
        AddIndexes(entries[index].effects.reads, step.before);
        AddIndexes(entries[index].effects.changes, step.before);
        std::sort(step.before.begin() + static_cast<std::ptrdiff_t>(step.namedEnd), step.before.end());
        steps.push_back(std::move(step));
    }

    static Thing ThingOfName(const Word* name) { return ThingOf(*name); }
    static Thing ThingOfName(Thing thing) { return thing; }

    template <class Names>
    void AddIndexes(const Names& names, std::vector<std::size_t>& list) const {
        for (const auto& name : names) {
            const auto found = indexes.find(ThingOfName(name));
            if (found != indexes.end()) list.push_back(found->second);
        }
    }

    void GoOn() {
        Step& step = steps.back();
        if (step.next == step.before.size()) {
            const bool there = empty[step.index] || entries[step.index].IsConstant();
            const bool again = there && IsTakenAgain(step.index);
            order.push_back({step.index, again ? EntryPart::Value : EntryPart::Whole});
            steps.pop_back();
            return;
        }
        const bool named = step.next < step.namedEnd;
        const std::size_t before = step.before[step.next++];
        if (!named && before > here) NoteTouched(before, step.index);
        if (met[before]) return;
        // A constant Global is there anyway, and takes its value again where the source has it. A Const may
        // name others that the header has further down.
        if (entries[before].IsConstant() && !entries[before].variable->isConst) return;
        if (named || IsThereFromTheStart(entries[before]))
            Push(before);
        else if (!named && !empty[before] && !entries[before].global->empty.empty())
            PutEmpty(before);
    }

    void PutEmpty(std::size_t index) {
        empty[index] = true;
        order.push_back({index, EntryPart::Empty});
    }

    bool IsTakenAgain(std::size_t index) const {
        const GlobalEntry& entry = entries[index];
        return (entry.changedBefore || empty[index]) && !entry.global->again.empty();
    }

    // What comes later in the source, but may be changed by the initial value of `user`.
    void NoteTouched(std::size_t later, std::size_t user) {
        if (entries[user].effects.changes.count(ThingOf(*entries[later].Name())) != 0)
            entries[later].changedBefore = true;
    }

    static bool IsAlwaysTheSame(const GlobalEntry& entry) {
        const ValueEffects& effects = entry.effects;
        return !effects.anything && effects.reads.empty() && effects.changes.empty();
    }

    static bool IsThereFromTheStart(const GlobalEntry& entry) {
        if (entry.variable->isConst) return true;
        if (!IsAlwaysTheSame(entry)) return false;
        return entry.variable->initialiser.empty() || !entry.changedBefore || !entry.global->again.empty();
    }
};

}  // namespace

std::vector<GlobalEntry> GlobalsInOrder(Program& program) { return Sorter(CollectEntries(program)).Run(); }
