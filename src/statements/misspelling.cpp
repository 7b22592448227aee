#include "statements/misspelling.h"

#include <algorithm>
#include <vector>

#include "base/run.h"
#include "lexer/lexer.h"
#include "symbols/identifiers.h"
#include "symbols/symbols.h"

namespace {

// Looking through all names takes its time, and nobody reads so many.
constexpr int mostHints = 100;
int hints = 0;
const PartOfRun partOfRun(hints);

// Number of letters to change, drop, add or swap; anything above `most` counts as most + 1.
int Distance(const std::string& a, const std::string& b, int most) {
    const int lengths = static_cast<int>(a.size()) - static_cast<int>(b.size());
    if (std::abs(lengths) > most) return most + 1;
    std::vector<std::vector<int>> table(a.size() + 1, std::vector<int>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = static_cast<int>(i + j);
                continue;
            }
            const int change = a[i - 1] == b[j - 1] ? 0 : 1;
            table[i][j] = std::min({table[i - 1][j] + 1, table[i][j - 1] + 1, table[i - 1][j - 1] + change});
            const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped) table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
        }
    }
    return table[a.size()][b.size()];
}

}  // namespace

std::string SpellingHint(const std::string& name) {
    if (++hints > mostHints) return {};
    const std::string lower = Lower(name);
    int best = name.size() < 4 ? 0 : name.size() < 6 ? 1 : 2;
    std::string nearest;
    const auto offer = [&](const std::string& word) {
        const int distance = word.empty() ? best + 1 : Distance(lower, Lower(word), best);
        if (distance > best || (distance == best && !nearest.empty())) return;
        best = distance;
        nearest = word;
    };
    for (const std::string& word : wordLists.keywordList) offer(word);
    for (const auto& function : symbols.functions) offer(function.first);
    return nearest.empty() ? "" : "\nDid you mean '" + nearest + "'?";
}
