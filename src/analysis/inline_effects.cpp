#include "analysis/inline_effects.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include "base/run.h"
#include "lexer/lexer.h"

namespace {

EffectSet outside;
const PartOfRun partOfRun(outside);

constexpr std::string_view prefix = "KVL_";

// Words that may stand before a parenthesis without calling anything that keeps a state of its own.
const std::unordered_set<std::string_view> harmless = {
    "if",      "while",     "for",         "switch",  "return",     "sizeof",
    "int",     "long",      "char",        "double",  "float",      "bool",
    "short",   "unsigned",  "static_cast", "size_t",  "const_cast", "reinterpret_cast",
    "string",  "to_string", "stoi",        "stod",    "stol",       "tolower",
    "toupper", "isdigit",   "isalpha",     "isalnum", "isspace",    "isupper",
    "islower", "ispunct",   "strlen",      "strcmp",  "memcmp",     "abs",
    "sqrt",    "pow",       "floor",       "ceil",    "round",      "fmod",
    "sin",     "cos",       "tan",         "log",     "exp",        "min",
    "max",     "swap",      "sort",        "reverse", "find",       "count",
    "fabs",    "decltype",  "vector",      "catch",
};

// Words of input and output, and of what outlives the call.
const std::unordered_set<std::string_view> noticed = {
    "cout", "cin", "cerr", "clog", "throw", "static", "thread_local", "extern", "asm", "goto",
};

bool IsName(const std::string& token) { return !token.empty() && IsLetterByte(token[0]); }

bool IsMember(TokenSpan tokens, std::size_t at) {
    if (at == 0) return false;
    return tokens.SignAt(at - 1) == '.' ||
           (at > 1 && tokens.SignAt(at - 1) == '>' && tokens.SignAt(at - 2) == '-');
}

void DoForeign(EffectSet& set) {
    for (const Thing thing : {screen, keyboard, foreignState}) set.Change(thing);
}

// A name of the program: a Global, Field or routine. Classes bring their constructors and all the rest along.
void ReadProgramName(ReachGraph& graph, int node, const Word& name, EffectSet& set) {
    const Meaning* meaning = graph.words.Find(name);
    if (meaning != nullptr && meaning->cls != nullptr) set.anything = true;
    if (meaning != nullptr && meaning->routine >= 0) {
        if (node < 0)
            set.anything = true;
        else
            graph.Call(node, meaning->routine);
    }
    EffectReader(set, nullptr).TouchSharedName(name);
}

void ReadName(ReachGraph& graph, int node, TokenSpan tokens, std::size_t at, EffectSet& set) {
    const std::string& token = tokens[at];
    if (token.compare(0, prefix.size(), prefix) == 0)
        return ReadProgramName(graph, node, WordOf(std::string_view(token).substr(prefix.size())), set);
    if (token.find(prefix) != std::string::npos) set.anything = true;  // __KVL_TFoo_list__
    ReadProgramName(graph, node, tokens.At(at), set);
    const bool calls = tokens.SignAt(at + 1) == '(' && !IsMember(tokens, at) && harmless.count(token) == 0;
    if (calls || noticed.count(token) != 0) DoForeign(set);
}

}  // namespace

void ReadInlineEffects(ReachGraph& graph, int node, const std::string& line) {
    std::string text = line;
    std::replace(text.begin(), text.end(), ';', ' ');  // begins no comment here
    const Tokens cut = Cut(text);
    const TokenSpan tokens = cut;
    if (node < 0 && tokens.SignAt(0) == '#' && Is(tokens[1], "include")) return;
    EffectSet& set = node < 0 ? outside : OwnEffectsOf(node);
    if (node < 0) DoForeign(set);
    for (std::size_t i = 0; i < tokens.size(); ++i)
        if (IsName(tokens[i])) ReadName(graph, node, tokens, i, set);
}

void NoteForeignEffects(int node) { DoForeign(OwnEffectsOf(node)); }

const EffectSet& EffectsOfOutsideCode() { return outside; }
