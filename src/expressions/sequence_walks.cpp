#include "expressions/sequence_walks.h"

#include <algorithm>
#include <cstdlib>

#include "analysis/sequence_changes.h"
#include "base/report.h"
#include "base/run.h"
#include "prelude/support.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

// Where a Sequence lives, which decides under which other names it may be met.
enum class Home : unsigned char { Local, Parameter, Global, Field, Unknown };

struct Place {
    std::string text;
    const Variable* root = nullptr;  // what its first name means; null for "this" and for calls
    Home home = Home::Unknown;
    std::string field;    // name of the Field
    std::string cppName;  // of the variable or Field; empty, which every line mentions, when it has no name
    ValueType type;
    bool runsCode = false;  // to be found
};

struct OpenWalk {
    Place place;
    std::string name;
    int number = 0;
    bool changed = false;
};

std::vector<OpenWalk> walks;  // the innermost loop last
int walkCount = 0;
const PartOfRun partOfRun(walks, walkCount);

Home HomeOf(const Expr& sequence) {
    const Variable* variable = sequence.variable;
    if (variable == nullptr) return Home::Field;
    if (FindLocal(variable->name) == variable) return variable->isParameter ? Home::Parameter : Home::Local;
    return FindGlobal(variable->name) == variable ? Home::Global : Home::Field;
}

const Variable* RootOf(const Expr& sequence) {
    if (sequence.variable != nullptr) return sequence.variable;
    return sequence.source.empty() ? nullptr : FindVariable(sequence.source[0]);
}

Place PlaceOf(const Expr& sequence) {
    Place place{sequence.text, RootOf(sequence), HomeOf(sequence), "", "", sequence.type, sequence.effects};
    if (sequence.variable != nullptr) {
        place.cppName = sequence.variable->cppName;
        if (place.home == Home::Field) place.field = sequence.variable->name;
        return place;
    }
    const TokenSpan source = sequence.source;
    const std::string& last = source[source.empty() ? 0 : source.size() - 1];
    if (last.empty() || !IsLetterByte(last[0])) {
        place.home = Home::Unknown;
        return place;
    }
    place.field = last;
    place.cppName = SafeName(last);
    return place;
}

// Whether two texts mean one Sequence, unless an object or index on the way has changed in between: the names in
// them may belong to different blocks.
bool IsSame(const Place& a, const Place& b) { return a.text == b.text && a.root == b.root && !a.runsCode; }
bool IsOver(const Place& place, const Expr& sequence) {
    return place.text == sequence.text && place.root == RootOf(sequence) && !place.runsCode;
}

// Whether the way to the Sequence leads through no object or item that may become another one: it is a variable,
// or a Field of the Method's object or of a record.
bool StaysInPlace(const Expr& sequence) {
    if (sequence.variable != nullptr) return true;
    const TokenSpan source = sequence.source;
    const Variable* root = source.size() == 3 ? FindVariable(source[0]) : nullptr;
    return root != nullptr && (root->type.Is(Base::Element) || source.KeywordAt(0) == Keyword::This);
}

// __kvWalk_KVL_x.Removing(0) , or __kvWalk_KVL_x.Removing(KVL_a -> KVL_q, 0) where KVL_a may have become another
std::string Told(const OpenWalk& walk, const char* member, const Expr& sequence,
                 const std::string& argument) {
    std::string arguments = StaysInPlace(sequence) ? "" : sequence.text;
    if (!arguments.empty() && !argument.empty()) arguments += ", ";
    return walk.name + "." + member + "(" + arguments + argument + ")";
}

// Whether they may mean one.
bool MayBeSame(const Place& a, const Place& b) {
    if (IsSame(a, b)) return true;
    if (a.type.IsKnown() && b.type.IsKnown() && a.type != b.type) return false;
    if (a.home == Home::Local || b.home == Home::Local) return false;
    if (a.home == Home::Field && b.home == Home::Field) return a.field == b.field;
    const bool passedOn = a.home == Home::Parameter || b.home == Home::Parameter;
    return passedOn || a.home == Home::Unknown || b.home == Home::Unknown;
}

// ---- passages

// The number of the walk and the text, between bytes that stand nowhere else in C++.
std::string Sign(const OpenWalk& walk, const std::string& text) {
    return passageSign + std::to_string(walk.number) + passageSign + text + passageSign;
}

std::string Wrapped(const OpenWalk& walk, const std::string& text) {
    return Sign(walk, "(" + walk.name + ".Away(), ") + text + Sign(walk, ")");
}

// Whether code outside of the loop's own routine can get at the Sequence without being handed it.
bool IsInReach(const OpenWalk& walk) { return walk.place.home != Home::Local; }

bool IsHanded(const OpenWalk& walk, const std::vector<Expr>& arguments) {
    for (const Expr& argument : arguments)
        if (argument.type.sequence && IsOver(walk.place, argument)) return true;
    return false;
}

}  // namespace

std::string SequenceWalkName(const std::string& variable) { return "__kvWalk_" + variable; }

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
    walks.push_back({PlaceOf(sequence), SequenceWalkName(variable), ++walkCount, false});
}

ClosedWalk CloseSequenceWalk() {
    if (walks.empty()) return {};
    const OpenWalk& walk = walks.back();
    const bool changed = walk.changed || (IsInReach(walk) && TimersMayChange(walk.place.type.Item()));
    const ClosedWalk closed = {walk.number, changed};
    walks.pop_back();
    if (changed) RequireSupport(Support::SequenceWalk);
    return closed;
}

Passage PassageIn(std::string_view text) {
    const std::size_t textAt = text.find(passageSign, 1), end = text.find(passageSign, textAt + 1);
    Passage passage;
    if (textAt == std::string_view::npos || end == std::string_view::npos) return passage;
    passage.walk = std::atoi(std::string(text.substr(1, textAt - 1)).c_str());
    if (passage.walk == 0) return passage;
    passage.size = end + 1;
    passage.text = text.substr(textAt + 1, end - textAt - 1);
    return passage;
}

std::string TellWalks(const Expr& sequence, const char* member, const std::string& value) {
    std::string text = value;
    for (OpenWalk& walk : walks) {
        if (!IsOver(walk.place, sequence)) continue;
        walk.changed = true;
        text = Told(walk, member, sequence, text);
    }
    return text;
}

std::string WalkCalls(const Expr& sequence, const char* member, const char* separator) {
    std::string text;
    for (OpenWalk& walk : walks) {
        if (!IsOver(walk.place, sequence)) continue;
        walk.changed = true;
        text += Told(walk, member, sequence, "") + separator;
    }
    return text;
}

void NoteSequenceChange(const Expr& sequence) {
    for (OpenWalk& walk : walks)
        if (IsOver(walk.place, sequence)) walk.changed = true;
}

std::string WhileAway(const Expr& sequence, bool changes, std::string text) {
    if (walks.empty()) return text;
    const Place place = PlaceOf(sequence);
    for (OpenWalk& walk : walks) {
        const bool told = changes && IsSame(walk.place, place);
        if (told || !MayBeSame(walk.place, place)) continue;
        if (changes) walk.changed = true;
        text = Wrapped(walk, text);
    }
    return text;
}

std::string ReplacedWhileAway(const ClassInfo& element, std::string text) {
    if (walks.empty()) return text;
    const std::vector<ValueType> held = HeldSequences(element);
    for (OpenWalk& walk : walks) {
        const bool inField = walk.place.home == Home::Field || walk.place.home == Home::Unknown ||
                             walk.place.home == Home::Parameter;
        if (!inField || std::find(held.begin(), held.end(), walk.place.type) == held.end()) continue;
        walk.changed = true;
        text = Wrapped(walk, text);
    }
    return text;
}

std::string WhileReordered(const Expr& sequence, std::string text) {
    if (walks.empty()) return text;
    const Place place = PlaceOf(sequence);
    std::string told;
    for (OpenWalk& walk : walks) {
        if (IsSame(walk.place, place))
            told += Sign(walk, walk.name + ".Leave(); ");
        else if (MayBeSame(walk.place, place))
            text = Wrapped(walk, text);
    }
    return told + text;
}

std::string CallWhileAway(const Routine& routine, const std::vector<Expr>& arguments, std::string text) {
    if (walks.empty() || routine.isExtern || routine.isUserlib) return text;
    for (OpenWalk& walk : walks) {
        if (!IsInReach(walk) && !IsHanded(walk, arguments)) continue;
        if (!walk.changed) walk.changed = RoutineMayChange(routine.name, walk.place.type.Item());
        text = Wrapped(walk, text);
    }
    return text;
}

void NoteConstruction(const ClassInfo& cls) {
    for (OpenWalk& walk : walks)
        if (!walk.changed && IsInReach(walk))
            walk.changed = ConstructionMayChange(cls, walk.place.type.Item());
}

void NoteDestruction() {
    for (OpenWalk& walk : walks)
        if (!walk.changed && IsInReach(walk)) walk.changed = DestructorsMayChange(walk.place.type.Item());
}

void NoteInlineCppInLoops(const std::string& line) {
    for (OpenWalk& walk : walks)
        if (line.find(walk.place.cppName) != std::string::npos) walk.changed = true;
}

std::string BeforeInnerLoop(const Expr& sequence) {
    std::string text;
    const Place place = PlaceOf(sequence);
    for (OpenWalk& walk : walks)
        if (MayBeSame(walk.place, place)) text += Sign(walk, walk.name + ".Store(); ");
    return text;
}

std::string BehindInnerLoop(const Expr& sequence) {
    std::string text;
    const Place place = PlaceOf(sequence);
    for (OpenWalk& walk : walks)
        if (MayBeSame(walk.place, place)) text += Sign(walk, " " + walk.name + ".Back();");
    return text;
}
