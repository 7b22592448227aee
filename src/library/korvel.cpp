#include "library/korvel.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <optional>

#include "base/debugger.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/report.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "base/utf8.h"
#include "build/build_manifest.h"
#include "build/dependency_manifest.h"
#include "build/write_program.h"
#include "library/inspect.h"
#include "library/phases.h"
#include "linking/deploy.h"
#include "outputs/atomic_file.h"
#include "outputs/output_files.h"
#include "prelude/cpp_file.h"
#include "prelude/header.h"
#include "prelude/units.h"
#include "reuse/reuse.h"
#include "statements/program.h"
#include "symbols/file_places.h"
#include "symbols/foreign_words.h"
#include "symbols/mistakes.h"
#include "symbols/symbols.h"

namespace korvel {

namespace {

// Lines of source below which a program is compiled as quickly in one go, header and all.
constexpr int fewestLinesOfUnits = 400;
// Below which translating all of it takes hardly longer than finding out what need not be.
constexpr int fewestLinesOfRecord = 20'000;

void Begin(const Request& request) {
    RenewRun();
    settings.installation = request.installation;
    settings.mainSource = request.source;
    settings.sourceFolder = SourceFolderOf(request.source);
    settings.outputPath = request.output;
    settings.traceMode = request.traced;
    settings.outputComments = request.commented;
    settings.debugMode = request.debug;
    forDebugger = request.debugger;
    checksBesideHooks = request.debugger || request.safe;
    settings.safeMode = request.safe || request.debug;
    settings.fastMode = request.fast;
    settings.units = request.units;
    settings.unitsFrom = request.recordsAll ? 0 : fewestLinesOfUnits;
    settings.record = request.record;
    settings.recordKey = request.recordKey;
    settings.recordFrom = request.recordsAll ? 0 : fewestLinesOfRecord;
    settings.warnings = request.warnings;
    settings.columns = true;
    settings.lineMarks = request.places;
    for (const Overlay& overlay : request.overlays) PutOverlay(overlay.path, overlay.text);
}

// What is done with a program before and behind its translation, the latter only when nothing is wrong with it. Even
// that may find something wrong.
struct Task {
    bool writes;
    bool notesUses;
    void (*before)();
    void (*after)(Result& result);
};

void Nothing() {}

void DescribeProgram(Result& result) {
    if (!program.main->headerOnly) result.mainFile = CppPath(*program.main);
    result.hasCpp = symbols.inlineCpp;
    result.linkerFlags = symbols.linkerFlags;
    for (const UserlibDll& dll : symbols.userlibDLLs) result.libraries.push_back(dll.name);
    CopyUserlibDLLs(settings.outputPath);  // where nothing is written, it only says what is missing
}

void TakeOutputs(Result& result) {
    DescribeProgram(result);
    if (settings.units) {
        return MakeUnits(program, [&result](ProgramFile&& file) {
            result.files.push_back({std::move(file.path), file.text.Joined()});
        });
    }
    for (const FileOutput& out : program.files) {
        result.files.push_back({HeaderPath(out), HeaderText(out, symbols.includeHeaders)});
        if (!out.headerOnly) result.files.push_back({CppPath(out), CppText(out)});
    }
}

void PrepareFolder() {
    DistrustDependencyManifest();
    CleanPreviousBuild(settings.outputPath, Cleaned::Outputs);
}

void WriteOutputs(Result& result) {
    WriteProgram();
    DescribeProgram(result);
    WriteBuildManifest(settings.outputPath);
    SettleOutputs();
    TrustDependencyManifest();
    EndRecord(program);
    result.recorded = RecordedFiles();
}

const Task checking = {false, false, Nothing, DescribeProgram};
const Task inspecting = {false, true, Nothing, DescribeProgram};
const Task translating = {false, false, Nothing, TakeOutputs};
const Task building = {true, false, PrepareFolder, WriteOutputs};

Result Run(const Request& request, const Task& task) {
    Result result;
    Begin(request);
    settings.checkOnly = !task.writes;
    if (!task.writes) settings.record.clear();
    settings.uses = task.notesUses;
    const Silence silence(result.diagnostics);
    std::optional<FolderLock> alone;
    if (task.writes) alone.emplace(settings.outputPath);
    try {
        task.before();
        RunPhases();
        if (!AnyMistakes()) CheckMainFunction();
        if (!AnyMistakes()) task.after(result);
    } catch (const Stop& stop) {
        result.diagnostics.insert(result.diagnostics.end(), stop.mistakes.begin(), stop.mistakes.end());
    } catch (const std::bad_alloc&) {
        result.diagnostics.emplace_back().message = "Not enough memory";
    }
    for (Diagnostic& diagnostic : result.diagnostics) HintAtForeignWords(diagnostic);
    for (const Diagnostic& mistake : KeptMistakes()) result.diagnostics.push_back(mistake);
    AbandonRecord();  // unless it has ended
    if (AnyMistakes() && FileExists(settings.record))
        LeaveOutputs();  // the record counts on them
    else
        SettleOutputs();  // nothing is left of those that did not come again
    result.sources = symbols.sourceFiles;
    result.missing = symbols.missingFiles;
    for (const std::string& name : symbols.importedNames)
        result.declarations.push_back(FirstOf(PlacesOfUserlib(name)));
    for (const UserlibDll& dll : symbols.userlibDLLs) {
        const std::string library = FirstOf(PlacesOfUserlib(dll.name));
        if (IsFile(library)) result.declarations.push_back(library);
    }
    if (!IsSound(result)) result.files.clear();
    return result;
}

}  // namespace

bool IsSound(const Result& result) {
    return std::all_of(result.diagnostics.begin(), result.diagnostics.end(),
                       [](const Diagnostic& diagnostic) { return diagnostic.severity != Severity::Error; });
}

std::string AdviceOnWord(const std::string& word) { return HintAtForeignWord(word); }

Result Check(const Request& request) { return Run(request, checking); }
Result Translate(const Request& request) { return Run(request, translating); }
Result Build(const Request& request) {
    try {
        return Run(request, building);
    } catch (const StaleRecord&) {
        std::error_code ignored;
        std::filesystem::remove(PathOf(request.record), ignored);
        return Run(request, building);
    }
}

Inspection Inspect(const Request& request) {
    Inspection inspection;
    inspection.result = Run(request, inspecting);
    Describe(inspection);
    return inspection;
}

void Reset() { RenewRun(); }

}  // namespace korvel
