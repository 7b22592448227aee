#include "statements/first_mistake.h"

#include <algorithm>
#include <deque>
#include <vector>

#include "driver/run.h"
#include "driver/settings.h"
#include "expressions/sequence_walks.h"
#include "prelude/output.h"
#include "statements/translate.h"
#include "symbols/scopes.h"
#include "symbols/source_lines.h"

namespace {

struct Waiting {
    std::string path, outputFolder;
};
std::deque<Waiting> waiting;        // in the order of their first passes
std::vector<std::string> underWay;  // files in strict translation, the innermost last
bool allNamesRead = false;
const Stop* search = nullptr;  // what began it
const PartOfRun partOfRun(waiting, underWay, allNamesRead, search);

// What the mistake has interrupted.
void ForgetOpenWork() {
    ResetScopes();
    ResetSequenceWalks();
    CollectNeedsInto(nullptr);
    PushRoutineScope();
}

}  // namespace

void AwaitStatements(const std::string& path, const std::string& outputFolder) {
    waiting.push_back({path, outputFolder});
}

void BeginStatements(const std::string& path) { underWay.push_back(FileId(path)); }

void EndStatements(const std::string& path) {
    underWay.pop_back();
    const auto same = [&path](const Waiting& file) { return file.path == path; };
    const auto found = std::find_if(waiting.begin(), waiting.end(), same);  // the first, as a rule
    if (found != waiting.end()) waiting.erase(found);
}

void NoteAllNamesRead() { allNamesRead = true; }

bool GoesThrough(const std::function<void()>& translate) {
    try {
        translate();
        return true;
    } catch (const Stop&) {
        ForgetOpenWork();
        return false;
    }
}

bool SearchesFirstMistake() { return search != nullptr; }

bool SearchesIn(const std::string& path) {
    if (search == nullptr || !allNamesRead) return false;
    if (std::find(underWay.begin(), underWay.end(), FileId(path)) != underWay.end()) throw Stop(*search);
    return true;
}

void ReportFirstMistake(const Stop& met) {
    search = &met;
    settings.verbose = settings.warnings = false;
    for (const Waiting& file : std::deque<Waiting>(waiting)) {
        ForgetOpenWork();
        TranslateFile(file.path, file.outputFolder, false, true);
    }
    throw Stop(met);
}
