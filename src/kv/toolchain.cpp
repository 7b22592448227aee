#include "kv/toolchain.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "base/command_quoting.h"
#include "base/utf8.h"
#include "kv/platform.h"

namespace {

const char* const usualCompilers[] = {"g++", "clang++", "c++"};

// What links a small program soonest comes first.
const char* const quickLinkers[] = {"mold", "gold", "lld"};

// Where headers lie that come with the system, and, below the folder above the compiler's own, with the compiler.
const char* const systemFolders[] = {"/usr/include", "/Library/Developer", "/Applications/Xcode.app"};
const char* const foldersOfCompiler[] = {
    "include/c++", "lib/gcc", "lib64/gcc", "lib/clang", "x86_64-w64-mingw32/include",
#ifdef _WIN32
    "include",
#endif
    "lib64/clang"};

const char* const linkingFlags[] = {"-l", "-L", "-Wl,"};
const char* const compilingFlags[] = {"-I", "-D", "-U", "-pthread"};

const char* const compilersForWindows[] = {"x86_64-w64-mingw32-g++-posix", "x86_64-w64-mingw32-g++"};

#ifdef _WIN32
const bool isWindows = true;
#else
const bool isWindows = false;
#endif

#ifdef __APPLE__
const char* const ownFolderFlag = "-Wl,-rpath,@loader_path";
#else
const char* const ownFolderFlag = "-Wl,-rpath,$ORIGIN";
#endif

std::string WithSuffix(const std::string& path) {
    if (IsExecutable(path)) return path;
    const std::string suffixed = path + executableSuffix;
    return IsExecutable(suffixed) ? suffixed : "";
}

template <std::size_t count>
bool StartsWithOne(const std::string& flag, const char* const (&starts)[count]) {
    return std::any_of(std::begin(starts), std::end(starts), [&](const std::string& start) {
        // A letter alone has its value in the next word.
        return flag.compare(0, start.size(), start) == 0 && (flag.size() > 2 || start.size() > 2);
    });
}

bool MeansLinking(const std::string& flag) { return StartsWithOne(flag, linkingFlags); }

// Compilers run in the source's folder.
std::string ForTool(const CompileJob& job, const std::string& path) {
    return PathForTool(path, job.sourceFolder);
}

void Add(std::vector<std::string>& command, const std::vector<std::string>& more) {
    command.insert(command.end(), more.begin(), more.end());
}

// Tables of lines name the sources by their way from the main one, so that programs are the same wherever they are
// made, and mark what is generated. Folders with the sign that parts the two names stay as they are.
void AddPlaceFlags(std::vector<std::string>& command, const CompileJob& job) {
    const struct {
        const std::string& folder;
        const char* name;
    } names[] = {{job.sourceFolder, "."}, {job.includeFolder, "<korvel>"}, {job.cppFolder, "<korvel>"}};
    for (const auto& row : names) {
        if (row.folder.find('=') == std::string::npos)
            command.push_back("-fdebug-prefix-map=" + row.folder + "=" + row.name);
    }
    if (job.failureCode.empty()) command.push_back("-DKV_NO_FAILURES");
}

// g++ would make one instruction, whose place is anyone's, of all that it can see to use a Null object or to divide by
// zero, and one piece of code of calls with the same arguments, such as those of checks that have failed.
std::vector<std::string> FlagsThatKeepPlaces(bool safe) {
    std::vector<std::string> flags = {"-fno-isolate-erroneous-paths-dereference"};
    if (safe) Add(flags, {"-fno-crossjumping", "-fno-tree-tail-merge"});
    return flags;
}

// Where a translation unit is large for g++ (beyond 10,000 of its instructions), routines that are called go into others
// only as long as that brings most: the last ones bring little and take a sixth of the time.
std::vector<std::string> FlagsThatSaveTime() { return {"--param=inline-unit-growth=10"}; }

std::vector<std::string> Beginning(const std::vector<std::string>& compiler, const CompileJob& job) {
    std::vector<std::string> command = compiler;
    command.insert(command.end(), {"-std=c++11", job.optimisation, "-pipe", "-w"});
    Add(command, LineTableFlags(job.debug, job.places));
    if (job.places) AddPlaceFlags(command, job);
    if (job.places && job.optimisation != "-O0" && IsGnu(compiler))
        Add(command, FlagsThatKeepPlaces(job.safe));
    if (job.optimisation != "-O0" && IsGnu(compiler)) Add(command, FlagsThatSaveTime());
    // Reports in a Method ask whether `this` is Null.
    if (job.debug && job.optimisation != "-O0") command.push_back("-fno-delete-null-pointer-checks");
    if (!job.prelude.empty()) command.insert(command.end(), {"-include", ForTool(job, job.prelude)});
    Add(command, job.unitFlags);
    // The user's folder serves #include "..." only: a program named like a standard header must not hide it.
    command.insert(command.end(),
                   {"-I" + ForTool(job, job.includeFolder), "-iquote", ForTool(job, job.sourceFolder)});
    command.insert(command.end(), {"-MD", "-MF", ForTool(job, job.newDependencies)});
    return command;
}

// What of the Linker lines the compiler has to know: C++ of the user's that they name, too.
void AddCompilingFlags(std::vector<std::string>& command, const CompileJob& job) {
    for (const std::string& flag : job.linkerFlags) {
        if (!MeansLinking(flag)) command.push_back(flag);
    }
}

void AddLibraries(std::vector<std::string>& command, const CompileJob& job) {
    for (const std::string& object : {job.failureCode, job.debuggerCode})
        if (!object.empty()) command.push_back(ForTool(job, object));
    const bool isForWindows = isWindows || job.isForWindows;
    if (isForWindows || job.isStatic)
        command.push_back("-static");  // the program runs where no compiler is installed
    // Shared libraries beside the program are found; one that needs none takes none that others have put there.
    if (!isForWindows && (job.loadsLibraries || !job.linkerFlags.empty())) command.push_back(ownFolderFlag);
    command.insert(command.end(), job.linkerFlags.begin(), job.linkerFlags.end());
#ifdef __linux__
    if (!isForWindows) command.push_back("-ldl");
#endif
}

}  // namespace

// The full path of a program: a path is taken from the working folder, a name is looked for along PATH.
std::string FindProgram(const std::string& name) {
    std::error_code failed;
    if (name.find_first_of("/\\") != std::string::npos) {
        return WithSuffix(TextOf(std::filesystem::absolute(PathOf(name), failed)));
    }
    std::istringstream folders(EnvironmentVariable("PATH"));
    for (std::string folder; std::getline(folders, folder, searchPathSeparator);) {
        const std::filesystem::path place = PathOf(folder.empty() ? "." : folder);
        std::string found = WithSuffix(TextOf(std::filesystem::absolute(place / PathOf(name), failed)));
        if (!found.empty()) return found;
    }
    return "";
}

std::vector<std::string> FindCompiler(std::string& problem) {
    std::vector<std::string> words = SplitFlags(EnvironmentVariable("CXX"));
    if (!words.empty()) {
        const std::string program = FindProgram(words[0]);
        if (program.empty()) {
            problem = "the C++ compiler that CXX names was not found: " + words[0];
            return {};
        }
        words[0] = program;
        return words;
    }
    for (const char* name : usualCompilers) {
        const std::string program = FindProgram(name);
        if (!program.empty()) return {program};
    }
    problem = "no C++ compiler found (looked for $CXX, g++, clang++). " + std::string(compilerAdvice);
    return {};
}

std::vector<std::string> FindCompilerForWindows(std::string& problem) {
    if (isWindows) return FindCompiler(problem);
    for (const char* name : compilersForWindows) {
        const std::string program = FindProgram(name);
        if (!program.empty()) return {program};
    }
    problem =
        "no C++ compiler for Windows found (looked for x86_64-w64-mingw32-g++). On Debian and Ubuntu: "
        "apt-get install g++-mingw-w64-x86-64";
    return {};
}

std::vector<std::string> CompilerFiles(const std::vector<std::string>& compiler) {
    std::vector<std::string> files;
    for (const std::string& word : compiler) {
        const std::string program = word.empty() || word[0] == '-' ? "" : FindProgram(word);
        if (!program.empty()) files.push_back(program);
    }
    return files;
}

// There are systems where clang++ is called g++.
bool IsGnu(const std::vector<std::string>& compiler) {
#ifdef __APPLE__
    return false;
#endif
    const std::vector<std::string> files = CompilerFiles(compiler);
    return std::any_of(files.begin(), files.end(), [](const std::string& file) {
        std::error_code failed;
        const std::string name = TextOf(std::filesystem::canonical(PathOf(file), failed).filename());
        return name.find("g++") != std::string::npos && name.find("clang") == std::string::npos;
    });
}

std::vector<std::string> CompilerFolders(const std::vector<std::string>& compiler) {
    std::vector<std::string> folders(std::begin(systemFolders), std::end(systemFolders));
    for (const std::string& file : CompilerFiles(compiler)) {
        std::error_code failed;
        for (const std::filesystem::path& program :
             {PathOf(file), std::filesystem::canonical(PathOf(file), failed)}) {
            const std::filesystem::path top = program.parent_path().parent_path();
            for (const char* const below : foldersOfCompiler) folders.push_back(TextOf(top / below));
        }
    }
    return folders;
}

bool CanLinkApart(const std::vector<std::string>& linkerFlags) {
    return std::all_of(linkerFlags.begin(), linkerFlags.end(), [](const std::string& flag) {
        return MeansLinking(flag) || StartsWithOne(flag, compilingFlags);
    });
}

std::vector<std::string> LineTableFlags(bool debug, [[maybe_unused]] bool places) {
    if (debug) return {"-g"};
#ifndef _WIN32  // where nobody could read them
    if (places) return {"-g1", "-gno-column-info"};
#endif
    return {};
}

std::vector<std::string> SyntaxCommand(const std::vector<std::string>& compiler, const CompileJob& job) {
    std::vector<std::string> command = Beginning(compiler, job);
    AddCompilingFlags(command, job);
    command.insert(command.end(), {"-fsyntax-only", ForTool(job, job.mainCpp)});
    return command;
}

std::vector<std::string> CompileCommand(const std::vector<std::string>& compiler, const CompileJob& job) {
    std::vector<std::string> command = Beginning(compiler, job);
    AddCompilingFlags(command, job);
    command.insert(command.end(), {"-c", "-o", ForTool(job, job.newObject), ForTool(job, job.mainCpp)});
    return command;
}

std::vector<std::string> LinkCommand(const std::vector<std::string>& compiler, const CompileJob& job) {
    std::vector<std::string> command = compiler;
    command.insert(command.end(), job.quickLinking.begin(), job.quickLinking.end());
    command.insert(command.end(), {"-o", ForTool(job, job.newProgram)});
    for (const std::string& object : job.objects) command.push_back(ForTool(job, object));
    AddLibraries(command, job);
    return command;
}

std::vector<std::string> WholeCommand(const std::vector<std::string>& compiler, const CompileJob& job) {
    std::vector<std::string> command = Beginning(compiler, job);
    command.insert(command.end(), {"-o", ForTool(job, job.newProgram), ForTool(job, job.mainCpp)});
    AddLibraries(command, job);
    return command;
}

std::vector<std::string> QuickLinkerFlags() {
#ifdef __linux__
    for (const char* const linker : quickLinkers) {
        if (!FindProgram(std::string("ld.") + linker).empty()) return {std::string("-fuse-ld=") + linker};
    }
#endif
    return {};
}

std::vector<std::string> LinkerRecordFlags(const std::string& file) {
    if (file.find(',') != std::string::npos) return {};
    return {"-Wl,--dependency-file=" + file};
}
