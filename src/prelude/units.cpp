#include "prelude/units.h"

#include <algorithm>

#include "base/platform.h"
#include "base/settings.h"
#include "linking/runtime_code.h"
#include "prelude/fast_prelude.h"
#include "prelude/header.h"
#include "prelude/line_marks.h"
#include "prelude/texts.h"
#include "symbols/symbols.h"

namespace {

using Kind = Piece::Kind;

constexpr std::size_t routinesOfUnit = 6;

constexpr const char* weakRoutines =
    "#ifdef KV_BATCH\n"
    "#define KV_ROUTINE __attribute__((weak))\n"
    "#else\n"
    "#define KV_ROUTINE\n"
    "#endif\n\n";

std::string Opened(const std::string& guard) { return "#ifndef " + guard + "\n#define " + guard + "\n\n"; }

constexpr const char* closing = "\n#endif\n";

std::string Including(const std::string& path) { return "#include \"" + path + "\"\n"; }

// Constants of known value have it in every unit, so that labels and sizes can be made of them.
bool IsKnownEverywhere(const GlobalDefinition& global) {
    const Variable* variable = FindGlobal(global.name);
    return global.declaration.empty() ||
           (global.constant && variable != nullptr && variable->isConst && !global.moved);
}

std::size_t CountUnits(const FileOutput& file) {
    return file.isInUnits ? file.unitCount : (file.routines.size() + routinesOfUnit - 1) / routinesOfUnit;
}

// The files under way. Each is handed over as soon as it is whole, and what has been taken of a piece is freed: at their end
// the pieces are most of what there is in memory.
class UnitMaker {
public:
    UnitMaker(Program& p, const std::function<void(ProgramFile&&)>& takes) : program(p), take(takes) {}

    void Run() {
        header += Opened(program.main->guard) + Including(folderOfUnits + std::string("prelude.h")) + "\n" +
                  weakRoutines;
        for (const FileOutput* file : program.headers) Declare(*file);
        globals += UnitOpening() + ReadingAnchors() + FastObjects();
        ForEachPiece(program, [this](FileOutput& file, Piece& piece) { Take(file, piece); });
        for (FileOutput* file : program.headers) AddRoutines(*file);
        HandOverRest();
    }

private:
    Program& program;
    const std::function<void(ProgramFile&&)>& take;
    LongText header, globals, lastDefinitions;
    std::string modules, mainText;
    std::size_t units = 0;  // how many have been handed over

    void HandOver(const std::string& name, LongText&& text) const {
        take({program.main->folder + "/" + name, std::move(text), false});
    }

    static std::string PathOfUnit(const std::string& name) { return folderOfUnits + name + ".cpp"; }

    std::string UnitOpening() const { return Including("../" + program.main->base + ".h") + "\n"; }

    // Units do not hear of what comes behind them.
    void HandOverRest() {
        const FileOutput& main = *program.main;
        HandOver(folderOfUnits + std::string("prelude.h"), PreludeText());
        header += OwnMark() + closing;
        HandOver(main.base + ".h", std::move(header));
        AddDefinitions();
        for (const std::string& part : lastDefinitions.Parts()) globals += part;
        globals += mainText;
        HandOver(PathOfUnit("globals"), std::move(globals));
        std::string whole, list;
        const auto add = [&](const std::string& path) {
            whole += Including(path);
            list += path + "\n";
        };
        add(PathOfUnit("globals"));
        for (std::size_t i = 1; i <= units; ++i) add(PathOfUnit(std::to_string(i)));
        if (settings.lineMarks) HandOver(main.base + ".places", Anchors());
        HandOver(main.base + ".cpp", std::move(whole));
        HandOver(UnitListPath(main).substr(main.folder.size() + 1), std::move(list));
    }

    static std::string OwnMark() { return settings.lineMarks ? OwnCodeMark() : std::string(); }

    // Before anything can fail, and before another translation writes over them.
    std::string ReadingAnchors() const {
        if (!settings.lineMarks) return {};
        const std::string path = AbsolutePath(program.main->folder) + "/" + program.main->base + ".places";
        return "static const bool __kvPlacesRead = (__kvReadPlaces(" + CppLiteral(path) + "), true);\n";
    }

    LongText Anchors() const {
        LongText lines;
        for (const FileOutput& file : program.files) lines += AnchorLines(file);
        return lines;
    }

    // What modules have in C++ needs nothing of the program, so it is compiled beforehand with the support code.
    std::string PreludeText() const {
        const std::string failure = settings.lineMarks ? "#include <kvfailure.h>\n" : "";
        return Opened("KV_UNITS_PRELUDE_H") + failure + std::string(texts::includes) +
               "using namespace std;\n\n" + SupportCode() + modules + OwnMark() + closing;
    }

    void Declare(const FileOutput& file) {
        header += file.headerClasses;
        header += file.headerFunctions;
        for (const GlobalDefinition& global : file.globals)
            header += (IsKnownEverywhere(global) ? global.mark + global.plain : global.declaration) + "\n";
    }

    // Globals in today's order: those of the headers, then those that had to leave them.
    void AddDefinitions() {
        for (const FileOutput* file : program.headers)
            for (const GlobalDefinition& global : file->globals)
                if (!global.moved && !IsKnownEverywhere(global))
                    globals += global.mark + global.definition + "\n";
        globals += program.main->headerLate;
    }

    void AddRoutines(FileOutput& file) {
        file.firstUnit = units + 1;
        file.unitCount = CountUnits(file);
        for (std::size_t i = 0; i < file.unitCount; ++i) {
            const std::string path = PathOfUnit(std::to_string(++units));
            if (file.isInUnits)
                take({program.main->folder + "/" + path, {}, true});
            else
                HandOver(path, TakeUnit(file, i * routinesOfUnit));
        }
    }

    // The routines from one on, as many as a unit has.
    std::string TakeUnit(FileOutput& file, std::size_t from) const {
        std::string unit = UnitOpening();
        for (std::size_t i = from; i < std::min(from + routinesOfUnit, file.routines.size()); ++i) {
            unit += file.routines[i];
            std::string().swap(file.routines[i]);
        }
        return unit;
    }

    void Take(const FileOutput& file, Piece& piece) {
        switch (piece.kind) {
            case Kind::Main:
                mainText += piece.text;
                break;
            case Kind::Lists:
                globals += piece.text;
                break;
            case Kind::Definition:
                lastDefinitions += piece.text;
                break;
            case Kind::ClassOpen:
            case Kind::ClassLines:
            case Kind::Method:
            case Kind::ClassClose:
                header += piece.text;
                break;
            case Kind::Lines:
                if (file.isModule)
                    modules += piece.text;
                else
                    header += piece.text;
                break;
            case Kind::Opening:
            case Kind::Include:
            case Kind::Function:
                break;
        }
        std::string().swap(piece.text);
    }
};

}  // namespace

bool CanComeInUnits() {
    return settings.fastMode && !settings.debugMode && !symbols.inlineCpp && symbols.userlibDLLs.empty() &&
           symbols.parts.empty();
}

// What a routine needs of classes is nobody's concern: all of them stand in the header.
void SetRoutinesApart(FileOutput& out) {
    std::deque<Piece> left;
    for (Piece& piece : out.pieces) {
        if (piece.kind == Kind::Function) {
            out.routines.push_back(std::move(piece.text));
            continue;
        }
        if (piece.kind == Kind::Method) {
            out.routines.push_back(TakeMethodBody(piece).text);
            piece.text.insert(piece.signatureAt, routineMark);
        }
        left.push_back(std::move(piece));
    }
    out.pieces = std::move(left);
    out.routines.shrink_to_fit();
}

bool UnitsStayInPlace(const Program& program) {
    std::size_t units = 0;
    for (const FileOutput* file : program.headers) {
        if (file->isInUnits && file->firstUnit != units + 1) return false;
        units += CountUnits(*file);
    }
    return true;
}

std::string UnitListPath(const FileOutput& main) { return main.folder + "/" + main.base + ".units"; }

void MakeUnits(Program& program, const std::function<void(ProgramFile&&)>& take) {
    UnitMaker(program, take).Run();
}
