#include "kv/stamp.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/utf8.h"
#include "kv/build_folder.h"
#include "kv/hash.h"
#include "kv/platform.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

const char stampVersion[] = "kv-stamp 2";
const char missing[] = "missing";
const char absent[] = "absent";  // what has to stay missing
const char contentSign = '#';

// Times of files advance in steps of a few milliseconds.
const long long timeStep = 20000000;

// A mark is what is known about the file, a bar, and its path.
std::string ContentMarkOf(const std::string& path) {
    std::error_code failed;
    if (!fs::is_regular_file(PathOf(path), failed)) return std::string(missing) + "|" + path;
    return contentSign + HashOf(ReadWhole(path)) + "|" + path;
}

bool IsThere(const std::string& path) {
    FileState state;
    return StateOf(path, state);
}

bool MarkHolds(const std::string& mark) {
    const std::size_t bar = mark.find('|');
    if (bar == std::string::npos || mark.compare(0, bar, missing) == 0) return false;
    const std::string path = mark.substr(bar + 1);
    if (mark.compare(0, bar, absent) == 0) return !IsThere(path);
    return (mark[0] == contentSign ? ContentMarkOf(path) : MarkOf(path)) == mark;
}

}  // namespace

std::string MarkOf(const std::string& path) {
    FileState state;
    return (StateOf(path, state) ? state.text : missing) + "|" + path;
}

bool StampHolds(const std::string& stampFile, const std::string& commands) {
    std::ifstream stream(PathOf(stampFile), std::ios::binary);
    std::string line;
    if (!std::getline(stream, line) || line != stampVersion) return false;
    if (!std::getline(stream, line) || line != commands) return false;
    while (std::getline(stream, line)) {
        if (line == "end") return true;
        if (!MarkHolds(line)) return false;
    }
    return false;
}

void WriteStamp(const std::string& stampFile, const std::string& started, const std::string& commands,
                const StampFiles& files) {
    FileState start;
    if (!StateOf(started, start)) return;
    std::string marks;
    std::size_t lines = 0;
    std::vector<std::string> sources = files.sources;
    for (const std::string& rival : files.rivals) {
        if (IsThere(rival)) {
            sources.push_back(rival);
            continue;
        }
        marks += std::string(absent) + "|" + rival + "\n";
        ++lines;
    }
    for (const std::string& source : sources) {
        FileState state;
        if (!StateOf(source, state) || state.latest > start.latest - timeStep) return;
        marks += MarkOf(source) + "\n";
        ++lines;
    }
    for (const std::string& file : files.generated) marks += ContentMarkOf(file) + "\n";
    for (const std::string& product : files.products) marks += MarkOf(product) + "\n";
    lines += files.generated.size() + files.products.size();
    // A line end in a path or a command is more than a stamp can tell.
    if (static_cast<std::size_t>(std::count(marks.begin(), marks.end(), '\n')) != lines) return;
    if (commands.find('\n') != std::string::npos) return;
    WriteOver(PathOf(stampFile), std::string(stampVersion) + "\n" + commands + "\n" + marks + "end\n");
}

std::vector<std::string> FilesInMakeRule(const std::string& rule) {
    std::vector<std::string> files;
    std::string file;
    std::size_t at = rule.find(": ");
    if (at == std::string::npos) return files;
    for (++at; at < rule.size(); ++at) {
        const char c = rule[at];
        const char next = at + 1 < rule.size() ? rule[at + 1] : '\0';
        const bool lineGoesOn = c == '\\' && (next == '\n' || next == '\r');
        if ((c == '\\' && (next == ' ' || next == '#' || next == '\\')) || (c == '$' && next == '$')) {
            file += rule[++at];
        } else if (c == ' ' || c == '\n' || c == '\r' || lineGoesOn) {
            if (!file.empty()) files.push_back(file);
            file.clear();
            if (c == '\n') return files;
            if (lineGoesOn) at = rule.find('\n', at);
        } else {
            file += c;
        }
    }
    return {};
}

std::vector<std::string> FilesOfLinker(const std::string& record) {
    const std::string lineGoesOn = " \\";
    std::vector<std::string> files;
    std::istringstream lines(record);
    std::string line;
    std::getline(lines, line);  // the program
    while (std::getline(lines, line)) {
        const std::size_t start = line.find_first_not_of(' ');
        if (start == std::string::npos) break;
        const std::size_t end = line.size() - lineGoesOn.size();
        const bool isLast =
            line.size() < lineGoesOn.size() || line.compare(end, lineGoesOn.size(), lineGoesOn) != 0;
        files.push_back(line.substr(start, isLast ? std::string::npos : end - start));
        if (isLast && !lines.eof()) return files;  // behind them, the same files once more
    }
    return {};
}
