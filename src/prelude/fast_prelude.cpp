#include "prelude/fast_prelude.h"

#include <algorithm>

#include "base/settings.h"
#include "prelude/program_uses.h"
#include "prelude/support.h"
#include "prelude/texts.h"
#include "symbols/modules.h"
#include "symbols/symbols.h"

namespace {

struct Output {
    std::string_view text, object;
};

// Code that kvt does not see, or that writes past the C++ streams, has its share in the output of some programs.
Output OutputOfProgram() {
    if (programUses.unsyncedOutput) return {texts::fastUnitOutput, texts::fastUnitOutputObject};
    const bool foreign = programUses.foreignOutput || settings.debugMode || HasForeignFunctions() ||
                         !symbols.userlibDLLs.empty();
    if (foreign) return {texts::fastLineOutput, texts::fastLineOutputObject};
    return {texts::fastOutput, texts::fastOutputObject};
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

// What can walk over the lists of Types, or ask them for an object by its number.
bool SeesLists() { return programUses.inlineCpp || settings.debugMode; }

}  // namespace

std::string FastPrelude(bool withTypes) {
    const Output output = OutputOfProgram();
    std::string text = FillNames(output.text);
    if (!settings.units) text += output.object;
    text += SeesContainers() ? texts::fastVectorItems : texts::fastItems;
    text += SequenceText(texts::fastSequence, "KVItems");
    text += programUses.timers ? texts::fastScheduler : texts::fastNoTimers;
    if (!withTypes) return text;
    text += std::string("const bool __kvTidyLists = ") + (programUses.inserts ? "false" : "true") + ";\n";
    text += texts::fastInstances;
    text += SeesLists() ? texts::fastSeenLists : texts::fastUnseenLists;
    text += texts::fastTracked;
    return text;
}

std::string FastObjects() { return std::string(OutputOfProgram().object) + SupportObjects(); }
