#include "prelude/value_order.h"

#include <algorithm>

#include "symbols/string_holes.h"

namespace {

void AddNames(const Tokens& tokens, std::vector<const Word*>& names) {
    for (const Token& token : tokens) {
        const char first = token->text[0];
        const bool name =
            token->keyword == Keyword::None && token->sign == '\0' && (first < '0' || first > '9');
        if (name && first != '"') names.push_back(&*token);
        if (first == '"') AddNames(HoleTokens(token->text), names);
    }
}

// Whether making the Element runs code or gives a Field a value.
bool HasInitialValues(const ClassInfo& cls) {
    if (cls.routines.count("constructor") != 0) return true;
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
        const bool creates = word.keyword == Keyword::Create || word.keyword == Keyword::New;
        const bool calls = tokens.SignAt(i + 1) == '(' && word.sign == '\0';
        const bool member = word.sign == '\\' && symbols.fieldOwners.count(tokens[i + 1]) == 0;
        if (creates || calls || member) return true;
        if (word.text[0] == '"' && MayRunCode(HoleTokens(word.text))) return true;
    }
    return false;
}

void Merge(const Effects& from, Effects& into) {
    into.reads.insert(from.reads.begin(), from.reads.end());
    into.changes.insert(from.changes.begin(), from.changes.end());
    into.anything = into.anything || from.anything;
}

bool IsVariable(const std::string& name) {
    return symbols.globals.count(name) != 0 || symbols.constants.count(name) != 0 ||
           symbols.fieldOwners.count(name) != 0;
}

Effects EffectsOfEntry(const GlobalEntry& entry) {
    Effects effects;
    for (const Word* name : entry.mentioned)
        if (IsVariable(name->text)) effects.reads.insert(name);
    Tokens tokens = entry.variable->initialiser;
    for (const std::string& name : entry.global->sizeNames) tokens.emplace_back(name);
    if (MayRunCode(tokens)) Merge(EffectsOf(tokens), effects);
    if (MakesElements(entry)) Merge(EffectsOfMaking(*entry.variable->type.cls), effects);
    return effects;
}

// Timers that an initial value starts may fire in all routines that others call.
void AddTimers(std::vector<GlobalEntry>& entries) {
    const bool started = std::any_of(entries.begin(), entries.end(), [](const GlobalEntry& entry) {
        return entry.effects.changes.count(WordOf(EffectMark::Timers)) != 0;
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
            AddNames(entry.variable->initialiser, entry.mentioned);
            for (const std::string& name : global.sizeNames) entry.mentioned.push_back(&WordOf(name));
            entry.effects = EffectsOfEntry(entry);
            entries.push_back(std::move(entry));
        }
    }
    AddTimers(entries);
    return entries;
}

class Sorter {
public:
    explicit Sorter(std::vector<GlobalEntry> all) : entries(std::move(all)) {
        std::sort(entries.begin(), entries.end(), [](const GlobalEntry& a, const GlobalEntry& b) {
            return a.global->number < b.global->number;
        });
        for (std::size_t i = 0; i < entries.size(); ++i) indexes[entries[i].Name()] = i;
        placed.resize(entries.size());
    }

    std::vector<GlobalEntry> Run() {
        for (std::size_t i = 0; i < entries.size(); ++i) Place(i);
        std::vector<GlobalEntry> sorted;
        for (const std::size_t i : order) sorted.push_back(std::move(entries[i]));
        return sorted;
    }

private:
    std::vector<GlobalEntry> entries;  // in source order
    std::unordered_map<const Word*, std::size_t> indexes;
    std::vector<bool> placed;
    std::vector<std::size_t> order;

    void Place(std::size_t index) {
        if (placed[index]) return;
        placed[index] = true;
        for (const Word* name : entries[index].mentioned) {
            const auto later = indexes.find(name);
            if (later != indexes.end()) Place(later->second);
        }
        std::vector<std::size_t> touched;
        AddIndexes(entries[index].effects.reads, touched);
        AddIndexes(entries[index].effects.changes, touched);
        std::sort(touched.begin(), touched.end());
        for (const std::size_t later : touched) PlaceTouched(later, index);
        order.push_back(index);
    }

    void AddIndexes(const std::unordered_set<const Word*>& names, std::vector<std::size_t>& list) const {
        for (const Word* name : names) {
            const auto found = indexes.find(name);
            if (found != indexes.end()) list.push_back(found->second);
        }
    }

    // What comes later in the source, but may be read or changed by the initial value of `user`.
    void PlaceTouched(std::size_t later, std::size_t user) {
        if (placed[later]) return;
        const bool changed = entries[user].effects.changes.count(entries[later].Name()) != 0;
        entries[later].changedBefore = entries[later].changedBefore || changed;
        if (IsThereFromTheStart(entries[later], changed)) Place(later);
    }

    static bool IsThereFromTheStart(const GlobalEntry& entry, bool changed) {
        if (entry.variable->isConst) return true;
        const Effects& effects = entry.effects;
        if (effects.anything || !effects.reads.empty() || !effects.changes.empty()) return false;
        const bool hasValue = !entry.variable->initialiser.empty();
        return !hasValue || !changed;
    }
};

}  // namespace

std::vector<GlobalEntry> GlobalsInOrder(Program& program) { return Sorter(CollectEntries(program)).Run(); }
