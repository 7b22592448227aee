#include "symbols/effects.h"

#include "lexer/mentions.h"
#include "symbols/reach_graph.h"
#include "symbols/sequence_changes.h"

namespace {

// What a word means wherever it stands.
struct Role {
    bool variable = false;
    bool container = false;              // an array or a Sequence
    const ClassInfo* element = nullptr;  // whose Fields are read with the variable
    bool isUserlib = false, isExtern = false;
};

struct Facts {
    std::unordered_map<const Word*, Role> roles;
    std::unordered_set<const Word*> containerParameters;
    std::vector<Effects> own;  // of the nodes of the graph, without what they call
    std::size_t statementsRead = 0;
    std::unordered_map<int, Effects> closures;
};

Facts facts;

// ---- what words mean

void AddVariable(const std::string& name, const ValueType& type) {
    Role& role = facts.roles[&WordOf(name)];
    role.variable = true;
    role.container = role.container || type.IsArray() || type.sequence || !type.IsKnown();
    if (type.base == Base::Element) role.element = type.cls;
}

void AddParameters(const Routine& routine) {
    for (const Parameter& parameter : routine.parameters)
        if (parameter.type.IsArray() || parameter.type.sequence)
            facts.containerParameters.insert(&WordOf(parameter.name));
}

void AddRoles() {
    for (const auto& global : symbols.globals) AddVariable(global.first, global.second.type);
    for (const auto& constant : symbols.constants) AddVariable(constant.first, constant.second.type);
    for (const ClassInfo* cls : symbols.classList) {
        for (const auto& member : cls->members) AddVariable(member.first, member.second.type);
        for (const auto& method : cls->routines) AddParameters(method.second);
    }
    for (const auto& function : symbols.functions) {
        if (function.second.isExtern) facts.roles[&WordOf(function.first)].isExtern = true;
        AddParameters(function.second);
    }
    for (const auto& function : symbols.userlibRoutines)
        facts.roles[&WordOf(function.first)].isUserlib = true;
}

// ---- what single statements do

void AddKeyword(Keyword keyword, Effects& effects) {
    switch (keyword) {
        case Keyword::Print:
        case Keyword::Input:
        case Keyword::End:
            effects.changes.insert(WordOf(EffectMark::World));
            break;
        case Keyword::Create:
        case Keyword::New:
        case Keyword::Remove:
        case Keyword::Insert:
            effects.changes.insert(WordOf(EffectMark::Instances));
            break;
        case Keyword::First:
        case Keyword::Last:
        case Keyword::Before:
        case Keyword::After:
        case Keyword::Each:
        case Keyword::EachIn:
            effects.reads.insert(WordOf(EffectMark::Instances));
            break;
        case Keyword::AutoCall:
        case Keyword::StopCall:
            effects.changes.insert(WordOf(EffectMark::Timers));
            break;
        default:
            break;
    }
}

void AddWord(const Word& word, bool changes, Effects& effects) {
    const auto found = facts.roles.find(&word);
    if (found == facts.roles.end()) return;
    const Role& role = found->second;
    if (role.variable) effects.reads.insert(&word);
    if (role.variable && changes) effects.changes.insert(&word);
    if (role.isExtern) effects.anything = true;
    if (!role.isUserlib) return;
    effects.changes.insert(WordOf(EffectMark::Userlibs));
    effects.changes.insert(WordOf(EffectMark::World));
}

void AddTokens(TokenSpan tokens, bool changes, Effects& effects) {
    static const Word& getKey = WordOf("getkey");
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Word& word = tokens.At(i);
        if (word.text[0] == '"') AddTokens(HoleTokens(word.text), false, effects);
        AddKeyword(word.keyword, effects);
        AddWord(word, changes, effects);
        const bool key = tokens.SignAt(i + 1) == '(' && &WordOf(Lower(word.text)) == &getKey;
        if (key) effects.changes.insert(WordOf(EffectMark::World));
    }
}

// Statements that may change all that they name.
bool ChangesItsNames(TokenSpan tokens, Effects& effects) {
    switch (tokens.KeywordAt(0)) {
        case Keyword::For:
        case Keyword::EachSeq:
        case Keyword::Input:
        case Keyword::Remove:
            return true;
        default:
            break;
    }
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (!ChangesSequence(tokens.KeywordAt(i)) && tokens.KeywordAt(i) != Keyword::SeqSet) continue;
        effects.throughAlias = true;
        return true;
    }
    return false;
}

// Where the "=" of an assignment stands; 0 when the statement is none.
std::size_t AssignmentSign(TokenSpan tokens) {
    if (tokens.KeywordAt(0) != Keyword::None && tokens.KeywordAt(0) != Keyword::Its &&
        tokens.KeywordAt(0) != Keyword::This && tokens.SignAt(1) != '=')
        return 0;
    int depth = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const char sign = tokens.SignAt(i);
        if (sign == '(' || sign == '[') ++depth;
        if (sign == ')' || sign == ']') --depth;
        if (depth == 0 && sign == '=') return i;
    }
    return 0;
}

// The variable or Field that an assignment to the tokens changes: the last name outside brackets.
void AddTarget(TokenSpan target, Effects& effects) {
    const Word* name = nullptr;
    int depth = 0;
    for (std::size_t i = 0; i < target.size(); ++i) {
        const char sign = target.SignAt(i);
        if (sign == '(' || sign == '[') ++depth;
        if (sign == ')' || sign == ']') --depth;
        if (depth == 0 && sign == '\0') name = &target.At(i);
    }
    if (name == nullptr) return;
    const auto role = facts.roles.find(name);
    if (role != facts.roles.end() && role->second.variable) effects.changes.insert(name);
    const bool item = target.SignAt(target.size() - 1) == ']';
    if (item || facts.containerParameters.count(name) != 0) effects.throughAlias = true;
}

// The values that Fields begin with.
void AddFieldValues(TokenSpan tokens, Effects& effects) {
    bool value = false;
    int depth = 0;
    for (std::size_t i = 1; i < tokens.size(); ++i) {
        const char sign = tokens.SignAt(i);
        if (sign == '(' || sign == '[') ++depth;
        if (sign == ')' || sign == ']') --depth;
        if (depth == 0 && (sign == ',' || sign == '=')) value = sign == '=';
        if (value) AddTokens(tokens.Slice(i, i + 1), false, effects);
    }
}

void AddStatement(TokenSpan tokens, Effects& effects) {
    if (tokens.KeywordAt(0) == Keyword::Field) return AddFieldValues(tokens, effects);
    if (const std::size_t sign = AssignmentSign(tokens)) AddTarget(tokens.Slice(0, sign), effects);
    AddTokens(tokens, ChangesItsNames(tokens, effects), effects);
}

bool PartsStatements(const Word& word) {
    return word.sign == '|' || word.keyword == Keyword::Then || word.keyword == Keyword::Else ||
           word.keyword == Keyword::ElseIf || word.keyword == Keyword::EndIf;
}

// A single-line If holds further statements.
void AddLine(TokenSpan tokens, Effects& effects) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= tokens.size(); ++i) {
        if (i < tokens.size() && !PartsStatements(tokens.At(i))) continue;
        const bool condition = i < tokens.size() && tokens.KeywordAt(i) == Keyword::Then;
        const TokenSpan part = tokens.Slice(begin, i);
        if (condition)
            AddTokens(part, false, effects);
        else if (!part.empty())
            AddStatement(part, effects);
        begin = i + 1;
    }
}

// ---- what nodes do

const ReachGraph& ReadGraph() {
    const ReachGraph& graph = BuiltGraph();
    if (facts.own.empty()) AddRoles();
    facts.own.resize(graph.nodes.size());
    for (; facts.statementsRead < graph.statements.size(); ++facts.statementsRead) {
        const auto& [node, tokens] = graph.statements[facts.statementsRead];
        AddLine(tokens, facts.own[static_cast<std::size_t>(node)]);
    }
    return graph;
}

void Merge(const Effects& from, Effects& into) {
    into.reads.insert(from.reads.begin(), from.reads.end());
    into.changes.insert(from.changes.begin(), from.changes.end());
    into.anything = into.anything || from.anything;
    into.throughAlias = into.throughAlias || from.throughAlias;
}

// Who reads an Element reads its Fields.
void AddFields(const ClassInfo& element, std::unordered_set<const ClassInfo*>& met, Effects& effects) {
    if (!met.insert(&element).second) return;
    for (const auto& member : element.members) {
        effects.reads.insert(&WordOf(member.first));
        if (member.second.type.base == Base::Element && member.second.type.cls != nullptr)
            AddFields(*member.second.type.cls, met, effects);
    }
}

// What follows from the names alone.
void Complete(Effects& effects) {
    std::unordered_set<const ClassInfo*> met;
    const std::vector<const Word*> names(effects.reads.begin(), effects.reads.end());
    for (const Word* name : names) {
        const auto role = facts.roles.find(name);
        if (role == facts.roles.end()) continue;
        if (role->second.container && effects.throughAlias) effects.changes.insert(name);
        if (role->second.element != nullptr) AddFields(*role->second.element, met, effects);
    }
}

const Effects& EffectsOfNode(int start) {
    const auto known = facts.closures.find(start);
    if (known != facts.closures.end()) return known->second;
    const ReachGraph& graph = ReadGraph();
    Effects& effects = facts.closures[start];
    std::vector<int> open = {start};
    std::unordered_set<int> met = {start};
    while (!open.empty()) {
        const int node = open.back();
        open.pop_back();
        Merge(facts.own[static_cast<std::size_t>(node)], effects);
        const ReachNode& reached = graph.nodes[static_cast<std::size_t>(node)];
        effects.anything = effects.anything || reached.holdsInlineCpp;
        for (const int callee : reached.callees)
            if (met.insert(callee).second) open.push_back(callee);
    }
    Complete(effects);
    return effects;
}

}  // namespace

// No name has a blank in it.
const Word* WordOf(EffectMark mark) {
    static const Word* const words[] = {&WordOf("the objects"), &WordOf("the world"), &WordOf("the timers"),
                                        &WordOf("the userlibs")};
    return words[static_cast<std::size_t>(mark)];
}

Effects EffectsOf(TokenSpan value) {
    ReadGraph();
    Effects effects;
    AddTokens(value, ChangesItsNames(value, effects), effects);
    for (const int callee : BuiltGraph().At(AddValueNode(value)).callees)
        Merge(EffectsOfNode(callee), effects);
    Complete(effects);
    return effects;
}

Effects EffectsOfMaking(const ClassInfo& element) {
    const ReachGraph& graph = ReadGraph();
    const auto making = graph.construction.find(&element);
    return making == graph.construction.end() ? Effects() : EffectsOfNode(making->second);
}

Effects EffectsOfTimers() { return EffectsOfNode(BuiltGraph().timers); }

void ResetEffects() { facts = Facts(); }
