// The graph behind the questions about what a piece of the program may run (reach.h, sequence_changes.h). Its
// nodes are routines, loops over instances and classes (their construction); an edge means "may run". Names
// are followed without regard to the object they are called on.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "analysis/effect_reader.h"
#include "base/token_span.h"
#include "symbols/symbols.h"

struct ReachNode {
    std::vector<int> callers, callees;
    bool createsAnything = false;
    bool holdsInlineCpp = false;
    bool removes = false;
};

// What a name of the program may stand for.
struct Meaning {
    int routine = -1;
    const ClassInfo* cls = nullptr;
};

struct ReachGraph {
    std::vector<ReachNode> nodes;
    NameTable<Meaning> words{mark::meanings};  // the names of routines, Types and Elements
    NameTable<int> routines;                   // by name, Functions and Methods of all Types in one
    std::unordered_map<const ClassInfo*, int> construction;
    std::unordered_map<std::string, int> loops;    // by place
    std::unordered_map<std::string, int> outside;  // the initial values of a file, by its path
    int timers = 0;
    int destructors = 0;
    std::unordered_map<const ClassInfo*, std::vector<int>>
        creators;                      // nodes that create the class themselves
    std::unordered_set<int> anything;  // nodes that may create any class

    ReachGraph() : timers(Add()), destructors(Add()) {}

    int Add() {
        nodes.emplace_back();
        return static_cast<int>(nodes.size()) - 1;
    }
    ReachNode& At(int node) { return nodes[static_cast<std::size_t>(node)]; }
    void Call(int caller, int callee) {
        At(callee).callers.push_back(caller);
        At(caller).callees.push_back(callee);
    }

    int RoutineNode(Token name) {
        const auto [node, isNew] = routines.Add(name);
        return isNew ? node = Add() : node;
    }
    template <class Map, class Key>
    int NodeOf(Map& map, const Key& key) {
        const auto found = map.find(key);
        return found != map.end() ? found->second : map.emplace(key, Add()).first->second;
    }
};

// The graph of the program; the first call reads all files.
ReachGraph& BuiltGraph();
// The nodes that may run one of `open`, apart from `known` ones.
std::unordered_set<int> NodesThatRun(const ReachGraph& over, std::vector<int> open,
                                     const std::unordered_set<int>& known);

// What the graph's builder hands on to sequence_changes.cpp: the beginning of the reading, each statement of
// a node, and the end of the run.
void BeginSequenceChanges();
void ReadSequenceChanges(int node, TokenSpan tokens);
// The same for effects.cpp: a routine begins (null when it is not known), and each of its statements, which are
// read when somebody asks for their effects. `outermost`: no block of the routine is open behind the statement.
void BeginEffects(const Routine* routine);
void NoteEffects(int node, TokenSpan tokens, bool outermost);
// Reads a statement for its effects at once; `names` are those of the routine so far.
void ReadEffects(int node, TokenSpan tokens, const RoutineNames& names);
// The effects of the node's own statements, to be added to.
EffectSet& OwnEffectsOf(int node);
// The same when all of them have been read, settled.
EffectSet AllOwnEffectsOf(int node);
// For when nobody asks for effects any more.
void ForgetOwnEffectsOf(int node);
// A number for each node, of the Sequences that its own statements may change.
std::vector<std::uint64_t> NumbersOfSequenceChanges(std::size_t nodes);
