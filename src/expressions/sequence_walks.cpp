#include "expressions/sequence_walks.h"

#include <vector>

#include "prelude/support.h"

namespace {

struct OpenWalk {
    std::string sequence;
    std::string name;
    bool changed = false;
};

std::vector<OpenWalk> walks;  // the innermost loop last

}  // namespace

std::string SequenceWalkName(const std::string& variable) { return "__kvWalk_" + variable; }

void OpenSequenceWalk(const std::string& sequence, const std::string& variable) {
    walks.push_back({sequence, SequenceWalkName(variable), false});
}

bool CloseSequenceWalk() {
    if (walks.empty()) return false;
    const bool changed = walks.back().changed;
    walks.pop_back();
    if (changed) RequireSupport(Support::SequenceWalk);
    return changed;
}

std::string TellWalks(const std::string& sequence, const char* member, const std::string& value) {
    std::string text = value;
    for (OpenWalk& walk : walks) {
        if (walk.sequence != sequence) continue;
        walk.changed = true;
        text = walk.name + "." + member + "(" + text + ")";
    }
    return text;
}

std::string WalkCalls(const std::string& sequence, const char* member, const char* separator) {
    std::string text;
    for (OpenWalk& walk : walks) {
        if (walk.sequence != sequence) continue;
        walk.changed = true;
        text += walk.name + "." + member + "()" + separator;
    }
    return text;
}

void NoteSequenceChange(const std::string& sequence) {
    for (OpenWalk& walk : walks)
        if (walk.sequence == sequence) walk.changed = true;
}
