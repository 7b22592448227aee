// Globals and Consts: a definition leaves its header when what it uses is declared only later.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "prelude/order.h"
#include "prelude/texts.h"
#include "prelude/value_order.h"

namespace {

enum class Place : unsigned char {
    Header,      // where the text stands
    LateHeader,  // at the end of the main header
    Cpp,         // at the end of the main .cpp, behind all class bodies
};

// Initialisers run before main(), which would load the DLLs too late for them; its call does nothing then.
constexpr char earlyLoading[] =
    "static const bool kvUserlibsLoaded = (InitUserlibs(), true);\n"
    "#define InitUserlibs() ((void)kvUserlibsLoaded)\n";

// Where those stand that what follows has to stand behind.
struct Latest {
    Place place = Place::Header;
    std::size_t position = 0;  // of those in headers, the last one's plus 1

    void Add(const Latest& other) {
        place = std::max(place, other.place);
        position = std::max(position, other.position);
    }
};

// Where a definition that has this before it may stand at the earliest.
Place PlaceBehind(const Latest& latest, std::size_t position) {
    if (latest.place != Place::Header) return latest.place;
    return latest.position > position ? Place::LateHeader : Place::Header;
}

// What those met so far read and change, and where they stand.
class MetEffects {
public:
    // What must stand before one with the effects.
    Latest Before(const ValueEffects& effects) const {
        if (effects.anything) return all;
        Latest latest = anything;
        for (const Thing name : effects.reads) Take(changers, name, latest);
        for (const Thing name : effects.changes) {
            Take(changers, name, latest);
            Take(readers, name, latest);
        }
        return latest;
    }

    void Add(const ValueEffects& effects, const Latest& stands) {
        all.Add(stands);
        if (effects.anything) anything.Add(stands);
        for (const Thing name : effects.reads) readers[name].Add(stands);
        for (const Thing name : effects.changes) changers[name].Add(stands);
    }

private:
    using Map = std::unordered_map<Thing, Latest>;
    Map readers, changers;
    Latest all, anything;

    static void Take(const Map& map, Thing name, Latest& latest) {
        const auto found = map.find(name);
        if (found != map.end()) latest.Add(found->second);
    }
};

// Definitions stay in their headers, in the order of the headers, unless they would not compile there or
// something that has to take its value before them stands behind. The others follow in the order in which
// Globals take their values.
class GlobalPlacer {
public:
    explicit GlobalPlacer(Program& target) : program(target), entries(GlobalsInOrder(target)) {
        for (const GlobalEntry& entry : entries) positions[entry.Name()] = entry.position;
        std::size_t position = 0;
        for (const FileOutput* file : program.headers) {
            for (const std::string& name : file->functionNames) declared.emplace(&WordOf(name), position);
            position += file->globals.size();
        }
    }

    void Run() {
        for (GlobalEntry& entry : entries) Put(entry);
        program.main->headerLate += lateLines;
        if (cppLines.empty()) return;
        if (callsUserlibs) program.main->pieces.front().text += earlyLoading;
        Piece piece;
        piece.kind = Piece::Kind::Definition;
        piece.text = cppLines;
        program.main->pieces.push_back(piece);
    }

private:
    Program& program;
    std::vector<GlobalEntry> entries;
    std::unordered_map<const Word*, std::size_t> positions;  // of Globals and Consts
    std::unordered_map<const Word*, std::size_t> declared;   // of Functions: the first Global behind them
    MetEffects met;
    std::string lateLines, cppLines;
    bool callsUserlibs = false;  // an initialiser may call a userlib function

    void Put(GlobalEntry& entry) {
        GlobalDefinition& global = *entry.global;
        const bool takesValue = entry.part == EntryPart::Value;
        ValueEffects effects = entry.part == EntryPart::Empty ? ValueEffects() : entry.effects;
        if (entry.part == EntryPart::Empty) global.plain = global.definition = global.empty;
        if (!entry.IsConstant() || takesValue) effects.changes.insert(ThingOf(*entry.Name()));
        Place place = PlaceBehind(met.Before(effects), entry.position);
        if (takesValue) {
            place = std::max({place, Place::LateHeader, PlaceToCompile(entry)});
            Append(place, global.mark + "static const bool __kvTaken_" + entry.variable->cppName + " = (" +
                              global.again + ", true);");
        } else if (global.declaration.empty()) {
            place = Place::Header;
        } else {
            place = std::max(place, PlaceToCompile(entry));
            if (place != Place::Header) {
                Append(place, global.mark + global.definition);
                global.plain = global.declaration;
                global.moved = true;
                effects.changes.insert(ThingOf(*entry.Name()));
            }
        }
        met.Add(effects, {place, place == Place::Header ? entry.position + 1 : 0});
    }

    void Append(Place place, const std::string& line) {
        (place == Place::Cpp ? cppLines : lateLines) += line + "\n";
    }

    // The first place where everything is declared and ready that the initial value needs.
    Place PlaceToCompile(const GlobalEntry& entry) {
        const ValueEffects& effects = entry.effects;
        const bool loads =
            !symbols.userlibDLLs.empty() && (effects.anything || effects.changes.count(userlibs) != 0);
        callsUserlibs = callsUserlibs || loads;
        const bool objects = effects.reads.count(instances) != 0 || effects.changes.count(instances) != 0 ||
                             (effects.anything && !symbols.classList.empty());
        if (loads || objects || !entry.global->needs.empty()) return Place::Cpp;
        if (!entry.file->isMain && entry.global->needsPrelude) return Place::LateHeader;
        for (const Word* name : entry.mentioned)
            if (DeclaredBehind(name, entry.position)) return Place::LateHeader;
        return Place::Header;
    }

    bool DeclaredBehind(const Word* name, std::size_t position) const {
        const auto global = positions.find(name);
        if (global != positions.end()) return global->second > position;
        const auto function = declared.find(name);
        return function != declared.end() && function->second > position;
    }
};

void AddForward(FileOutput& file, const ClassInfo* cls) {
    file.headerClasses += (cls->isElement ? "struct " : "class ") + cls->cppName + ";\n";
}

// Names of the prelude in types.
struct PreludeNames {
    bool sequence = false, slot = false, boolItem = false, anyObject = false;

    void Add(const ValueType& type, bool global) {
        sequence = sequence || type.sequence;
        anyObject = anyObject || type.base == Base::AnyObject;
        slot = slot || (global && type.IsArray() && type.base == Base::Element);
    }
};

// Included headers stand before the support code; extern lines and prototypes only need its names.
void AddPreludeNames(FileOutput& file) {
    PreludeNames names;
    for (const std::string& name : file.functionNames) {
        const Routine* routine = FindFunction(name);
        names.Add(routine->result, false);
        for (const Parameter& parameter : routine->parameters) names.Add(parameter.type, false);
    }
    for (const GlobalDefinition& global : file.globals)
        if (const Variable* variable = FindGlobal(global.name)) {
            names.Add(variable->type, true);
            names.boolItem = names.boolItem || variable->handsOnBools;
        }
    if (names.sequence) file.headerClasses += "template<typename T> class KVSeq;\n";
    if (names.anyObject) file.headerClasses += texts::anyObject;
    if (names.slot) file.headerClasses += "template<typename T> class KVSlot;\n";
    if (names.boolItem) file.headerClasses += "struct KVBool;\n";
}

}  // namespace

void OrderGlobals(Program& program) { GlobalPlacer(program).Run(); }

void CompleteHeaders(Program& program) {
    std::unordered_set<const ClassInfo*> declared;
    for (FileOutput* file : program.headers) {
        declared.insert(file->forwardDeclared.begin(), file->forwardDeclared.end());
        if (!file->isMain) AddPreludeNames(*file);
        for (const ClassInfo* cls : file->classesInHeader)
            if (declared.insert(cls).second) AddForward(*file, cls);
    }
}
