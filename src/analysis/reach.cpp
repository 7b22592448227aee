#include "analysis/reach.h"

#include <utility>

#include "analysis/inline_effects.h"
#include "analysis/reach_graph.h"
#include "base/run.h"
#include "lexer/holes.h"
#include "lexer/mentions.h"
#include "lexer/source_lines.h"
#include "symbols/modules.h"
#include "symbols/program_files.h"

namespace {

ReachGraph graph;
bool built = false;
std::unordered_map<const ClassInfo*, std::unordered_set<int>>
    answers;                       // the nodes that may create a class, but for those that may create any
std::unordered_set<int> removers;  // the nodes that may remove an object
const PartOfRun partOfRun(graph, built, answers, removers);

std::string PlaceOf(const std::string& fileId, int line) { return fileId + ":" + std::to_string(line); }

void AddNames() {
    for (const auto& function : symbols.functions) graph.RoutineNode(function.first);
    for (const ClassInfo* cls : symbols.classList) {
        for (const Token method : cls->methods) graph.RoutineNode(method);
    }
    for (const auto& routine : symbols.userlibRoutines) graph.RoutineNode(routine.first);
    for (const auto& routine : graph.routines) graph.words[routine.first].routine = routine.second;
    for (const auto& cls : symbols.classIndex) graph.words[cls.first].cls = cls.second;
}

// Reads one file and adds what its routines and loops mention.
class FileReach {
public:
    explicit FileReach(const std::string& path)
        : file(path), fileId(FileId(path)), isModule(IsModule(path)) {}

    void Read() { ReadLines(); }

private:
    static constexpr int outside = -1;

    std::string file, fileId;
    bool isModule;
    int partsRead = 0;
    int node = outside;          // the routine or loop that the statement belongs to
    std::vector<int> enclosing;  // what Next, NextSeq and Wend return to
    const ClassInfo* cls = nullptr;
    int blocks = 0;  // that are open in the routine

    void ReadLines() {
        SourceLines lines(Reading::Uses);
        if (!lines.Open(file)) return;
        if (!isModule)
            lines.onInlineCpp = [this](const InlineLine& line) { ReadInlineEffects(graph, node, line.text); };
        while (lines.Next()) {
            if (lines.MetInlineCpp()) NoteInlineCpp();
            for (const TokenSpan statement : lines.Statements()) ReadStatement(statement, lines.Line());
        }
        if (lines.MetInlineCpp()) NoteInlineCpp();
    }

    void NoteInlineCpp() {
        if (node == outside) return;
        if (isModule) return NoteForeignEffects(node);
        graph.At(node).createsAnything = true;
        graph.At(node).holdsInlineCpp = true;
    }

    // The statements of a file included in the open routine are the routine's.
    void ReadPart(TokenSpan tokens) {
        const auto name = IncludedName(tokens);
        if (!name) return;
        const std::string path = PathOfInclude(*name);
        if (!IsPart(path) || ++partsRead > mostParts) return;
        const std::string outer = std::exchange(file, path), outerId = std::exchange(fileId, FileId(path));
        ReadLines();
        file = outer;
        fileId = outerId;
    }

    void ReadStatement(TokenSpan tokens, int line) {
        const Keyword word = tokens.KeywordAt(0);
        switch (word) {
            case Keyword::Function:
            case Keyword::Method:
                OpenRoutine(word, tokens.At(1));
                return ReadDefaults(tokens);
            case Keyword::EndFunction:
            case Keyword::EndMethod:
                node = outside;
                return;
            case Keyword::Type:
            case Keyword::Element:
                cls = FindClass(tokens.At(1));
                return;
            case Keyword::EndType:
            case Keyword::EndElement:
                cls = nullptr;
                return;
            case Keyword::Field:
                if (cls) return ReadField(tokens);
                break;
            case Keyword::Include:
                if (node != outside) ReadPart(tokens);
                return;
            case Keyword::Global:
            case Keyword::Const:
                Mention(graph.NodeOf(graph.outside, file), tokens);
                break;
            default:
                break;
        }
        if (node != outside) ReadCode(word, tokens, line);
    }

    void ReadField(TokenSpan tokens) {
        const int construction = graph.NodeOf(graph.construction, cls);
        Mention(construction, tokens);
        BeginEffects(nullptr);
        NoteEffects(construction, tokens, false);
        ReadSequenceChanges(construction, tokens);
    }

    // Who calls the routine works out what the holes in its default values hold.
    void ReadDefaults(TokenSpan header) {
        for (std::size_t i = 0; i < header.size(); ++i) {
            if (header[i][0] != '"') continue;
            const Tokens hole = HoleTokens(header.At(i));
            Mention(node, hole);
            ReadEffects(node, hole, {});
            ReadSequenceChanges(node, hole);
        }
    }

    void OpenRoutine(Keyword word, const Word& name) {
        node = graph.RoutineNode(name);
        enclosing.clear();
        blocks = 0;
        const bool method = word == Keyword::Method && cls != nullptr;
        BeginEffects(method ? FindMethod(*cls, name) : FindFunction(name));
        if (!method) return;
        if (name.text == "constructor") graph.Call(graph.NodeOf(graph.construction, cls), node);
        if (name.text != "destructor") return;
        graph.Call(graph.destructors, node);
        // Records go when a routine is left, whichever it is.
        if (cls->isElement) graph.Call(graph.timers, node);
    }

    static bool OpensLoop(Keyword word) {
        return word == Keyword::For || word == Keyword::While || word == Keyword::EachSeq;
    }
    static bool EndsLoop(Keyword word) {
        return word == Keyword::Next || word == Keyword::NextSeq || word == Keyword::Wend;
    }

    void ReadCode(Keyword word, TokenSpan tokens, int line) {
        if (EndsLoop(word)) {
            if (enclosing.empty()) return;
            --blocks;
            node = enclosing.back();
            enclosing.pop_back();
            return;
        }
        const bool opens = OpensLoop(word);
        const bool plain = word == Keyword::None || word == Keyword::Local || word == Keyword::Print ||
                           word == Keyword::Return;
        const bool overInstances = !plain && WalksInstances(tokens);
        if (opens) enclosing.push_back(node);
        if (overInstances) {
            const int loop = OpenLoop(line);
            if (opens)
                node = loop;
            else
                graph.At(loop).createsAnything = true;  // a loop within a single-line If
        }
        Mention(node, tokens);
        ReadSequenceChanges(node, tokens);
        NoteBlocks(word, tokens);
        NoteEffects(node, tokens, blocks == 0);
    }

    static bool IsOneLine(TokenSpan tokens) {
        for (std::size_t i = 0; i + 1 < tokens.size(); ++i)
            if (tokens.KeywordAt(i) == Keyword::Then) return true;
        return false;
    }

    void NoteBlocks(Keyword word, TokenSpan tokens) {
        const bool openIf = word == Keyword::If && !IsOneLine(tokens);
        if (openIf || (word != Keyword::If && Has(word, trait::opensBlock))) ++blocks;
        if (Has(word, trait::closesBlock)) --blocks;
    }

    static bool WalksInstances(TokenSpan tokens) {
        for (std::size_t i = 0; i < tokens.size(); ++i)
            if (tokens.KeywordAt(i) == Keyword::Each || tokens.KeywordAt(i) == Keyword::EachIn) return true;
        return false;
    }

    int OpenLoop(int line) {
        const int loop = graph.NodeOf(graph.loops, PlaceOf(fileId, line));
        graph.Call(node, loop);
        graph.Call(loop, graph.timers);
        graph.Call(loop, graph.destructors);
        return loop;
    }

    static void Mention(int node, TokenSpan tokens) {
        bool startsTimer = false;
        Keyword before = Keyword::None;
        for (const Token* token = tokens.first; token != tokens.last; before = (*token++)->keyword) {
            const Word& word = **token;
            if (word.sign != '\0') continue;
            if (HasHoles(word)) Mention(node, HoleTokens(word));
            if (word.keyword != Keyword::None) MentionKeyword(node, word.keyword);
            startsTimer = startsTimer || word.keyword == Keyword::AutoCall;
            const Meaning* meaning = graph.words.Find(word);
            if (meaning == nullptr) continue;
            if (meaning->routine >= 0) graph.Call(node, meaning->routine);
            if (meaning->routine >= 0 && startsTimer) graph.Call(graph.timers, meaning->routine);
            if (meaning->cls != nullptr) MentionClass(node, *meaning->cls, before);
        }
    }

    static void MentionKeyword(int node, Keyword keyword) {
        if (keyword == Keyword::Insert) graph.At(node).createsAnything = true;
        if (keyword == Keyword::SeqSort) graph.Call(node, graph.RoutineNode("Compare"));
        if (keyword == Keyword::Remove) {
            graph.At(node).removes = true;
            graph.Call(node, graph.destructors);
        }
    }

    static void MentionClass(int node, const ClassInfo& cls, Keyword before) {
        const bool created = Has(before, trait::creates);
        if (!created && !cls.isElement) return;
        graph.Call(node, graph.NodeOf(graph.construction, &cls));
        if (created) graph.creators[&cls].push_back(node);
    }
};

void Build() {
    built = true;
    AddNames();
    BeginSequenceChanges();
    for (const std::string& file : symbols.sourceFiles)
        if (!IsPart(file)) FileReach(file).Read();
    std::vector<int> creators;
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        if (graph.nodes[i].createsAnything) creators.push_back(static_cast<int>(i));
    graph.anything = NodesThatRun(graph, creators, {});
    std::vector<int> removing;
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        if (graph.nodes[i].removes || graph.nodes[i].holdsInlineCpp) removing.push_back(static_cast<int>(i));
    removers = NodesThatRun(graph, removing, {});
}

// The nodes that may create an object of the class without being able to create anything.
const std::unordered_set<int>& NodesThatCreate(const ClassInfo& cls) {
    const auto answer = answers.find(&cls);
    if (answer != answers.end()) return answer->second;
    return answers.emplace(&cls, NodesThatRun(graph, graph.creators[&cls], graph.anything)).first->second;
}

}  // namespace

ReachGraph& BuiltGraph() {
    if (!built) Build();
    return graph;
}

std::unordered_set<int> NodesThatRun(const ReachGraph& over, std::vector<int> open,
                                     const std::unordered_set<int>& known) {
    std::unordered_set<int> marked(open.begin(), open.end());
    while (!open.empty()) {
        const int node = open.back();
        open.pop_back();
        for (const int caller : over.nodes[static_cast<std::size_t>(node)].callers)
            if (known.count(caller) == 0 && marked.insert(caller).second) open.push_back(caller);
    }
    return marked;
}

bool IsGraphBuilt() { return built; }

void ForgetGraphNodes() { std::vector<ReachNode>().swap(graph.nodes); }

bool LoopMayCreate(const std::string& file, int line, const ClassInfo& cls) {
    BuiltGraph();
    const auto loop = graph.loops.find(PlaceOf(FileId(file), line));
    if (loop == graph.loops.end()) return true;
    return graph.anything.count(loop->second) != 0 || NodesThatCreate(cls).count(loop->second) != 0;
}

// Every routine looks after the timers when it is entered.
bool RoutineMayRemove(const std::string& name) {
    const int* routine = BuiltGraph().routines.Find(name);
    if (routine == nullptr || removers.count(graph.timers) != 0) return true;
    return removers.count(*routine) != 0;
}
