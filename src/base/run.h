// What belongs to one run: tables, counters and settings that stand at file scope, where everybody gets at them
// without detours. Whoever keeps such a record beyond a call declares it a part of the run.
#pragma once

#include <functional>
#include <vector>

// All parts of the process, each as the routine that makes it new.
std::vector<std::function<void()>>& PartsOfRun();

// Declares records parts of the run, for as long as the process lasts:
//     Symbols symbols;
//     static const PartOfRun partOfRun(symbols);
class PartOfRun {
public:
    template <class... Records>
    explicit PartOfRun(Records&... records) {
        PartsOfRun().emplace_back([&records...] { ((records = Records()), ...); });
    }
};

// Begins another run: every record is what its type makes without arguments, as when the process began. Words and
// whatever else was handed out before are gone.
void RenewRun();
