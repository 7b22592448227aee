// Globals and Consts: a definition leaves its header when what it uses is declared only later.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "prelude/order.h"

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

class GlobalPlacer {
public:
    explicit GlobalPlacer(Program& program) : program(program) {
        for (FileOutput* file : program.headers)
            for (GlobalDefinition& global : file->globals) byName.emplace(global.name, Owned{&global, file});
    }

    void Run() {
        for (FileOutput* file : program.headers) {
            declaredFunctions.insert(file->functionNames.begin(), file->functionNames.end());
            for (GlobalDefinition& global : file->globals) {
                Place place = global.declaration.empty() ? Place::Header : WherePlaced(global, *file);
                places[global.name] = place;
                if (place != Place::Header) Move(global, place);
            }
        }
        for (const std::string& line : lateLines) program.main->headerLate += line + "\n";
        if (cppLines.empty()) return;
        Piece piece;
        piece.kind = Piece::Kind::Definition;
        if (callsUserlibs) piece.text = earlyLoading;
        for (const std::string& line : cppLines) piece.text += line + "\n";
        program.main->pieces.push_back(piece);
    }

private:
    Program& program;
    struct Owned {
        GlobalDefinition* global;
        FileOutput* file;
    };
    std::unordered_map<std::string, Owned> byName;
    std::unordered_map<std::string, Place> places;    // of those already met
    std::unordered_map<std::string, Place> expected;  // of those that others mention before
    std::unordered_set<std::string> declaredFunctions;
    std::unordered_set<std::string> moved;
    std::vector<std::string> lateLines, cppLines;
    bool callsUserlibs = false;  // an initialiser may call a userlib function

    // Calls visit(token) for everything that the definition may mention.
    template <typename Visit>
    static void ForEachToken(const GlobalDefinition& global, Visit visit) {
        if (const Variable* variable = FindGlobal(global.name))
            for (const std::string& token : variable->initialiser) visit(token);
        for (const std::string& token : global.sizeNames) visit(token);
    }

    Place WherePlaced(const GlobalDefinition& global, const FileOutput& file) {
        Place place = !file.isMain && global.needsPrelude ? Place::LateHeader : Place::Header;
        if (!global.needs.empty()) place = Place::Cpp;
        ForEachToken(global, [&](const std::string& token) { place = std::max(place, PlaceAfter(token)); });
        return place;
    }

    // Where something that mentions the name may be defined. A call runs code that may create objects,
    // so it has to wait for the instance lists.
    Place PlaceAfter(const std::string& name) {
        if (!symbols.userlibDLLs.empty() &&
            (FindUserlibFunction(name) != nullptr || FindFunction(name) != nullptr)) {
            callsUserlibs = true;
            return Place::Cpp;
        }
        if (FindFunction(name) != nullptr) {
            if (!symbols.classList.empty() || !cppLines.empty()) return Place::Cpp;
            return declaredFunctions.count(name) != 0 ? Place::Header : Place::LateHeader;
        }
        auto met = places.find(name);
        if (met != places.end()) return met->second;
        return byName.count(name) != 0 ? ExpectedPlace(name) : Place::Header;
    }

    // Where a Global that has not been met yet will be defined; LateHeader while that is being asked.
    Place ExpectedPlace(const std::string& name) {
        auto known = expected.emplace(name, Place::LateHeader);
        if (!known.second) return known.first->second;
        const Owned& used = byName.at(name);
        const Place place = std::max(Place::LateHeader, WherePlaced(*used.global, *used.file));
        expected[name] = place;
        return place;
    }

    // What a moved definition uses must be defined before it.
    void Move(GlobalDefinition& global, Place place) {
        if (!moved.insert(global.name).second) return;
        ForEachToken(global, [&](const std::string& token) {
            auto used = byName.find(token);
            if (used != byName.end() && places.count(token) == 0) MoveLater(used->second, place);
        });
        global.plain = global.declaration;
        (place == Place::Cpp ? cppLines : lateLines).push_back(global.definition);
    }

    // A definition of a later header that an earlier one uses: the main header's own Globals stand
    // before the late lines anyway, others move with their user.
    void MoveLater(const Owned& used, Place place) {
        if (used.global->declaration.empty()) return;
        if (used.file->isMain && WherePlaced(*used.global, *used.file) == Place::Header) return;
        places[used.global->name] = place;
        Move(*used.global, place);
    }
};

void AddForward(FileOutput& file, const ClassInfo* cls) {
    file.headerClasses += (cls->isElement ? "struct " : "class ") + cls->cppName + ";\n";
}

// Included headers stand before the support code; extern lines and prototypes only need its names.
void AddSupportNames(FileOutput& file) {
    struct Name {
        const char* mark;
        const char* declaration;
    };
    constexpr Name names[] = {{"KVSeq<", "template<typename T> class KVSeq;\n"},
                              {"KVSlot<", "template<typename T> class KVSlot;\n"},
                              {"KVBool>", "struct KVBool;\n"}};
    for (const Name& name : names) {
        bool mentioned = file.headerFunctions.find(name.mark) != std::string::npos;
        for (const GlobalDefinition& global : file.globals)
            mentioned = mentioned || global.plain.find(name.mark) != std::string::npos;
        if (mentioned) file.headerClasses += name.declaration;
    }
}

}  // namespace

void OrderGlobals(Program& program) { GlobalPlacer(program).Run(); }

void CompleteHeaders(Program& program) {
    std::unordered_set<const ClassInfo*> declared;
    for (FileOutput* file : program.headers) {
        declared.insert(file->forwardDeclared.begin(), file->forwardDeclared.end());
        if (!file->isMain) AddSupportNames(*file);
        for (const ClassInfo* cls : file->classesInHeader)
            if (declared.insert(cls).second) AddForward(*file, cls);
    }
}
