#include "prelude/fast_prelude.h"

#include "driver/settings.h"
#include "prelude/program_uses.h"
#include "prelude/texts.h"
#include "symbols/symbols.h"

namespace {

// Whether code that kvt does not see has its share in the output.
bool HasForeignOutput() {
    return programUses.foreignOutput || settings.debugMode || !symbols.externFunctions.empty() ||
           !symbols.userlibDLLs.empty();
}

}  // namespace

std::string FastPrelude(bool withTypes) {
    std::string text(texts::fastOutput);
    if (HasForeignOutput()) text += texts::fastLineOutput;
    if (programUses.unsyncedOutput) text += texts::fastUnitOutput;
    text += texts::fastSequence;
    text += programUses.timers ? texts::fastScheduler : texts::fastNoTimers;
    if (!withTypes) return text;
    text += std::string("const bool __kvTidyLists = ") + (programUses.inserts ? "false" : "true") + ";\n";
    text += std::string("const bool __kvKeepCreated = ") + (programUses.inlineCpp ? "true" : "false") + ";\n";
    text += texts::fastInstances;
    return text;
}
