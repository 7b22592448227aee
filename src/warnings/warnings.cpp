#include "warnings/warnings.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <tuple>

#include "base/journal.h"
#include "base/report.h"
#include "base/settings.h"
#include "lexer/token_places.h"
#include "statements/second_pass.h"
#include "symbols/mistakes.h"
#include "symbols/symbols.h"
#include "warnings/comments.h"
#include "warnings/routine_watch.h"
#include "warnings/table.h"

namespace {

// The rows that look at something of the kind: there is much of each.
template <class Routine>
std::vector<const WarningRow*> RowsWith(Routine WarningRow::*look) {
    std::vector<const WarningRow*> found;
    for (const WarningRow& row : AllWarnings())
        if (row.*look != nullptr) found.push_back(&row);
    return found;
}

void Look(const State& state, TokenSpan statement) {
    static const std::vector<const WarningRow*> rows = RowsWith(&WarningRow::inStatement);
    WatchRoutine(state, statement);
    for (const WarningRow* row : rows) {
        const TokenSpan about = row->inStatement(state, statement);
        if (!about.empty()) WarnOf(*row, Kept(about));
    }
}

// In an operator, or an item of an array, by the routine of the rows that looks at such.
template <class Seen, TokenSpan (*WarningRow::*look)(const Seen&)>
void LookAt(const Seen& seen) {
    static const std::vector<const WarningRow*> rows = RowsWith(look);
    for (const WarningRow* row : rows) {
        const TokenSpan about = (row->*look)(seen);
        if (!about.empty()) WarnOf(*row, Kept(about));
    }
}

// The texts of its row; what is said where it is met has a message already.
void AddTexts(korvel::Diagnostic& warning) {
    for (const WarningRow& row : AllWarnings()) {
        if (warning.name != row.name) continue;
        if (warning.message.empty()) warning.message = row.text;
        warning.hint = row.hint;
    }
}

// What is wrong on a line makes whatever is odd there doubtful.
bool IsOnWrongLine(const korvel::Diagnostic& warning, const std::vector<korvel::Diagnostic>& mistakes) {
    return std::any_of(mistakes.begin(), mistakes.end(), [&warning](const korvel::Diagnostic& mistake) {
        return mistake.line == warning.line && mistake.file == warning.file;
    });
}

std::size_t FileNumber(const std::string& file) {
    const auto& files = symbols.sourceFiles;
    return static_cast<std::size_t>(std::find(files.begin(), files.end(), file) - files.begin());
}

}  // namespace

void BeginWarnings() {
    watchStatement = settings.warnings ? Look : nullptr;
    if (settings.warnings)
        watches = {LookAt<Operation, &WarningRow::inOperation>, LookAt<Indexing, &WarningRow::inIndexing>,
                   LookAt<Giving, &WarningRow::inGiving>, LookAt<CallStatement, &WarningRow::inCall>};
    else
        watches = {};
}

void TellWarnings() {
    if (!settings.warnings) return;
    watchStatement = nullptr;
    watches = {};
    if (!AnyMistakes()) WarnOfUnused();
    std::vector<korvel::Diagnostic> warnings = SemicolonsBehindPrint();
    for (const Slip& slip : TakeSlips()) {
        warnings.push_back(slip.warning);
        Locate(warnings.back(), slip.about);
    }
    const auto placeOf = [](const korvel::Diagnostic& warning) {
        return std::make_tuple(FileNumber(warning.file), warning.line, warning.firstColumn, warning.name);
    };
    std::stable_sort(warnings.begin(), warnings.end(),
                     [&](const auto& a, const auto& b) { return placeOf(a) < placeOf(b); });
    const std::vector<korvel::Diagnostic> mistakes = KeptMistakes();
    std::set<decltype(placeOf(warnings.front()))> told;  // what stands in a file included twice comes twice
    for (korvel::Diagnostic& warning : warnings) {
        if (!told.insert(placeOf(warning)).second || IsSilenced(warning)) continue;
        if (IsOnWrongLine(warning, mistakes)) continue;
        AddTexts(warning);
        TellWarning(warning);
    }
}
