#include "kv/stamp.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

const char stampVersion[] = "kv-stamp 1";

// Times of files advance in steps of a few milliseconds.
const auto timeStep = std::chrono::milliseconds(20);

std::string PathOfMark(const std::string& mark) {
    const std::size_t first = mark.find('|');
    if (first == std::string::npos || mark.compare(0, first, "missing") == 0) return "";
    const std::size_t second = mark.find('|', first + 1);
    return second == std::string::npos ? "" : mark.substr(second + 1);
}

}  // namespace

std::string MarkOf(const std::string& path) {
    std::error_code failed;
    const std::uintmax_t size = fs::file_size(path, failed);
    if (failed) return "missing|" + path;
    const auto time = fs::last_write_time(path, failed).time_since_epoch().count();
    return std::to_string(size) + "|" + std::to_string(time) + "|" + path;
}

bool StampHolds(const std::string& stampFile, const std::string& commands) {
    std::ifstream stream(stampFile, std::ios::binary);
    std::string line;
    if (!std::getline(stream, line) || line != stampVersion) return false;
    if (!std::getline(stream, line) || line != commands) return false;
    bool complete = false;
    while (std::getline(stream, line)) {
        complete = line == "end";
        if (complete) break;
        const std::string path = PathOfMark(line);
        if (path.empty() || MarkOf(path) != line) return false;
    }
    return complete;
}

void WriteStamp(const std::string& stampFile, const std::string& started, const std::string& commands,
                const std::vector<std::string>& files, const std::vector<std::string>& products) {
    std::error_code failed;
    const fs::file_time_type start = fs::last_write_time(started, failed);
    if (failed || commands.find('\n') != std::string::npos) return;
    std::string text = std::string(stampVersion) + "\n" + commands + "\n";
    for (const std::string& file : files) {
        const fs::file_time_type time = fs::last_write_time(file, failed);
        if (failed || time > start - timeStep || file.find('\n') != std::string::npos) return;
        text += MarkOf(file) + "\n";
    }
    for (const std::string& product : products) text += MarkOf(product) + "\n";
    std::ofstream(stampFile, std::ios::binary) << text << "end\n";
}

std::vector<std::string> SourcesOf(const std::string& dependencyRecord) {
    std::vector<std::string> sources;
    std::ifstream stream(dependencyRecord, std::ios::binary);
    std::string line;
    if (!std::getline(stream, line) || line.compare(0, 5, "MAIN:") != 0) return sources;
    sources.push_back(line.substr(5));
    if (!std::getline(stream, line) || line.compare(0, 9, "INCLUDES:") != 0) return {};
    for (long count = std::strtol(line.c_str() + 9, nullptr, 10); count > 0; --count) {
        if (!std::getline(stream, line)) return {};
        sources.push_back(line);
    }
    return sources;
}

std::vector<std::string> FilesInMakeRule(const std::string& rule) {
    std::vector<std::string> files;
    std::string file;
    std::size_t at = rule.find(": ");
    if (at == std::string::npos) return files;
    for (++at; at <= rule.size(); ++at) {
        const char c = at < rule.size() ? rule[at] : '\n';
        const char next = at + 1 < rule.size() ? rule[at + 1] : '\0';
        const bool escaped = c == '\\' && (next == ' ' || next == '#' || next == '\\');
        if (escaped || (c == '$' && next == '$')) {
            file += rule[++at];
        } else if (c == ' ' || c == '\n' || c == '\r' || (c == '\\' && (next == '\n' || next == '\r'))) {
            if (!file.empty()) files.push_back(file);
            file.clear();
        } else {
            file += c;
        }
    }
    return files;
}
