#include "statements/translate.h"

#include <unordered_set>

#include "build/output_files.h"
#include "driver/paths.h"
#include "driver/report.h"
#include "driver/settings.h"
#include "expressions/expression.h"
#include "prelude/cpp_file.h"
#include "prelude/header.h"
#include "statements/array_results.h"
#include "statements/debug_hooks.h"
#include "statements/first_mistake.h"
#include "statements/output_places.h"
#include "statements/parts.h"
#include "statements/program.h"
#include "statements/second_pass.h"
#include "symbols/first_pass.h"
#include "symbols/mistakes.h"
#include "symbols/name_scan.h"
#include "symbols/prepopulate.h"
#include "symbols/scopes.h"

namespace {

// What a nested translation must leave as it found it.
class SavedPlace {
public:
    explicit SavedPlace(FileOutput& out)
        : file(settings.currentFile), line(settings.currentLine), wasLenient(lenient) {
        before = SetOpenOutput(&out);
    }
    ~SavedPlace() {
        if (!file.empty()) {  // what is found behind the main file is reported at its end
            settings.currentFile = file;
            settings.currentLine = line;
        }
        lenient = wasLenient;
        SetOpenOutput(before);
    }
    SavedPlace(const SavedPlace&) = delete;
    SavedPlace& operator=(const SavedPlace&) = delete;

private:
    std::string file;
    int line;
    bool wasLenient;
    FileOutput* before;
};

void NameOutputs(FileOutput& out, const std::string& path, const std::string& folder, bool isMain) {
    out.folder = folder;
    out.isMain = isMain;
    out.base = StripExtension(StripFolder(path));
    if (isMain && settings.debugMode) out.base += ".debug";
    out.header = HeaderPath(out).substr(settings.outputPath.size() + 1);
    out.headerOnly = IsHeaderOnly(path);
}

// Files of one base name in different folders need different guards; all others keep the plain one.
std::string GuardOf(const FileOutput& out) {
    bool clash = BaseNameIsShared(out.source);
    std::string folder = clash ? FolderOf(out.header) : "";
    return ClaimGuard(out, HeaderGuard(folder.empty() ? out.base : folder + "/" + out.base));
}

HeaderContents ContentsOf(const Declarations& declarations, const std::string& source) {
    HeaderContents contents;
    contents.classes = declarations.classes;
    std::unordered_set<const ClassInfo*> listed;  // a Type may be declared twice, the first one counts
    for (const ClassInfo* cls : declarations.classes)
        if (cls->registered && cls->sourceFile == source && listed.insert(cls).second)
            contents.instanceLists.push_back(cls);
    for (const Prototype& prototype : declarations.functions) {
        (prototype.isExtern ? contents.externLines : contents.functionLines).push_back(prototype.text);
        if (!prototype.wrapper.empty()) contents.externWrappers.push_back(prototype.wrapper);
        contents.externBound = contents.externBound || prototype.bound;
    }
    return contents;
}

void NoteClass(FileOutput& out, const ValueType& type) {
    if (type.cls != nullptr) out.classesInHeader.push_back(type.cls);
}

// Classes that the prototypes and Globals of the header mention, wherever they are declared.
void NoteMentions(FileOutput& out, const Declarations& declarations) {
    out.forwardDeclared.assign(declarations.classes.begin(), declarations.classes.end());
    for (const Prototype& prototype : declarations.functions) {
        const Routine* routine = FindFunction(prototype.name);
        if (routine == nullptr) continue;
        out.functionNames.push_back(prototype.name);
        NoteClass(out, routine->result);
        for (const Parameter& parameter : routine->parameters) NoteClass(out, parameter.type);
    }
    for (const std::string& name : declarations.globalNames)
        if (const Variable* global = FindGlobal(name)) NoteClass(out, global->type);
}

void WriteHeaderTop(FileOutput& out, const Declarations& declarations) {
    if (!ReserveOutput(HeaderPath(out))) ReportFatal("Cannot create header file: " + HeaderPath(out));
    OpenHeader(out, ContentsOf(declarations, out.source), GuardOf(out));
    VerboseNote("Header opened: " + HeaderPath(out) + " (will write globals/constants during compilation)");
}

void OpenFileCpp(FileOutput& out, const Declarations& declarations) {
    if (!ReserveOutput(CppPath(out)))
        ReportFatal("Cannot create '" + out.base + ".cpp'file in output folder.");
    OpenCpp(out, ContentsOf(declarations, out.source).instanceLists);
}

void TranslateStatements(FileOutput& out, const Declarations& declarations) {
    OpenFileCpp(out, declarations);
    State state;
    state.out = &out;
    state.unclosedExtern = declarations.unclosedExtern;
    RunSecondPass(state, out.source);
}

// What the statements of a file leave behind in a lenient run. Parts come with the routines that include them.
void NoteIncludes(const Declarations& declarations) {
    for (const std::string& name : declarations.includes)
        if (symbols.importedNames.count(name) == 0 && !IsPart(PathOfInclude(name)))
            NoteInclude(SplitIncludeName(name));
}

void CloseHeader(const FileOutput& out) {
    if (out.isMain && !symbols.includeHeaders.empty())
        VerboseNote("Inserted " + std::to_string(symbols.includeHeaders.size()) +
                    " include(s) into header file.");
    AddOnce(symbols.generatedFiles, HeaderPath(out));
    VerboseNote("Header file completed with globals and constants.");
    if (!out.headerOnly) AddOnce(symbols.generatedFiles, CppPath(out));
}

// What follows the declarations of a file.
void TranslateRest(FileOutput& out, const Declarations& declarations) {
    WriteHeaderTop(out, declarations);
    Prepopulate(declarations);
    TranslateStatements(out, declarations);
    NoteMentions(out, declarations);
    if (out.isMain && settings.debugMode) EmitTypeEnumeration(out);
    CloseHeader(out);
    SayPostProcessing(out);
    if (!out.isMain) NoteFinished(out);
}

// What is done of it in a lenient run whose statements wait. Guards are given out in the order of the first
// passes.
void PutOffRest(const FileOutput& out, const Declarations& declarations) {
    GuardOf(out);
    Prepopulate(declarations);
    NoteIncludes(declarations);
}

}  // namespace

void TranslateFile(const std::string& path, const std::string& outputFolder, bool isMain, bool lenientRun) {
    FileOutput& out = NewOutput(path, lenientRun);
    SavedPlace place(out);
    lenient = lenientRun;
    NameOutputs(out, path, outputFolder, isMain);
    ClaimOutputs(out);
    if (lenientRun || isMain) CheckOutputPlaces(out);

    Declarations declarations;
    CollectDeclarations(path, declarations);
    symbols.complete = symbols.complete || isMain;
    lenient = lenientRun;
    if (isMain) NoteAllNamesRead();
    if (!lenientRun) BeginStatements(path);
    if (lenientRun && IsPart(path)) {  // its statements belong to the routines that it is included in
        PutOffRest(out, declarations);
    } else if (!lenientRun || SearchesFirstMistake()) {
        TranslateRest(out, declarations);
    } else {
        AwaitStatements(path, outputFolder);
        const bool shown = settings.verbose && GoesThrough([&] { TranslateRest(out, declarations); });
        if (!shown) PutOffRest(out, declarations);
    }
    if (!lenientRun) EndStatements(path);
}

void TranslatePart(State& state, const std::string& path, const std::string& outputFolder) {
    const bool lenientRun = lenient;
    FileOutput* met = lenientRun ? nullptr : FindOutput(path);
    FileOutput& out = met != nullptr ? *met : NewOutput(path, lenientRun);
    const SavedPlace place(*state.out);
    if (met == nullptr) {
        NameOutputs(out, path, outputFolder, false);
        ClaimOutputs(out);
    }
    OpenPart part(state, out);
    Declarations declarations;
    CollectDeclarations(path, declarations);
    lenient = lenientRun;
    if (!lenientRun) BeginStatements(path);
    if (met == nullptr) {
        WriteHeaderTop(out, declarations);
        Prepopulate(declarations);
        OpenFileCpp(out, declarations);
    }
    part.Read(path);
    if (met == nullptr) {
        NoteMentions(out, declarations);
        CloseHeader(out);
        SayPostProcessing(out);
    }
    if (!lenientRun) EndStatements(path);
}

static bool MayBeGenerated(const std::string& path) {
    const std::string extension = path.substr(StripExtension(path).size());
    return extension == ".cpp" || extension == ".h";
}

void TranslateProgram(const std::string& mainSource) {
    CollectNames(mainSource);
    // An Include of a file that the previous build wrote finds nothing.
    for (const std::string& source : symbols.sourceFiles)
        if (MayBeGenerated(source)) DeletePutOff(source);
    try {
        TranslateFile(mainSource, settings.outputPath, true, false);
    } catch (const Stop& stop) {
        if (!settings.allMistakes) ReportFirstMistake(stop);
        KeepMistake(stop, {});
    }
    if (!KeptMistakes().empty()) return;
    program.main = FindOutput(mainSource);
    CheckAwaitedResults();
    FinishProgram();
}
