#include "kv/compiler_report.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "base/utf8.h"
#include "kv/linker_report.h"
#include "kv/platform.h"
#include "kv/source_traces.h"

namespace {

const std::size_t errorsShown = 10;

bool IsFile(const std::string& path) {
    std::error_code failed;
    return std::filesystem::is_regular_file(PathOf(path), failed);
}

bool IsWithin(const std::string& path, const std::string& folder) {
    const auto relative =
        PathOf(path).lexically_normal().lexically_relative(PathOf(folder).lexically_normal());
    return !relative.empty() && *relative.begin() != "..";
}

// The lines of the generated files that messages point at; each file is read once.
class GeneratedLines {
public:
    std::string Line(const std::string& file, int line) {
        std::vector<std::string>& lines = files_[file];
        if (lines.empty()) {
            std::ifstream stream(PathOf(file), std::ios::binary);
            lines.emplace_back();
            for (std::string text; std::getline(stream, text);) lines.push_back(text);
        }
        return line > 0 && static_cast<std::size_t>(line) < lines.size()
                   ? lines[static_cast<std::size_t>(line)]
                   : "";
    }

private:
    std::map<std::string, std::vector<std::string>> files_;
};

// "path:12:5: error: message"; a path may hold a colon (C:\...).
bool ParseErrorLine(const std::string& text, TracePlace& place, std::string& message) {
    for (const std::string mark : {": error: ", ": fatal error: "}) {
        const std::size_t end = text.find(mark);
        if (end == std::string::npos) continue;
        std::size_t column = text.rfind(':', end - 1);
        if (column == std::string::npos) continue;
        std::size_t number = column == 0 ? std::string::npos : text.rfind(':', column - 1);
        if (number == std::string::npos || !std::isdigit(static_cast<unsigned char>(text[number + 1])))
            number = column;
        place.file = text.substr(0, number);
        place.line = std::atoi(text.c_str() + number + 1);
        message = text.substr(end + mark.size());
        return place.line > 0;
    }
    return false;
}

// Trouble that has nothing to do with the program.
const char* const troubles[] = {"No space left on device",    "Cannot create temporary file",
                                " signal terminated program", "virtual memory exhausted",
                                "out of memory allocating",   "cannot execute",
                                "unable to execute command",  "error trying to exec",
                                "cannot find 'ld'",           "Killed"};
// What a word in CXX, or behind it, brings about.
const char* const wrongFlags[] = {"unrecognized command-line option", "unrecognized command line option",
                                  "unknown argument", "unrecognized argument in option"};
const char* const missingLibrary[] = {"iostream: No such file",      "'iostream' file not found",
                                      "cstdlib: No such file",       "'cstdlib' file not found",
                                      "error: string: No such file", "error: vector: No such file",
                                      "cannot find crt1.o",          "undefined reference to `std::"};

// What a module of the language says when it lacks something of the system.
const char moduleNeeds[] = ": error: #error the module ";
const std::size_t moduleNeedsFrom = sizeof ": error: #error " - 1;

bool ExplainTrouble(const std::string& line, Diagnostic& diagnostic) {
    const auto contained = [&](const char* text) { return line.find(text) != std::string::npos; };
    if (contained(moduleNeeds)) {
        diagnostic.message = line.substr(line.find(moduleNeeds) + moduleNeedsFrom);
    } else if (std::any_of(std::begin(missingLibrary), std::end(missingLibrary), contained)) {
        diagnostic.message = "the C++ compiler has no standard library. " + std::string(compilerAdvice);
    } else if (std::any_of(std::begin(wrongFlags), std::end(wrongFlags), contained)) {
        diagnostic.message = "the C++ compiler does not know a flag that it is given: " + line +
                             "\nFlags come from CXX and from Linker lines.";
    } else if (std::any_of(std::begin(troubles), std::end(troubles), contained)) {
        diagnostic.message = "the C++ compiler could not do its work: " + line;
    }
    return !diagnostic.message.empty();
}

struct Folders {
    const std::string& generated;
    const std::string& user;
};

// An error in a generated file counts where its line was copied from an InlineCpp block, one in a source where inline C++
// stands; in another file of the user's it counts as it is.
bool ExplainErrorLine(const std::string& line, const SourceTraces& sources, GeneratedLines& generated,
                      const Folders& folders, Diagnostic& diagnostic) {
    TracePlace place;
    std::string message;
    if (!ParseErrorLine(line, place, message)) return false;
    place.file =
        TextOf((PathOf(folders.user) / PathOf(place.file)).lexically_normal());  // where compilers run
    if (IsWithin(place.file, folders.generated)) {
        const TracePlace* inlined = sources.InlineLine(generated.Line(place.file, place.line));
        if (inlined == nullptr) return false;
        place = *inlined;
    } else if (sources.IsSource(place.file)) {
        if (!sources.IsInline(place)) return false;
    } else if (!IsWithin(place.file, folders.user) || !IsFile(place.file)) {
        return false;
    }
    diagnostic.file = place.file;
    diagnostic.line = place.line;
    diagnostic.message = "in C++ code: " + message;
    return true;
}

bool BlamesCpp(const std::string& line) {
    TracePlace place;
    std::string message;
    return ParseErrorLine(line, place, message) || line.find("undefined reference") != std::string::npos ||
           line.find("undefined symbol") != std::string::npos ||
           line.find("multiple definition") != std::string::npos;
}

bool MissesHeader(const std::string& line) {
    return line.find(": fatal error: ") != std::string::npos &&
           line.find("No such file or directory") != std::string::npos;
}

// Where the compiler complains of no C++, what it could not do is no fault of whoever wrote that.
Diagnostic TroubleOfItsOwn(const std::string& output) {
    Diagnostic trouble;
    std::istringstream lines(output);
    std::string first;
    for (std::string line; std::getline(lines, line);) {
        if (MissesHeader(line)) {
            first = Trimmed(line);
            break;
        }
        if (BlamesCpp(line)) return trouble;
        if (first.empty()) first = Trimmed(line);
    }
    trouble.message = first.empty() ? "the C++ compiler could not do its work, and does not say why"
                                    : "the C++ compiler could not do its work: " + first;
    return trouble;
}

}  // namespace

std::vector<Diagnostic> ExplainCompilerOutput(const std::string& output,
                                              const std::vector<std::string>& sources,
                                              const std::string& cppFolder, const std::string& sourceFolder,
                                              bool isStatic) {
    const SourceTraces sourceLines(sources);
    const Folders folders = {cppFolder, sourceFolder};
    GeneratedLines generatedLines;
    std::vector<Diagnostic> found;
    std::istringstream lines(output);
    for (std::string line; found.size() < errorsShown && std::getline(lines, line);) {
        Diagnostic diagnostic;
        if (!ExplainTrouble(line, diagnostic) &&
            !ExplainLinkerLine(line, sourceLines, isStatic, diagnostic) &&
            !ExplainErrorLine(line, sourceLines, generatedLines, folders, diagnostic)) {
            continue;
        }
        const bool known = std::any_of(found.begin(), found.end(), [&](const Diagnostic& other) {
            return other.file == diagnostic.file && other.line == diagnostic.line &&
                   other.message == diagnostic.message;
        });
        if (!known) found.push_back(diagnostic);
    }
    if (Diagnostic lack; found.empty() && ExplainLackOfLibrary(output, sourceLines, isStatic, lack))
        found.push_back(lack);
    if (found.empty()) found.push_back(TroubleOfItsOwn(output));
    if (found.back().message.empty()) found.pop_back();
    return found;
}
