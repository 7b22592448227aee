#include "collect/value_circles.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "base/report.h"
#include "base/settings.h"
#include "lexer/mentions.h"
#include "symbols/symbols.h"

namespace {

struct Valued {
    const Variable* variable = nullptr;
    const ClassInfo* owner = nullptr;  // Fields
};

const Variable* Meant(Token name, const ClassInfo* owner) {
    if (owner != nullptr) return owner->members.Find(name);
    const Variable* global = symbols.globals.Find(name);
    return global != nullptr ? global : symbols.constants.Find(name);
}

void AddMentioned(TokenSpan value, const ClassInfo* owner, std::vector<const Variable*>& used) {
    const Tokens tokens = MentionedTokens(value);
    const TokenSpan span(tokens);
    for (std::size_t i = 0; i < span.size(); ++i) {
        const bool member = i > 0 && (span.SignAt(i - 1) == '\\' || span.SignAt(i - 1) == '.');
        const bool own = owner != nullptr && i > 1 && span.KeywordAt(i - 2) == Keyword::This;
        if ((member && !own) || span.SignAt(i + 1) == '(') continue;
        if (const Variable* variable = Meant(span.At(i), owner)) used.push_back(variable);
    }
}

// In its value and its sizes.
std::vector<const Variable*> UsedBy(const Variable& variable, const ClassInfo* owner) {
    std::vector<const Variable*> used;
    AddMentioned(variable.initialiser, owner, used);
    for (const std::string& size : variable.sizes) AddMentioned(Split(size), owner, used);
    return used;
}

// Fields take their values in their order; what stands below has none yet.
void CheckFieldOrder(const ClassInfo& cls) {
    for (auto field = cls.fields.begin(); field != cls.fields.end(); ++field) {
        const Variable* variable = cls.members.Find(*field);
        if (variable == nullptr) continue;
        for (const Variable* used : UsedBy(*variable, &cls)) {
            if (std::find(field + 1, cls.fields.end(), Token(used->name)) == cls.fields.end()) continue;
            settings.currentFile = variable->file;
            settings.currentLine = variable->line;
            ReportFatal("The value of Field '" + variable->name + "' needs '" + used->name +
                            "', which has none yet" +
                            Hint{"Fields get their values one after the other: declare '" + used->name +
                                 "' above '" + variable->name + "'"},
                        Tokens{used->name});
        }
    }
}

bool ComesFirst(const Valued& a, const Valued& b) {
    const auto place = [](const Variable& v) { return std::tie(v.file->text, v.line, v.name); };
    return place(*a.variable) < place(*b.variable);
}

// All variables whose declaration says more than a type.
std::vector<Valued> AllValued() {
    std::vector<Valued> all;
    const auto add = [&all](const NameTable<Variable>& variables, const ClassInfo* owner) {
        for (const auto& entry : variables) {
            const Variable& variable = entry.second;
            if (!variable.initialiser.empty() || (!variable.sizes.empty() && !variable.isPreCalc))
                all.push_back({&variable, owner});
        }
    };
    add(symbols.globals, nullptr);
    add(symbols.constants, nullptr);
    for (const ClassInfo* cls : symbols.classList) add(cls->members, cls);
    return all;
}

// Follows what the variables use, depth first; without recursion, for chains may be as long as the program.
class CircleSearch {
public:
    // True when what the variable uses leads into a circle, which Fail reports.
    bool Visit(const Valued& start) {
        if (states.count(start.variable) != 0) return false;
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
            if (state == states.end()) {
                Enter(used, start.owner);
            } else if (state->second == open) {
                closing = used;
                return true;
            }
        }
        return false;
    }

    [[noreturn]] void Fail() const {
        std::string chain;
        for (const Step& step : path)
            if (!chain.empty() || step.variable == closing) chain += step.variable->name + " -> ";
        settings.currentFile = closing->file;
        settings.currentLine = closing->line;
        ReportFatal("The value of '" + closing->name + "' depends on itself: " + chain + closing->name,
                    Tokens{closing->name});
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
    const Variable* closing = nullptr;  // what the last of the path uses, itself on the path

    void Enter(const Variable* variable, const ClassInfo* owner) {
        states[variable] = open;
        Step step;
        step.variable = variable;
        step.used = UsedBy(*variable, owner);
        path.push_back(std::move(step));
    }
};

}  // namespace

void CheckValueCircles() {
    std::vector<Valued> all = AllValued();
    CircleSearch search;
    const auto inCircle = [&search](const Valued& valued) { return search.Visit(valued); };
    if (std::none_of(all.begin(), all.end(), inCircle)) {
        for (const ClassInfo* cls : symbols.classList) CheckFieldOrder(*cls);
        return;
    }
    // Once more in the order of the program, so that every run tells the same.
    std::sort(all.begin(), all.end(), ComesFirst);
    search = CircleSearch();
    if (std::any_of(all.begin(), all.end(), inCircle)) search.Fail();
}
