#include "warnings/routine_watch.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "base/run.h"
#include "base/settings.h"
#include "lexer/holes.h"
#include "lexer/source_lines.h"
#include "statements/state.h"
#include "symbols/mistakes.h"
#include "warnings/table.h"

namespace {

struct Declared {
    const Word* name;
    Stop::Subject about;
    const char* warning;
};

// How often words are mentioned, by their numbers. Beginning anew costs nothing.
class Mentions {
public:
    void Begin() { ++round; }
    void Add(const Word& word) {
        if (word.id >= counts.size()) counts.resize(std::max(WordCount(), word.id + std::size_t{1}));
        Count& count = counts[word.id];
        if (count.round != round) count = {round, 0};
        ++count.times;
    }
    std::size_t Of(const Word& word) const {
        return word.id < counts.size() && counts[word.id].round == round ? counts[word.id].times : 0;
    }

private:
    struct Count {
        std::uint32_t round = 0, times = 0;
    };
    std::vector<Count> counts;
    std::uint32_t round = 1;
};

// What is known of the open routine.
struct Watched {
    const Word* name = nullptr;
    std::size_t mistakesBefore = 0;
    bool wasReachable = true;
    TokenSpan counted;  // for the mentions: the last statement
    std::vector<Declared> locals;
};
Watched watched;
Mentions mentioned;  // in it

std::vector<Declared> declaredAtTop;                             // of the main file
std::unordered_map<const Word*, std::size_t> mentionsInOwnBody;  // of its Functions
const PartOfRun partOfRun(watched, mentioned, declaredAtTop, mentionsInOwnBody);

bool DoesSomething(Keyword word) {
    switch (word) {
        case Keyword::Return:  // often written for form's sake behind what never ends
        case Keyword::Exit:
        case Keyword::Continue:
        case Keyword::End:
            return false;
        default:
            return BlockOf(word) == Keyword::None && !Has(word, trait::declares);
    }
}

void WatchReach(const State& state, TokenSpan statement) {
    if (state.routine.reachable) {
        watched.wasReachable = true;
    } else if (watched.wasReachable && DoesSomething(statement.KeywordAt(0))) {
        watched.wasReachable = false;
        WarnOf("unreachable", Kept(statement));
    }
}

// What runs code may be wanted for that alone.
bool RunsCode(TokenSpan value) {
    return std::any_of(value.first, value.last, [](Token token) {
        return token->sign == '(' || Has(token->keyword, trait::creates) || token->braced;
    });
}

void NoteDeclared(TokenSpan statement, std::vector<Declared>& list) {
    for (const TokenSpan part : statement.From(1).SplitAt(',')) {
        const std::size_t equals = part.FindEquals();
        if (equals == noToken || !RunsCode(part.From(equals + 1)))
            list.push_back({&part.At(0), Kept(part.Slice(0, 1)), "unused-variable"});
    }
}

// What stands behind a Then comes with its line and once more.
void CountMentions(TokenSpan statement) {
    const std::less<> before;
    const bool isCounted = watched.counted.first != nullptr &&
                           !before(statement.first, watched.counted.first) &&
                           before(statement.first, watched.counted.last);
    if (isCounted) return;
    watched.counted = statement;
    WithHoles(statement, [](TokenSpan tokens) {
        for (const Token* token = tokens.first; token != tokens.last; ++token)
            if ((*token)->sign == '\0') mentioned.Add(**token);
    });
}

void WarnOfUnusedLocals() {
    if (watched.locals.empty()) return;
    std::unordered_map<const Word*, std::size_t> declared;
    for (const Declared& local : watched.locals) ++declared[local.name];
    for (const Declared& local : watched.locals)
        if (mentioned.Of(*local.name) == declared[local.name]) WarnOf(local.warning, local.about);
}

void WatchDeclarations(const State& state, TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    if (word == Keyword::Local) NoteDeclared(statement, watched.locals);
    if (InRoutine(state) || !state.out->isMain || state.inExtern) return;
    if (word == Keyword::Global) NoteDeclared(statement, declaredAtTop);  // Consts may belong together
    if (word == Keyword::Function && !IsWord(statement[1], "main"))
        declaredAtTop.push_back({&statement.At(1), Kept(statement.Slice(1, 2)), "unused-function"});
}

void BeginRoutine() {
    watched = {};
    watched.mistakesBefore = MistakesSoFar();
    mentioned.Begin();
}

void EndRoutine(const State& state) {
    if (!symbols.inlineCpp && MistakesSoFar() == watched.mistakesBefore) WarnOfUnusedLocals();
    EndSequences();
    EndLoops();
    EndCopies();
    if (watched.name != nullptr && state.out->isMain)
        mentionsInOwnBody[watched.name] += mentioned.Of(*watched.name);
    BeginRoutine();
}

}  // namespace

void WatchRoutine(const State& state, TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    WatchDeclarations(state, statement);
    if (Has(word, trait::routine)) {
        BeginRoutine();
        EndLoops();
        EndCopies();
        if (word == Keyword::Function) watched.name = &statement.At(1);
        return CountMentions(statement);
    }
    if (!InRoutine(state)) return;
    CountMentions(statement);
    WatchReach(state, statement);
    WatchLoops(statement);
    WatchSequences(statement);
    if (!symbols.inlineCpp) WatchCopies(statement);
    if (Has(BlockOf(word), trait::routine)) EndRoutine(state);
}

void WarnOfUnused() {
    if (symbols.inlineCpp || declaredAtTop.empty()) return;
    mentioned.Begin();
    for (const std::string& file : symbols.sourceFiles)
        WithHoles(TokensOf(file), [&](TokenSpan tokens) {
            for (const Token* token = tokens.first; token != tokens.last; ++token) mentioned.Add(**token);
        });
    for (const Declared& declared : declaredAtTop) {
        const std::size_t own = std::max<std::size_t>(1, mentionsInOwnBody[declared.name]);
        if (mentioned.Of(*declared.name) <= own) WarnOf(declared.warning, declared.about);
    }
}
