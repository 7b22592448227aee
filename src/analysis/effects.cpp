#include "analysis/effects.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "analysis/inline_effects.h"
#include "analysis/reach_graph.h"
#include "base/run.h"
#include "lexer/holes.h"
#include "symbols/modules.h"
#include "symbols/scopes.h"

namespace {

// Who may run more routines than this is taken to do anything.
constexpr std::size_t mostRoutines = 300;

// The tokens are those of the cut files, which last. A program has so many statements that their records are small.
struct Statement {
    const Token* first;
    std::uint32_t size;
    std::uint32_t node : 31;
    std::uint32_t outermost : 1;
};

// A routine, which is read when somebody asks for its effects. Its statements end where those of the next begin.
struct RoutineText {
    const Routine* routine;
    std::size_t begin;
    bool isRead = false;
};

// A routine with statements of a node, and behind the place of the one before among those of the node; 0 where there is none.
struct TextOfNode {
    std::uint32_t text, before;
};

struct Facts {
    std::deque<Statement> statements;  // of all routines
    std::deque<RoutineText> texts;
    std::deque<TextOfNode> textsOfNodes;
    std::vector<std::uint32_t> lastTextOf;        // of the nodes, among these, as `before` is
    std::unordered_map<int, EffectSet> own;       // of the nodes themselves, as far as they were read
    std::unordered_map<int, EffectSet> closures;  // with all that the nodes may run, as far as asked for
    std::unordered_map<int, bool>
        runsItself;  // whether nodes may come back to themselves, as far as asked for
    bool complete = false;
};

Facts facts;
const PartOfRun partOfRun(facts);

// What a function of C may do: it knows nothing of the program but what it is handed, unless it is inline C++.
void AddForeign(const ReachGraph& graph, Token name) {
    const int* node = graph.routines.Find(name);
    if (node == nullptr) return;
    const Routine* routine = FindFunction(name);
    const Token file = routine == nullptr ? name : routine->file;
    EffectSet& set = OwnEffectsOf(*node);
    set.readsPassed = true;
    if (IsPureModule(file)) return;
    if (!IsModule(file)) set.Add(EffectsOfOutsideCode());
    set.Change(foreignState);
    if (symbols.userlibRoutines.Has(name)) set.Change(userlibs);
    set.changesPassed = true;
}

void Complete(ReachGraph& graph) {
    for (const auto& function : symbols.externFunctions) AddForeign(graph, function.first);
    for (const auto& routine : symbols.userlibRoutines) AddForeign(graph, routine.first);
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        if (graph.nodes[i].holdsInlineCpp) OwnEffectsOf(static_cast<int>(i)).Add(EffectsOfOutsideCode());
}

void ReadText(std::size_t number) {
    RoutineText& text = facts.texts[number];
    if (std::exchange(text.isRead, true)) return;
    const bool last = number + 1 == facts.texts.size();
    const std::size_t end = last ? facts.statements.size() : facts.texts[number + 1].begin;
    RoutineNames names = NamesOf(text.routine);
    for (std::size_t i = text.begin; i < end; ++i) {
        const Statement& statement = facts.statements[i];
        const TokenSpan tokens(statement.first, statement.first + statement.size);
        ReadEffects(static_cast<int>(statement.node), tokens, names);
        AddNames(tokens, statement.outermost != 0, names);
    }
}

void ReadTextsOf(int node) {
    const auto i = static_cast<std::size_t>(node);
    if (i >= facts.lastTextOf.size()) return;
    for (std::uint32_t at = std::exchange(facts.lastTextOf[i], 0); at != 0;
         at = facts.textsOfNodes[at - 1].before)
        ReadText(facts.textsOfNodes[at - 1].text);
}

EffectSet Closure(const ReachGraph& graph, int start) {
    std::vector<int> open = {start};
    std::unordered_set<int> met = {start};
    EffectSet set;
    while (!open.empty()) {
        const int node = open.back();
        open.pop_back();
        ReadTextsOf(node);
        set.Add(OwnEffectsOf(node));
        for (const int callee : graph.nodes[static_cast<std::size_t>(node)].callees)
            if (met.insert(callee).second) open.push_back(callee);
        if (met.size() > mostRoutines) set.anything = true;
        if (set.anything) break;
    }
    set.Settle();
    return set;
}

bool IsMade(TokenSpan tokens, std::size_t at) {
    const Keyword before = at > 0 ? tokens.KeywordAt(at - 1) : Keyword::None;
    return Has(before, trait::creates);
}

bool MayRun(TokenSpan tokens, std::size_t at) {
    return IsMade(tokens, at) || (tokens.SignAt(at + 1) == '(' && tokens.SignAt(at) == '\0');
}

ReachGraph& CompleteGraph() {
    ReachGraph& graph = BuiltGraph();
    if (!std::exchange(facts.complete, true)) Complete(graph);
    return graph;
}

const EffectSet& ClosureOf(int node) {
    const ReachGraph& graph = CompleteGraph();
    const auto known = facts.closures.find(node);
    if (known != facts.closures.end()) return known->second;
    return facts.closures.emplace(node, Closure(graph, node)).first->second;
}

// What the calls and constructions in the tokens do. Every routine that is entered may let timers run.
void AddCalls(TokenSpan tokens, EffectSet& set) {
    bool calls = false;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (!MayRun(tokens, i)) continue;
        ReachGraph& graph = CompleteGraph();
        const Meaning* meaning = graph.words.Find(tokens.At(i));
        if (meaning == nullptr) continue;
        calls = true;
        const auto construction = graph.construction.find(meaning->cls);
        const bool made = IsMade(tokens, i) && construction != graph.construction.end();
        if (made) set.Add(ClosureOf(construction->second));
        if (!made && meaning->routine >= 0) set.Add(ClosureOf(meaning->routine));
    }
    if (calls) set.Add(ClosureOf(CompleteGraph().timers));
}

}  // namespace

EffectSet& OwnEffectsOf(int node) { return facts.own[node]; }

EffectSet AllOwnEffectsOf(int node) {
    CompleteGraph();
    ReadTextsOf(node);
    EffectSet set = OwnEffectsOf(node);
    set.Settle();
    return set;
}

void ForgetOwnEffectsOf(int node) { facts.own.erase(node); }

void BeginEffects(const Routine* routine) { facts.texts.push_back({routine, facts.statements.size()}); }

void NoteEffects(int node, TokenSpan tokens, bool outermost) {
    const auto i = static_cast<std::size_t>(node);
    if (i >= facts.lastTextOf.size()) facts.lastTextOf.resize(i + 1);
    std::uint32_t& last = facts.lastTextOf[i];
    const auto text = static_cast<std::uint32_t>(facts.texts.size() - 1);
    if (last == 0 || facts.textsOfNodes[last - 1].text != text) {
        facts.textsOfNodes.push_back({text, last});
        last = static_cast<std::uint32_t>(facts.textsOfNodes.size());
    }
    facts.statements.push_back({tokens.first, static_cast<std::uint32_t>(tokens.size()),
                                static_cast<std::uint32_t>(node), outermost ? 1U : 0U});
}

void ReadEffects(int node, TokenSpan tokens, const RoutineNames& names) {
    EffectSet& set = OwnEffectsOf(node);
    if (set.anything) return;
    EffectReader(set, &names).ReadStatement(tokens);
    constexpr std::size_t worthSettling = 256;
    if (set.reads.size() > worthSettling || set.changes.size() > worthSettling) set.Settle();
}

namespace {

// Whether who is called changes what it was handed. Of a record that may be an array or Sequence in it.
bool IsChanged(const EffectSet& set, const Variable& own) {
    if (set.anything) return true;
    if (!own.type.IsSingle()) return set.changesPassed;
    std::vector<Thing> fields;
    if (own.type.cls != nullptr) AddFields(*own.type.cls, fields);
    if (set.changesPassed && std::any_of(fields.begin(), fields.end(), HoldsItems)) return true;
    std::sort(fields.begin(), fields.end());
    return Meet(fields, set.changes);
}

EffectSet Effects(TokenSpan tokens, void (EffectReader::*read)(TokenSpan)) {
    EffectSet set;
    if (!symbols.complete) return set;
    EffectReader reader(set, nullptr);
    (reader.*read)(tokens);
    WithHoles(tokens, [&set](TokenSpan part) { AddCalls(part, set); });
    set.Settle();
    for (const Word* name : reader.handedOn)
        if (IsChanged(set, *FindLocal(*name))) set.ownChanges.push_back(ThingOf(*name));
    set.Settle();
    return set;
}

bool MayRunItself(int node) {
    const auto [known, isNew] = facts.runsItself.emplace(node, false);
    if (!isNew) return known->second;
    const ReachGraph& graph = CompleteGraph();
    std::unordered_set<int> met;
    for (std::vector<int> open = {node}; !open.empty() && !known->second;) {
        const auto at = static_cast<std::size_t>(open.back());
        open.pop_back();
        for (const int callee : graph.nodes[at].callees) {
            known->second = known->second || callee == node;
            if (met.insert(callee).second) open.push_back(callee);
        }
    }
    return known->second;
}

// Whether a routine that is called there may run again meanwhile.
bool MayRunItself(TokenSpan tokens) {
    bool may = false;
    WithHoles(tokens, [&may](TokenSpan part) {
        for (std::size_t i = 0; i < part.size() && !may; ++i) {
            const Meaning* meaning = MayRun(part, i) ? CompleteGraph().words.Find(part.At(i)) : nullptr;
            may = meaning != nullptr && meaning->routine >= 0 && MayRunItself(meaning->routine);
        }
    });
    return may;
}

}  // namespace

EffectSet EffectsOf(TokenSpan tokens) { return Effects(tokens, &EffectReader::ReadValue); }
EffectSet EffectsOfAssigned(TokenSpan tokens) { return Effects(tokens, &EffectReader::ReadAssignment); }
EffectSet EffectsOfPlace(TokenSpan tokens) { return Effects(tokens, &EffectReader::ReadPlace); }
EffectSet EffectsOfTarget(TokenSpan tokens) { return Effects(tokens, &EffectReader::ReadTarget); }

EffectSet EffectsOfMaking(const ClassInfo& element) {
    const ReachGraph& graph = CompleteGraph();
    const auto making = graph.construction.find(&element);
    return making == graph.construction.end() ? EffectSet() : ClosureOf(making->second);
}

EffectSet EffectsOfRoutine(const Routine& routine) {
    const ReachGraph& graph = CompleteGraph();
    if (const int* node = graph.routines.Find(routine.name)) return ClosureOf(*node);
    EffectSet unknown;
    unknown.anything = true;
    return unknown;
}

EffectSet EffectsOfTimers() { return ClosureOf(CompleteGraph().timers); }

bool OrderCanBeSeen(const std::vector<EffectSet>& pieces) {
    EffectSet before;
    for (const EffectSet& effects : pieces) {
        if (Conflict(before, effects)) return true;
        before.Add(effects);
        before.Settle();
    }
    return false;
}

bool OrderCanBeSeen(const std::vector<TokenSpan>& pieces) {
    std::vector<EffectSet> effects;
    effects.reserve(pieces.size());
    for (const TokenSpan piece : pieces) effects.push_back(EffectsOf(piece));
    return OrderCanBeSeen(effects);
}

bool MayChange(TokenSpan changing, TokenSpan reading) {
    return MayChange(EffectsOf(changing), EffectsOf(reading));
}

bool MayRepeat(TokenSpan tokens) { return ChangesNothing(EffectsOf(tokens)) && !MayRunItself(tokens); }
