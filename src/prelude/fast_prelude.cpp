#include "prelude/fast_prelude.h"

#include <algorithm>

#include "base/settings.h"
#include "prelude/program_uses.h"
#include "prelude/support.h"
#include "prelude/texts.h"
#include "symbols/modules.h"
#include "symbols/symbols.h"

namespace {

// Code that kvt does not see, or that writes past the C++ streams, has its share in the output of some programs.
std::string_view OutputText() {
    if (programUses.unsyncedOutput) return texts::fastUnitOutput;
    const bool foreign = programUses.foreignOutput || settings.debugMode || HasForeignFunctions() ||
                         !symbols.userlibDLLs.empty();
    return foreign ? texts::fastLineOutput : texts::fastOutput;
}

bool HasElementsWithDestructor() {
    return std::any_of(symbols.classList.begin(), symbols.classList.end(), [](const ClassInfo* cls) {
        return cls->isElement && FindMethod(*cls, "destructor") != nullptr;
    });
}

// What can tell which container holds the items of a Sequence.
bool SeesContainers() {
    return programUses.inlineCpp || HasForeignFunctions() || HasElementsWithDestructor();
}

}  // namespace

std::string FastPrelude(bool withTypes) {
    std::string text = FillNames(OutputText());
    text += SeesContainers() ? texts::fastVectorItems : texts::fastItems;
    text += texts::fastSequence;
    text += programUses.timers ? texts::fastScheduler : texts::fastNoTimers;
    if (!withTypes) return text;
    text += std::string("const bool __kvTidyLists = ") + (programUses.inserts ? "false" : "true") + ";\n";
    text += std::string("const bool __kvKeepCreated = ") + (programUses.inlineCpp ? "true" : "false") + ";\n";
    text += texts::fastInstances;
    return text;
}
