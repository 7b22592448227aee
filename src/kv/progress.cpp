#include "kv/progress.h"

#include <cstdio>
#include <vector>

#include "kv/platform.h"

namespace {

// Work that is done sooner goes unmentioned.
const std::chrono::milliseconds patience(500);

// A terminal shows each character of a text in one column, or in two: those of scripts with broad signs.
struct Character {
    std::string bytes;
    int columns;
};

std::vector<Character> CharactersOf(const std::string& text) {
    std::vector<Character> characters;
    for (const char c : text) {
        const unsigned char code = static_cast<unsigned char>(c);
        if (code >= 0x80 && code < 0xC0 && !characters.empty()) {
            characters.back().bytes += c;
        } else if (code < 32 || code == 127) {
            characters.push_back({"?", 1});
        } else {
            characters.push_back({std::string(1, c), code >= 0xE1 ? 2 : 1});
        }
    }
    return characters;
}

std::string Joined(const std::vector<Character>& characters, std::size_t from, std::size_t to) {
    std::string text;
    for (std::size_t at = from; at < to; ++at) text += characters[at].bytes;
    return text;
}

// The text in at most `columns` columns, with "..." for what had to go.
std::string Cut(const std::string& text, int columns) {
    const std::vector<Character> characters = CharactersOf(text);
    int needed = 0;
    for (const Character& character : characters) needed += character.columns;
    if (needed <= columns) return Joined(characters, 0, characters.size());
    const int room = columns - 3;
    std::size_t first = 0;
    std::size_t last = characters.size();
    int used = 0;
    for (; used + characters[first].columns <= room / 2; ++first) used += characters[first].columns;
    for (; used + characters[last - 1].columns <= room; --last) used += characters[last - 1].columns;
    return Joined(characters, 0, first) + "..." + Joined(characters, last, characters.size());
}

}  // namespace

std::size_t ColumnsOf(const std::string& text) {
    std::size_t columns = 0;
    for (const Character& character : CharactersOf(text))
        columns += static_cast<std::size_t>(character.columns);
    return columns;
}

std::string ProgressLine(const std::string& work, double seconds, int columns) {
    const int least = 10;  // columns for the work, or there is no use in it
    char time[40];
    std::snprintf(time, sizeof time, " ... %.1f s", seconds);
    const std::string end = time;
    const int room = columns - 1 - static_cast<int>(end.size());
    return room < least ? "" : Cut(work, room) + end;
}

Progress::Progress(const std::string& work) : work_(work), start_(std::chrono::steady_clock::now()) {}

Progress::~Progress() { End(); }

void Progress::End() { EraseErrorLine(); }

std::function<void()> Progress::Ticks() {
    if (ErrorStreamColumns() == 0) return nullptr;
    return [this] { Show(); };
}

void Progress::Show() const {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    if (elapsed < patience) return;
    const std::string line = ProgressLine(work_, elapsed.count(), ErrorStreamColumns());
    if (!line.empty()) RewriteErrorLine(line);
}
