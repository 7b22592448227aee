#include "base/edit_distance.h"

#include <algorithm>

#include "base/token_text.h"

std::size_t EditDistance(const std::string& a, const std::string& b, std::size_t most) {
    if (std::max(a.size(), b.size()) - std::min(a.size(), b.size()) > most) return most + 1;
    std::vector<std::vector<std::size_t>> table(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = i + j;
                continue;
            }
            const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
            table[i][j] = std::min({table[i - 1][j] + 1, table[i][j - 1] + 1, table[i - 1][j - 1] + change});
            const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped) table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
        }
    }
    return std::min(table[a.size()][b.size()], most + 1);
}

std::string NearestWord(const std::string& word, const std::vector<std::string>& known, std::size_t most) {
    const auto small = [](std::string text) {
        std::transform(text.begin(), text.end(), text.begin(), LowerLetter);
        return text;
    };
    std::string nearest;
    for (const std::string& other : known) {
        const std::size_t distance = EditDistance(small(word), small(other), most);
        if (distance > most || (distance == most && !nearest.empty())) continue;
        most = distance;
        nearest = other;
    }
    return nearest;
}
