#include "symbols/value_circles.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "driver/report.h"
#include "driver/settings.h"
#include "lexer/mentions.h"
#include "symbols/symbols.h"

namespace {

struct Valued {
    const Variable* variable = nullptr;
    const ClassInfo* owner = nullptr;  // Fields
};

const Variable* FindIn(const std::unordered_map<std::string, Variable>& variables, const std::string& name) {
    const auto found = variables.find(name);
    return found == variables.end() ? nullptr : &found->second;
}

const Variable* Meant(const std::string& name, const ClassInfo* owner) {
    if (owner != nullptr) return FindIn(owner->members, name);
    const Variable* global = FindIn(symbols.globals, name);
    return global != nullptr ? global : FindIn(symbols.constants, name);
}

void AddMentioned(TokenSpan value, const ClassInfo* owner, std::vector<const Variable*>& used) {
    const Tokens tokens = MentionedTokens(value);
    const TokenSpan span(tokens);
    for (std::size_t i = 0; i < span.size(); ++i) {
        const bool member = i > 0 && (span.SignAt(i - 1) == '\\' || span.SignAt(i - 1) == '.');
        if (member || span.SignAt(i + 1) == '(') continue;
        if (const Variable* variable = Meant(span[i], owner)) used.push_back(variable);
    }
}

bool ComesFirst(const Valued& a, const Valued& b) {
    const auto place = [](const Variable& v) { return std::tie(v.file, v.line, v.name); };
    return place(*a.variable) < place(*b.variable);
}

// All variables whose declaration says more than a type, in a lasting order.
std::vector<Valued> AllValued() {
    std::vector<Valued> all;
    const auto add = [&all](const std::unordered_map<std::string, Variable>& variables,
                            const ClassInfo* owner) {
        for (const auto& entry : variables) {
            const Variable& variable = entry.second;
            if (!variable.initialiser.empty() || (!variable.sizes.empty() && !variable.isPreCalc))
                all.push_back({&variable, owner});
        }
    };
    add(symbols.globals, nullptr);
    add(symbols.constants, nullptr);
    for (const ClassInfo* cls : symbols.classList) add(cls->members, cls);
    std::sort(all.begin(), all.end(), ComesFirst);
    return all;
}

// Follows what the variables use, depth first; without recursion, for chains may be as long as the program.
class CircleSearch {
public:
    void Visit(const Valued& start) {
        if (states.count(start.variable) != 0) return;
        Enter(start.variable, start.owner);
        while (!path.empty()) {
            Step& step = path.back();
            if (step.next == step.used.size()) {
                states[step.variable] = done;
                path.pop_back();
                continue;
            }
            const Variable* used = step.used[step.next++];
            const auto state = states.find(used);
            if (state == states.end())
                Enter(used, start.owner);
            else if (state->second == open)
                Fail(*used);
        }
    }

private:
    static constexpr int open = 1, done = 2;
    struct Step {
        const Variable* variable = nullptr;
        std::vector<const Variable*> used;
        std::size_t next = 0;
    };
    std::unordered_map<const Variable*, int> states;
    std::vector<Step> path;

    void Enter(const Variable* variable, const ClassInfo* owner) {
        states[variable] = open;
        Step step;
        step.variable = variable;
        AddMentioned(variable->initialiser, owner, step.used);
        for (const std::string& size : variable->sizes) AddMentioned(Split(size), owner, step.used);
        path.push_back(std::move(step));
    }

    [[noreturn]] void Fail(const Variable& first) const {
        std::string chain;
        for (const Step& step : path)
            if (!chain.empty() || step.variable == &first) chain += step.variable->name + " -> ";
        settings.currentFile = first.file;
        settings.currentLine = first.line;
        ReportFatal("The value of '" + first.name + "' depends on itself: " + chain + first.name);
    }
};

}  // namespace

void CheckValueCircles() {
    CircleSearch search;
    for (const Valued& valued : AllValued()) search.Visit(valued);
}
