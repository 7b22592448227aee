#include "statements/translate.h"

#include <optional>
#include <unordered_set>

#include "analysis/bool_arrays.h"
#include "analysis/reach.h"
#include "base/report.h"
#include "base/settings.h"
#include "collect/settle.h"
#include "expressions/sequence_walks.h"
#include "lexer/source_lines.h"
#include "outputs/output_files.h"
#include "prelude/cpp_file.h"
#include "prelude/header.h"
#include "prelude/units.h"
#include "reuse/reuse.h"
#include "statements/debug_hooks.h"
#include "statements/parts.h"
#include "statements/program.h"
#include "statements/second_pass.h"
#include "symbols/mistakes.h"
#include "symbols/own_names.h"
#include "symbols/program_files.h"
#include "symbols/scopes.h"

namespace {

// The output under way, and the one of the file around it behind that. What is found behind the main file is reported at
// its end, so that its place stays.
class OpenedOutput {
public:
    explicit OpenedOutput(FileOutput& out) : before(SetOpenOutput(&out)) {
        if (before != nullptr) around.emplace(settings.currentFile, settings.currentLine);
    }
    ~OpenedOutput() { SetOpenOutput(before); }
    OpenedOutput(const OpenedOutput&) = delete;
    OpenedOutput& operator=(const OpenedOutput&) = delete;

private:
    FileOutput* before;
    std::optional<AtPlace> around;
};

// An included header stands in front of the support code, and so leaves some definitions to the main one.
void AddLateWrappers(std::vector<std::string>& wrappers) {
    for (const SourceFile* file : CollectedFiles())
        for (const Prototype& prototype : file->declarations.functions)
            if (!file->output.isMain && !prototype.lateWrapper.empty())
                wrappers.push_back(prototype.lateWrapper);
}

// The texts of the prototypes go to the header for good.
HeaderContents TakeContents(Declarations& declarations, const FileOutput& out) {
    const std::string& source = out.source;
    HeaderContents contents;
    contents.classes = declarations.classes;
    std::unordered_set<const ClassInfo*> listed;  // a Type may be declared twice, the first one counts
    for (const ClassInfo* cls : declarations.classes)
        if (cls->registered && cls->sourceFile == source && listed.insert(cls).second)
            contents.instanceLists.push_back(cls);
    for (Prototype& prototype : declarations.functions) {
        (prototype.isExtern ? contents.externLines : contents.functionLines)
            .push_back(std::move(prototype.text));
        const std::string& wrapper =
            out.isMain && !prototype.lateWrapper.empty() ? prototype.lateWrapper : prototype.wrapper;
        if (!wrapper.empty()) contents.externWrappers.push_back(wrapper);
        contents.externBound = contents.externBound || prototype.bound;
    }
    if (out.isMain) AddLateWrappers(contents.externWrappers);
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

void WriteHeaderTop(FileOutput& out, const HeaderContents& contents) {
    if (!ReserveOutput(HeaderPath(out))) ReportFatal("Cannot create header file: " + HeaderPath(out));
    OpenHeader(out, contents);
    SayHeaderOpened(out);
}

void OpenFileCpp(FileOutput& out, const HeaderContents& contents) {
    if (!ReserveOutput(CppPath(out)))
        ReportFatal("Cannot create '" + out.base + ".cpp'file in output folder.");
    OpenCpp(out, contents.instanceLists);
}

void CloseHeader(const FileOutput& out) {
    if (out.isMain && !symbols.includeHeaders.empty())
        VerboseNote("Inserted " + std::to_string(symbols.includeHeaders.size()) +
                    " include(s) into header file.");
    if (settings.units) return;  // the program's are not those of its files
    AddOnce(symbols.generatedFiles, HeaderPath(out));
    VerboseNote("Header file completed with globals and constants.");
    if (!out.headerOnly) AddOnce(symbols.generatedFiles, CppPath(out));
}

// What is found before the first statement of a file is reported at the end of its declarations.
void EnterFile(const Declarations& declarations) {
    settings.currentFile = declarations.source;
    settings.currentLine = declarations.lastLine;
}

// The outputs of a file up to its statements.
void OpenOutputs(FileOutput& out, Declarations& declarations) {
    const HeaderContents contents = TakeContents(declarations, out);
    {
        // An included file has said it before.
        const TellOnly when(IsPart(out.source) ? Telling::Both : Telling::Second);
        WriteHeaderTop(out, contents);
        SayNames(declarations);
    }
    CheckFunctionNames(declarations);
    OpenFileCpp(out, contents);
}

void CloseOutputs(FileOutput& out, const Declarations& declarations) {
    NoteMentions(out, declarations);
    if (out.isMain && settings.debugMode) EmitTypeEnumeration(out);
    CloseHeader(out);
    SayPostProcessing(out);
}

// False when something is wrong, which has been kept.
bool TranslateStatements(FileOutput& out, const Declarations& declarations) {
    State state;
    state.out = &out;
    state.unclosedExtern = declarations.unclosedExtern;
    RunSecondPass(state, out.source);
    return !state.mistaken;
}

// Those that stand before what comes next, which may be an included file that takes a name of theirs. Whatever has taken
// the name of a later Const is told where that stands.
void ReachConsts(const FileOutput& out) {
    for (const GlobalDefinition& global : out.globals) {
        const Variable* constant = symbols.constants.Find(global.name);
        if (constant == nullptr) continue;
        if (constant->isTakenEarlier) throw StaleRecord();
        ReachConst(global.name);
    }
}

// What it came to in the translation before.
void TakeRecorded(FileOutput& out) {
    TakeFromRecord(out, [&out](const std::string& source) {
        ReachConsts(out);
        TranslateIncluded(*FindSourceFile(source));
    });
    ReachConsts(out);
}

// A file that only lends its declarations has routines that stand elsewhere.
bool ComesInUnits(const std::vector<SourceFile*>& files) {
    int lines = 0;
    for (const SourceFile* file : files) {
        if (file->output.headerOnly) return false;
        if (!file->output.isModule) lines += file->declarations.lastLine;
    }
    return lines >= settings.unitsFrom && CanComeInUnits();
}

std::vector<CollectedFile> CollectedForReuse(const std::vector<SourceFile*>& files) {
    std::vector<CollectedFile> collected;
    collected.reserve(files.size());
    for (const SourceFile* file : files) collected.push_back({&file->output, &file->declarations});
    return collected;
}

// What a mistake has left open.
void ForgetOpenWork() {
    ResetScopes();
    ResetSequenceWalks();
    CollectNeedsInto(nullptr);
    PushRoutineScope();
}

// Whoever looks at the whole program has done so, as far as can be foreseen: nobody goes through the file again.
void ForgetSource(const std::string& source) {
    if (IsGraphBuilt() && AreBoolArraysKnown()) ForgetLines(source);
}

}  // namespace

static void TranslateFile(SourceFile& file) {
    FileOutput& out = BeginOutput(file);
    const OpenedOutput opened(out);
    const OpenChapter chapter(file.translated);
    EnterFile(file.declarations);
    RecordedPass pass;
    try {
        OpenOutputs(out, file.declarations);
        const CollectedFile collected = {&out, &file.declarations};
        const bool isRecorded = IsRecorded(out.source);
        if (isRecorded) TakeRecorded(out);
        const bool sound = isRecorded || TranslateStatements(out, file.declarations);
        CloseOutputs(out, file.declarations);
        if (sound && !out.isMain) NoteFinished(out);
        if (!sound) ForgetOpenWork();
        if (settings.units && !isRecorded) SetRoutinesApart(out);
        if (sound && !isRecorded) pass.Record(collected);
        ForgetSource(out.source);
    } catch (const Stop& stop) {
        KeepMistake(stop, {});
        ForgetOpenWork();
    }
}

// Its mistakes count whenever a file that includes it is told.
static void TellMistakes(const SourceFile& file) {
    NoteMistakesOf(file.declared, Telling::Second);
    NoteMistakesOf(file.translated, Telling::Second);
}

static void TellWhereIncluded(const SourceFile& file) {
    {
        const TellOnly first(Telling::First);
        TellMistakes(file);
    }
    const TellOnly second(Telling::Second);
    NoteChapter(file.declared, Telling::Second);
    NoteChapter(file.translated, Telling::Second);
}

void TranslateIncluded(SourceFile& file) {
    if (file.begun != nullptr) {
        file.begun->metAgain = true;
        return TellMistakes(file);
    }
    NoteInclude(file.output);
    TellWhereIncluded(file);
    TranslateFile(file);
}

void TranslatePart(State& state, SourceFile& file) {
    const bool isFirst = file.begun == nullptr;
    FileOutput& out = isFirst ? BeginOutput(file) : *file.begun;
    const OpenedOutput opened(*state.out);
    OpenPart part(state, out);
    NoteChapter(file.declared, Telling::Second);
    EnterFile(file.declarations);
    if (isFirst) OpenOutputs(out, file.declarations);
    part.Read(out.source);
    if (isFirst) CloseOutputs(out, file.declarations);
}

void TranslateFiles() {
    const std::vector<SourceFile*>& files = CollectedFiles();
    settings.units = settings.units && ComesInUnits(files);
    NoteHandedOnBools();
    CloseNamesOfProgram();
    if (settings.units) BeginReuse(CollectedForReuse(files));
    if (!files.empty() && files.back()->output.isMain) TranslateFile(*files.back());
    if (!AnyMistakes()) return;
    // What a mistake has kept Includes from may hold those that are told before it.
    for (SourceFile* file : files)
        if (file->begun == nullptr && !IsPart(file->output.source)) TranslateFile(*file);
}
