#include "toolchain.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "generated_code.h"

namespace fs = std::filesystem;

constexpr int kvtSeconds = 20, compileSeconds = 120;

static std::string FromEnvironment(const char* name, const char* fallback) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : fallback;
}

const Places& GetPlaces() {
    static const Places places{FromEnvironment("KORVEL_STAGE", DEFAULT_STAGE), DEFAULT_SOURCE,
                               FromEnvironment("KORVEL_WORK", DEFAULT_WORK),
                               !FromEnvironment("KORVEL_TRANSLATE_ONLY", "").empty()};
    return places;
}

std::string FreshFolder(const std::string& name) {
    const std::string folder = GetPlaces().work + "/" + name;
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

// One write per run, so that runners working side by side do not mix their lines.
void LogMessages(const ProcessResult& result) {
    const std::size_t most = 1U << 20;
    const std::string text = result.out.substr(0, most) + "\n" + result.err.substr(0, most) + "\n";
    const std::string path = GetPlaces().work + "/messages.log";
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    if (file < 0) return;
    if (write(file, text.data(), text.size()) < 0) std::abort();
    close(file);
}

ProcessResult RunKvt(const std::vector<std::string>& arguments, const std::string& folder) {
    std::vector<std::string> command{GetPlaces().stage + "/bin/kvt"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ProcessResult result = RunProcess(command, folder, "", kvtSeconds);
    LogMessages(result);
    return result;
}

static std::vector<std::string> FilesBelow(const std::string& folder, const std::string& extension) {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && entry.path().extension() == extension)
            files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string ReadAll(const std::string& folder, const std::string& extension) {
    std::string text;
    for (const std::string& file : FilesBelow(folder, extension)) text += ReadFile(file);
    return text;
}

std::string CheckGenerated(const std::string& outputFolder) {
    for (const char* extension : {".cpp", ".h"}) {
        for (const std::string& file : FilesBelow(outputFolder, extension)) {
            const std::string fault = FindFault(ReadFile(file));
            if (!fault.empty()) return file + ": " + fault;
        }
    }
    return "";
}

static std::vector<std::string> CompilerCommand(const CompileOptions& options) {
    std::vector<std::string> command{FromEnvironment("CXX", "g++"), "-std=c++11", "-O0",
                                     "-I" + options.includeFolder};
    if (options.sanitize) {
        for (const char* flag : {"-fsanitize=address,undefined", "-fno-sanitize-recover=all", "-g1"})
            command.emplace_back(flag);
    }
    return command;
}

static const char* const standardIncludes =
    "#include <iostream>\n#include <iomanip>\n#include <string>\n#include <vector>\n#include <algorithm>\n"
    "#include <type_traits>\n#include <cstdlib>\n#include <limits>\n#include <conio.h>\n#include "
    "<functional>\n"
    "#include <chrono>\n#include <cmath>\n";

// The header to include first, precompiled when this compiler and this conio.h have not met before.
// Runners working side by side wait for the one that makes it.
static std::string PrecompiledHeader(const CompileOptions& options) {
    const std::string folder =
        GetPlaces().work + (options.sanitize ? "/precompiled-sanitized" : "/precompiled");
    const std::string header = folder + "/standard.h", compiled = header + ".gch";
    const std::string conio = GetPlaces().stage + "/include/conio.h";
    fs::create_directories(folder);
    const int lock = open((folder + "/lock").c_str(), O_RDWR | O_CREAT, 0644);
    if (lock < 0 || flock(lock, LOCK_EX) != 0) std::abort();
    std::error_code missing;
    if (!fs::exists(compiled) || fs::last_write_time(compiled) < fs::last_write_time(conio, missing)) {
        WriteFile(header, standardIncludes);
        std::vector<std::string> command = CompilerCommand(options);
        for (const std::string& word :
             {std::string("-x"), std::string("c++-header"), header, std::string("-o"), compiled}) {
            command.push_back(word);
        }
        RunProcess(command, folder, "", compileSeconds);
    }
    close(lock);
    return header;
}

ProcessResult CompileProgram(const std::string& cppFile, const std::string& folder,
                             const CompileOptions& options) {
    std::vector<std::string> command = CompilerCommand(options);
    if (options.precompiled) {
        command.emplace_back("-include");
        command.push_back(PrecompiledHeader(options));
    }
    for (const std::string& word :
         {std::string("-o"), folder + "/program", cppFile, std::string("-Wl,-rpath,$ORIGIN")}) {
        command.push_back(word);
    }
    std::istringstream flags(options.linkerFlags);
    for (std::string flag; flags >> flag;) command.push_back(flag);
    return RunProcess(command, folder, "", compileSeconds);
}

std::string FirstDifference(const std::string& wanted, const std::string& got) {
    std::istringstream wantedLines(wanted), gotLines(got);
    std::string wantedLine, gotLine;
    for (int line = 1;; ++line) {
        const bool more = static_cast<bool>(std::getline(wantedLines, wantedLine));
        const bool moreGot = static_cast<bool>(std::getline(gotLines, gotLine));
        if (!more && !moreGot) return "the texts differ in their final line ends only";
        if (more && moreGot && wantedLine == gotLine) continue;
        return "line " + std::to_string(line) + "\n  wanted: " + (more ? wantedLine : "(nothing)") +
               "\n  got:    " + (moreGot ? gotLine : "(nothing)");
    }
}
