#include "library/phases.h"

#include "driver/report.h"
#include "driver/settings.h"
#include "library/word_lists.h"
#include "statements/translate.h"
#include "symbols/scopes.h"
#include "symbols/symbols.h"

void RunPhases() {
    PushRoutineScope();
    LoadWordLists();
    Say("Working on files...\n");
    TranslateProgram(settings.mainSource);
    PopRoutineScope();
}

void CheckMainFunction() {
    if (HasMainFunction()) return;
    ReportFatal(
        "Error: No 'Main' function found. Every Korvel program must have a Main function as the entry "
        "point.");
}
