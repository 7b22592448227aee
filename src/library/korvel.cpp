#include "library/korvel.h"

#include <algorithm>
#include <new>

#include "driver/paths.h"
#include "driver/report.h"
#include "driver/run.h"
#include "driver/settings.h"
#include "lexer/source_reader.h"
#include "library/phases.h"
#include "prelude/cpp_file.h"
#include "prelude/header.h"
#include "statements/program.h"
#include "symbols/mistakes.h"
#include "symbols/symbols.h"

namespace korvel {

namespace {

void Begin(const Request& request) {
    RenewRun();
    settings.installation = request.installation;
    settings.mainSource = request.source;
    settings.sourceFolder = SourceFolderOf(request.source);
    settings.outputPath = request.output;
    settings.traceMode = request.traced;
    settings.outputComments = request.commented;
    settings.debugMode = request.debug;
    settings.safeMode = request.safe || request.debug;
    settings.fastMode = request.fast;
    settings.checkOnly = settings.warnings = settings.allMistakes = true;
    for (const Overlay& overlay : request.overlays) PutOverlay(overlay.path, overlay.text);
}

void TakeOutputs(Result& result) {
    for (const FileOutput& out : program.files) {
        result.files.push_back({HeaderPath(out), HeaderText(out, symbols.includeHeaders)});
        if (!out.headerOnly) result.files.push_back({CppPath(out), CppText(out)});
    }
    result.linkerFlags = symbols.linkerFlags;
    for (const UserlibDll& dll : symbols.userlibDLLs) result.libraries.push_back(dll.name);
}

// What `ending` does with a sound program may still find something wrong with it.
Result Run(const Request& request, void (*ending)(Result&)) {
    Result result;
    Begin(request);
    const Silence silence(result.diagnostics);
    try {
        RunPhases();
        if (KeptMistakes().empty()) CheckMainFunction();
        if (KeptMistakes().empty()) ending(result);
    } catch (const Stop& stop) {
        KeepMistake(stop, {});
    } catch (const std::bad_alloc&) {
        result.diagnostics.emplace_back().message = "Not enough memory";
    }
    for (const Diagnostic& mistake : KeptMistakes()) result.diagnostics.push_back(mistake);
    result.sources = symbols.sourceFiles;
    if (!IsSound(result)) result.files.clear();
    return result;
}

}  // namespace

bool IsSound(const Result& result) {
    return std::all_of(result.diagnostics.begin(), result.diagnostics.end(),
                       [](const Diagnostic& diagnostic) { return diagnostic.isWarning; });
}

Result Check(const Request& request) {
    return Run(request, [](Result&) {});
}

Result Translate(const Request& request) { return Run(request, TakeOutputs); }

void Reset() { RenewRun(); }

}  // namespace korvel
