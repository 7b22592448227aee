#include "expressions/sequence_walks.h"

#include <algorithm>

#include "analysis/sequence_changes.h"
#include "base/report.h"
#include "base/run.h"
#include "prelude/support.h"
#include "symbols/scopes.h"

namespace {

// Where a Sequence lives, which decides under which other names it may be met.
enum class Home : unsigned char { Local, Parameter, Global, Field, Unknown };

struct Place {
    const Expr* tree;
    Home home = Home::Unknown;
    std::string field;  // name of the Field
};

}  // namespace

struct OpenWalk {
    KeptTree sequence;
    Place place;
    std::string name;
    int number = 0;
    bool changed = false;

    const ValueType& Type() const { return place.tree->type; }
};

namespace {

std::vector<OpenWalk> walks;  // the innermost loop last
int walkCount = 0;
const PartOfRun partOfRun(walks, walkCount);

Home HomeOf(const Expr& sequence) {
    const Variable* variable = VariableOf(sequence);
    if (variable == nullptr) return sequence.kind == ExprKind::Field ? Home::Field : Home::Unknown;
    if (FindLocal(variable->name) == variable) return variable->isParameter ? Home::Parameter : Home::Local;
    return FindGlobal(variable->name) == variable ? Home::Global : Home::Field;
}

Place PlaceOf(const Expr& sequence) {
    const Home home = HomeOf(sequence);
    return {&sequence, home, home == Home::Field ? sequence.variable->name : ""};
}

// Whether they are one Sequence, unless an object or index on the way has changed in between.
bool IsSame(const Expr& walked, const Expr& sequence) {
    return !walked.effects && AreAlike(walked, sequence);
}
bool IsOver(const OpenWalk& walk, const Expr& sequence) { return IsSame(*walk.place.tree, sequence); }

// Whether the way to the Sequence leads through no object or item that may become another one: it is a variable,
// or a Field of a record.
bool StaysInPlace(const Expr& sequence) {
    if (VariableOf(sequence) != nullptr) return true;
    if (sequence.kind != ExprKind::Field) return false;
    const Variable* record = VariableOf(*sequence.first);
    return record != nullptr && record->type.Is(Base::Element);
}

// __kvWalk_KVL_x.Storing(0) , or __kvWalk_KVL_x.Storing(KVL_a -> KVL_q, 0) where KVL_a may have become another
Code Told(const OpenWalk& walk, const char* member, const Expr& sequence, const Code& argument) {
    Code told = walk.name + "." + member + "(";
    const bool stays = StaysInPlace(sequence);
    if (!stays) Write(told, sequence);
    if (!stays && !argument.text.empty()) told += ", ";
    told += argument;
    told += ')';
    return told;
}

// Whether they may mean one.
bool MayBeSame(const Place& a, const Place& b) {
    if (IsSame(*a.tree, *b.tree)) return true;
    const ValueType &one = a.tree->type, &other = b.tree->type;
    if (one.IsKnown() && other.IsKnown() && one != other) return false;
    if (a.home == Home::Local || b.home == Home::Local) return false;
    if (a.home == Home::Field && b.home == Home::Field) return a.field == b.field;
    const bool passedOn = a.home == Home::Parameter || b.home == Home::Parameter;
    return passedOn || a.home == Home::Unknown || b.home == Home::Unknown;
}

// ---- passages

void AddPassage(Code& out, const OpenWalk& walk, std::string text) {
    out.passages.push_back({out.text.size(), std::move(text), walk.number});
}

// Whether code outside of the loop's own routine can get at the Sequence without being handed it.
bool IsInReach(const OpenWalk& walk) { return walk.place.home != Home::Local; }

bool IsHanded(const OpenWalk& walk, Expr* arguments) {
    for (const Expr& argument : PartRange{arguments})
        if (argument.given && argument.type.sequence && IsOver(walk, argument)) return true;
    return false;
}

// Loops inside one another may have variables of one name; their walks are told apart.
std::string NameOfWalk(const std::string& variable) {
    std::string name = "__kvWalk_" + variable;
    const auto hasName = [&name](const OpenWalk& walk) { return walk.name == name; };
    while (std::any_of(walks.begin(), walks.end(), hasName)) name += '_';
    return name;
}

}  // namespace

void ResetSequenceWalks() { walks.clear(); }

std::size_t SequenceWalkCount() { return walks.size(); }

void DropSequenceWalks(std::size_t count) {
    if (walks.size() > count) walks.erase(walks.begin() + static_cast<std::ptrdiff_t>(count), walks.end());
}

void OpenSequenceWalk(const Expr& sequence, const std::string& variable) {
    constexpr std::size_t deepest = 200;
    if (walks.size() == deepest)
        ReportFatal("Loops over Sequences are nested more than " + std::to_string(deepest) +
                    " deep. Put the inner ones into a Function");
    OpenWalk walk = {KeptTree(sequence), PlaceOf(sequence), NameOfWalk(variable), ++walkCount, false};
    walk.place.tree = &walk.sequence.Root();
    walks.push_back(std::move(walk));
}

ClosedWalk CloseSequenceWalk() {
    if (walks.empty()) return {};
    const OpenWalk& walk = walks.back();
    const bool changed = walk.changed || (IsInReach(walk) && TimersMayChange(walk.Type().Item()));
    ClosedWalk closed = {walk.number, changed, walk.name};
    walks.pop_back();
    if (changed) RequireSupport(Support::SequenceWalk);
    return closed;
}

Code StoreWalks(const Expr& sequence, Code value) {
    for (OpenWalk& walk : walks) {
        if (!IsOver(walk, sequence)) continue;
        walk.changed = true;
        value = Told(walk, "Storing", sequence, value);
    }
    return value;
}

Code WalkCalls(const Expr& sequence, const char* member, const char* separator) {
    Code calls;
    for (OpenWalk& walk : walks) {
        if (!IsOver(walk, sequence)) continue;
        walk.changed = true;
        calls += Told(walk, member, sequence, "");
        calls += separator;
    }
    return calls;
}

void NoteSequenceChange(const Expr& sequence) {
    for (OpenWalk& walk : walks)
        if (IsOver(walk, sequence)) walk.changed = true;
}

AwayWalks AwayFrom(const Expr& sequence, bool changes) {
    AwayWalks away;
    if (walks.empty()) return away;
    const Place place = PlaceOf(sequence);
    for (OpenWalk& walk : walks) {
        const bool told = changes && IsOver(walk, sequence);
        if (told || !MayBeSame(walk.place, place)) continue;
        if (changes) walk.changed = true;
        away.push_back(&walk);
    }
    return away;
}

AwayWalks AwayFromReplaced(const ClassInfo& element) {
    AwayWalks away;
    if (walks.empty()) return away;
    const std::vector<ValueType> held = HeldSequences(element);
    for (OpenWalk& walk : walks) {
        const bool inField = walk.place.home == Home::Field || walk.place.home == Home::Unknown ||
                             walk.place.home == Home::Parameter;
        if (!inField || std::find(held.begin(), held.end(), walk.Type()) == held.end()) continue;
        walk.changed = true;
        away.push_back(&walk);
    }
    return away;
}

AwayWalks AwayFromCall(const Routine& routine, Expr* arguments) {
    AwayWalks away;
    if (walks.empty() || routine.isExtern || routine.isUserlib) return away;
    for (OpenWalk& walk : walks) {
        if (!IsInReach(walk) && !IsHanded(walk, arguments)) continue;
        if (!walk.changed) walk.changed = RoutineMayChange(routine.name, walk.Type().Item());
        away.push_back(&walk);
    }
    return away;
}

// The innermost loop's walk goes away first.
void BeginAway(Code& out, const AwayWalks& away) {
    for (auto walk = away.rbegin(); walk != away.rend(); ++walk)
        AddPassage(out, **walk, "(" + (*walk)->name + ".Away(), ");
}

void EndAway(Code& out, const AwayWalks& away) {
    for (const OpenWalk* walk : away) AddPassage(out, *walk, ")");
}

Code Away(const AwayWalks& away, const Code& code) {
    Code whole;
    BeginAway(whole, away);
    whole += code;
    EndAway(whole, away);
    return whole;
}

Code WhileReordered(const Expr& sequence, const Code& code) {
    if (walks.empty()) return code;
    Code told;
    for (const OpenWalk& walk : walks)
        if (IsOver(walk, sequence)) AddPassage(told, walk, walk.name + ".Leave(); ");
    AwayWalks away = AwayFrom(sequence, false);
    away.erase(std::remove_if(away.begin(), away.end(),
                              [&](const OpenWalk* walk) { return IsOver(*walk, sequence); }),
               away.end());
    return told + Away(away, code);
}

void NoteConstruction(const ClassInfo& cls) {
    for (OpenWalk& walk : walks)
        if (!walk.changed && IsInReach(walk)) walk.changed = ConstructionMayChange(cls, walk.Type().Item());
}

void NoteDestruction() {
    for (OpenWalk& walk : walks)
        if (!walk.changed && IsInReach(walk)) walk.changed = DestructorsMayChange(walk.Type().Item());
}

void NoteInlineCppInLoops(const std::string& line) {
    for (OpenWalk& walk : walks) {
        const Variable* variable = VariableOrField(*walk.place.tree);
        // Every line may mean one without a name.
        if (variable == nullptr || line.find(variable->cppName) != std::string::npos) walk.changed = true;
    }
}

Code BeforeInnerLoop(const Expr& sequence) {
    Code text;
    for (const OpenWalk* walk : AwayFrom(sequence, false)) AddPassage(text, *walk, walk->name + ".Store(); ");
    return text;
}

Code BehindInnerLoop(const Expr& sequence) {
    Code text;
    for (const OpenWalk* walk : AwayFrom(sequence, false))
        AddPassage(text, *walk, " " + walk->name + ".Back();");
    return text;
}
