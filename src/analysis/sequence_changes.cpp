#include "analysis/sequence_changes.h"

#include <algorithm>

#include "analysis/reach_graph.h"
#include "base/run.h"
#include "base/text_hash.h"
#include "lexer/holes.h"

namespace {

// What of an item type counts here.
using ItemKey = std::string;

struct Facts {
    // The item types of Sequences that more than one routine can get at, by the Sequence's name.
    std::unordered_map<std::string, std::vector<ItemKey>> names;
    std::unordered_map<ItemKey, std::vector<int>> changers;        // nodes that change such a Sequence
    std::vector<int> changersOfAny;                                // nodes that change one of unknown type
    std::unordered_map<ItemKey, std::unordered_set<int>> answers;  // the nodes that may run one of these
};

Facts facts;
const PartOfRun partOfRun(facts);

ItemKey KeyOf(const ValueType& item) { return KorvelName(item); }

void AddName(const std::string& name, const ValueType& type) {
    if (type.sequence) facts.names[name].push_back(KeyOf(type.Item()));
}

// Who assigns a record over another one changes the Sequences in it.
void AddHeld(const std::string& name, const ValueType& type) {
    AddName(name, type);
    if (type.base != Base::Element || type.sequence) return;
    for (const ValueType& held : HeldSequences(*type.cls)) AddName(name, held);
}

void AddParameters(const Routine& routine) {
    for (const Parameter& parameter : routine.parameters) AddName(parameter.name, parameter.type);
}

// An untyped Global is a Sequence when a Function makes it one.
void AddGlobal(const Variable& global) {
    AddHeld(global.name, global.type);
    if (global.typed || global.initialiser.empty()) return;
    if (const Routine* maker = FindFunction(global.initialiser.front())) AddName(global.name, maker->result);
}

void AddChange(int node, const std::string& name) {
    for (const ItemKey& key : facts.names[name]) facts.changers[key].push_back(node);
}

// The Sequence that stands between `from` and a comma or the end: the last of its names decides. A name alone
// that is not known belongs to a Local.
void ReadTarget(int node, TokenSpan tokens, std::size_t from) {
    if (tokens.SignAt(from) == '(') ++from;
    std::size_t end = from;
    for (; end < tokens.size(); end = tokens.Behind(end)) {
        const char sign = tokens.SignAt(end);
        if (ClosesBracket(sign) || sign == ',' || sign == '|') break;
    }
    if (end == from) return;
    const std::string& name = tokens[end - 1];
    if (facts.names.count(name) != 0)
        AddChange(node, name);
    else if (end - from > 1)
        facts.changersOfAny.push_back(node);
}

// The variable, Field or item before "=".
void ReadAssigned(int node, TokenSpan tokens, std::size_t end) {
    int depth = 0;
    while (end > 0 && (tokens.SignAt(end - 1) == ']' || depth > 0)) {
        --end;
        if (tokens.SignAt(end) == ']') ++depth;
        if (tokens.SignAt(end) == '[') --depth;
    }
    if (end == 0) return;
    if (tokens.KeywordAt(end - 1) == Keyword::Its) facts.changersOfAny.push_back(node);
    if (facts.names.count(tokens[end - 1]) != 0) AddChange(node, tokens[end - 1]);
}

void ReadPart(int node, TokenSpan tokens) {
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (Has(tokens.KeywordAt(i), trait::addsOrRemoves)) ReadTarget(node, tokens, i + 1);
        const bool swaps = tokens.KeywordAt(i) == Keyword::SeqSwap;
        for (std::size_t k = i; swaps && k < tokens.size(); ++k)
            if (tokens.SignAt(k) == ',') ReadTarget(node, tokens, k + 1);
        if (tokens.SignAt(i) == '=') ReadAssigned(node, tokens, i);
    }
}

const std::unordered_set<int>& NodesThatChange(const ReachGraph& graph, const ValueType& item) {
    const ItemKey key = KeyOf(item);
    const auto answer = facts.answers.find(key);
    if (answer != facts.answers.end()) return answer->second;
    std::vector<int> open = facts.changers[key];
    open.insert(open.end(), facts.changersOfAny.begin(), facts.changersOfAny.end());
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        if (graph.nodes[i].holdsInlineCpp) open.push_back(static_cast<int>(i));
    return facts.answers.emplace(key, NodesThatRun(graph, open, {})).first->second;
}

bool MayChange(ReachGraph& graph, int node, const ValueType& item) {
    return NodesThatChange(graph, item).count(node) != 0;
}

void AddHeldSequences(const ClassInfo& element, std::vector<ValueType>& held, int depth) {
    constexpr int deepest = 16;  // Elements that hold one another have no end, and are refused elsewhere
    for (const auto& field : element.members) {
        const ValueType& type = field.second.type;
        if (type.sequence)
            held.push_back(type);
        else if (type.base == Base::Element && depth < deepest)
            AddHeldSequences(*type.cls, held, depth + 1);
    }
}

}  // namespace

std::vector<ValueType> HeldSequences(const ClassInfo& element) {
    std::vector<ValueType> held;
    AddHeldSequences(element, held, 0);
    return held;
}

void BeginSequenceChanges() {
    for (const auto& global : symbols.globals) AddGlobal(global.second);
    for (const auto& function : symbols.functions) AddParameters(function.second);
    for (const ClassInfo* cls : symbols.classList) {
        for (const auto& member : cls->members) AddHeld(member.first, member.second.type);
        for (const auto& method : cls->routines) AddParameters(method.second);
    }
}

void ReadSequenceChanges(int node, TokenSpan tokens) {
    if (facts.names.empty()) return;
    WithHoles(tokens, [node](TokenSpan part) { ReadPart(node, part); });
}

std::vector<std::uint64_t> NumbersOfSequenceChanges(std::size_t nodes) {
    std::vector<std::uint64_t> numbers(nodes);
    const auto add = [&numbers](std::vector<int> changers, std::uint64_t number) {
        std::sort(changers.begin(), changers.end());
        changers.erase(std::unique(changers.begin(), changers.end()), changers.end());
        for (const int node : changers) numbers[static_cast<std::size_t>(node)] += number;
    };
    for (const auto& [key, changers] : facts.changers) add(changers, TextHash(key));
    add(facts.changersOfAny, 1);
    return numbers;
}

bool RoutineMayChange(const std::string& name, const ValueType& item) {
    ReachGraph& graph = BuiltGraph();
    const int* routine = graph.routines.Find(name);
    return routine == nullptr || MayChange(graph, *routine, item);
}

bool TimersMayChange(const ValueType& item) {
    ReachGraph& graph = BuiltGraph();
    return MayChange(graph, graph.timers, item);
}

bool ConstructionMayChange(const ClassInfo& cls, const ValueType& item) {
    ReachGraph& graph = BuiltGraph();
    const auto found = graph.construction.find(&cls);
    return found != graph.construction.end() && MayChange(graph, found->second, item);
}

bool DestructorsMayChange(const ValueType& item) {
    ReachGraph& graph = BuiltGraph();
    return MayChange(graph, graph.destructors, item);
}
