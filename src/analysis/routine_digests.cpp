#include "analysis/routine_digests.h"

#include <algorithm>

#include "analysis/reach_graph.h"
#include "base/text_hash.h"

namespace {

// Keeps apart what is added up: nothing goes into a sum but what Numbered gives.
enum class Part : std::uint8_t {
    Routine,
    Construction,
    Timers,
    Destructors,
    Creation,
    Call,
    Loop,
    Anything,
    Items,
    Read,
    Change,
    Nodes,
    SequenceChanges
};

std::uint64_t Numbered(Part part, std::uint64_t number) {
    Digest digest;
    digest.Add(static_cast<std::uint64_t>(part));
    digest.Add(number);
    return digest.Value();
}

std::size_t IndexOf(int node) { return static_cast<std::size_t>(node); }

std::vector<int> Distinct(std::vector<int> nodes) {
    std::sort(nodes.begin(), nodes.end());
    nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    return nodes;
}

std::uint64_t NumberOf(Thing thing) {
    return thing < firstNamed ? thing : TextHash(WordWithId(thing - firstNamed).text);
}

std::uint64_t NumberOf(const EffectSet& set) {
    if (set.anything) return Numbered(Part::Anything, 0);
    std::uint64_t items = 0;
    for (const bool flag : {set.readsItems, set.changesItems, set.readsPassed, set.changesPassed})
        items = items * 2 + (flag ? 1 : 0);
    std::uint64_t sum = Numbered(Part::Items, items);
    for (const Thing thing : set.reads) sum += Numbered(Part::Read, NumberOf(thing));
    for (const Thing thing : set.changes) sum += Numbered(Part::Change, NumberOf(thing));
    return sum;
}

std::uint64_t NumberOf(const ReachNode& node) {
    const unsigned flags =
        (node.createsAnything ? 1U : 0U) + (node.holdsInlineCpp ? 2U : 0U) + (node.removes ? 4U : 0U);
    return Numbered(Part::Nodes, flags);
}

}  // namespace

RoutineDigests::RoutineDigests() {
    const ReachGraph& graph = BuiltGraph();
    names.resize(graph.nodes.size());
    for (const auto& [name, node] : graph.routines)
        names[IndexOf(node)] = Numbered(Part::Routine, TextHash(name->text));
    for (const auto& [cls, node] : graph.construction)
        names[IndexOf(node)] = Numbered(Part::Construction, TextHash(cls->name));
    names[IndexOf(graph.timers)] = Numbered(Part::Timers, 0);
    names[IndexOf(graph.destructors)] = Numbered(Part::Destructors, 0);
    facts = NumbersOfSequenceChanges(graph.nodes.size());
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        facts[i] = Numbered(Part::SequenceChanges, facts[i]) + NumberOf(graph.nodes[i]);
    for (const auto& [cls, nodes] : graph.creators)
        for (const int node : Distinct(nodes))
            facts[IndexOf(node)] += Numbered(Part::Creation, TextHash(cls->name));
}

// A sum, since neither the order nor the number of calls can be told. Loops hold loops, and may be taken for one another
// where they begin on one line.
std::uint64_t RoutineDigests::OfNode(int node, int depth) const {
    constexpr int deepest = 1000;  // as blocks may be open
    std::uint64_t sum = facts[IndexOf(node)] + NumberOf(AllOwnEffectsOf(node));
    for (const int callee : Distinct(BuiltGraph().At(node).callees)) {
        const std::uint64_t name = names[IndexOf(callee)];
        if (name != 0) sum += Numbered(Part::Call, name);
        if (name == 0 && callee != node && depth < deepest)
            sum += Numbered(Part::Loop, OfNode(callee, depth + 1));
    }
    return sum;
}

std::uint64_t RoutineDigests::Of(Token name) {
    const int* node = BuiltGraph().routines.Find(name);
    return node == nullptr ? 0 : OfNode(*node, 0);
}

std::uint64_t RoutineDigests::OfTimers() { return OfNode(BuiltGraph().timers, 0); }

void RoutineDigests::Forget(Token name) {
    if (const int* node = BuiltGraph().routines.Find(name)) ForgetOwnEffectsOf(*node);
}

void ReadRoutines() { BuiltGraph(); }

std::vector<Token> NamesOfRoutines() {
    std::vector<Token> names;
    for (const auto& routine : BuiltGraph().routines) names.push_back(routine.first);
    return names;
}

Concerned::Concerned(const std::vector<Token>& routines) {
    std::vector<int> open;
    for (const Token name : routines)
        if (const int* node = BuiltGraph().routines.Find(name)) open.push_back(*node);
    nodes = NodesThatRun(BuiltGraph(), open, {});
}

bool Concerned::IsEverything() const {
    const ReachGraph& graph = BuiltGraph();
    return nodes.count(graph.timers) != 0 ||
           std::any_of(graph.construction.begin(), graph.construction.end(), [this](const auto& made) {
               return made.first->isElement && nodes.count(made.second) != 0;
           });
}

bool Concerned::HasRoutine(Token name) const {
    const int* node = BuiltGraph().routines.Find(name);
    return node != nullptr && nodes.count(*node) != 0;
}

bool Concerned::HasMaking(const ClassInfo& cls) const {
    const auto made = BuiltGraph().construction.find(&cls);
    return made != BuiltGraph().construction.end() && nodes.count(made->second) != 0;
}

bool Concerned::HasValuesOf(const std::string& source) const {
    const auto outside = BuiltGraph().outside.find(source);
    return outside != BuiltGraph().outside.end() && nodes.count(outside->second) != 0;
}
