#include "library/phases.h"

#include "base/journal.h"
#include "base/report.h"
#include "base/settings.h"
#include "collect/name_scan.h"
#include "library/word_lists.h"
#include "statements/program.h"
#include "statements/translate.h"
#include "symbols/mistakes.h"
#include "symbols/scopes.h"
#include "symbols/symbols.h"
#include "warnings/warnings.h"

namespace {

void GoThroughProgram() {
    LoadWordLists();
    Say("Working on files...\n");
    CollectNames(settings.mainSource);
    DebugLog("Names of Types and Elements: " + std::to_string(symbols.classes.size()) +
             ", source files: " + std::to_string(symbols.sourceFiles.size()));
    CollectProgram(settings.mainSource);
    DebugLog("All declarations read");
    SettleProgram();
    BeginWarnings();
    TranslateFiles();
    TellWarnings();
    DebugLog("All statements translated");
    if (!AnyMistakes()) FinishProgram();
}

}  // namespace

void RunPhases() {
    const OpenChapter chapter(WholeRun());
    PushRoutineScope();
    try {
        GoThroughProgram();
    } catch (const Stop& stop) {
        KeepMistake(stop, {});
    }
    PopRoutineScope();
}

void CheckMainFunction() {
    if (HasMainFunction()) return;
    ReportFatal(
        Wording{"Error: ", ""} +
        "No 'Main' function found. Every Korvel program must have a Main function as the entry point." +
        Hint{"Write Function Main, what to do, and EndFunction. A file that others include is checked with "
             "them"});
}
