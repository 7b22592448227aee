// The phases of a run that leave traces on disk: quick builds, cleaning, linker flags, the installation root.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "toolchain.h"

namespace fs = std::filesystem;

namespace {

class Phases : public testing::Test {
protected:
    void SetUp() override {
        folder = FreshFolder(std::string("phases.") +
                             testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(folder + "/out");
        Write("main.kvl", "Include \"lib/util.kvl\"\nFunction Main\n    Print Twice(4)\nEndFunction\n");
        Write("lib/util.kvl", "Function Twice:Int(n:Int)\n    Return n * 2\nEndFunction\n");
    }

    void Write(const std::string& file, const std::string& text) { WriteFile(folder + "/" + file, text); }
    std::string Read(const std::string& file) { return ReadFile(folder + "/" + file); }
    bool Has(const std::string& file) { return fs::exists(folder + "/" + file); }

    // Translates main.kvl and returns what kvt said behind its arguments.
    std::string Translate(std::vector<std::string> flags = {}, int status = 0) {
        flags.insert(flags.begin(), {"-s", folder + "/main.kvl", "-o", folder + "/out"});
        const ProcessResult kvt = RunKvt(flags, folder);
        EXPECT_EQ(kvt.exitStatus, status) << kvt.out << kvt.err;
        return kvt.out.substr(kvt.out.find("\n\n", kvt.out.find("Output path: ")) + 2);
    }
    void MakeNewer(const std::string& file) {
        const std::string path = folder + "/" + file;
        fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(5));
    }
    static void ExpectIn(const std::string& text, const std::string& part) {
        EXPECT_NE(text.find(part), std::string::npos) << "wanted: " << part << "\nin: " << text;
    }

    std::string folder;
};

const char* const skipping = "[QUICK BUILD] No source files changed - skipping transpilation\n";

TEST_F(Phases, QuickBuildsSkipWhatHasNotChanged) {
    EXPECT_EQ(Translate({"-quick"})
                  .rfind("[QUICK BUILD] No previous build found, performing full transpilation\n"
                         "Working on files...\n",
                         0),
              0U);
    const std::string dependencies = Read("out/.main.kvl.deps"), manifest = Read("out/.main.kvl.manifest");
    EXPECT_EQ(dependencies.rfind(
                  "MAIN:" + folder + "/main.kvl\nINCLUDES:1\n" + folder + "/lib/util.kvl\nKVL_TIMES:2\n", 0),
              0U)
        << dependencies;
    Write("out/main.cpp", "kept");
    EXPECT_EQ(Translate({"-quick"}),
              skipping + ("[QUICK BUILD] Using existing: " + folder) + "/out/main.cpp\nDone! \\o/\n\n");
    EXPECT_EQ(Read("out/main.cpp"), "kept");
    EXPECT_EQ(Read("out/.main.kvl.manifest"), manifest);

    MakeNewer("lib/util.kvl");
    ExpectIn(Translate({"-quick"}), "[QUICK BUILD] Included file changed: " + folder + "/lib/util.kvl\n");
    EXPECT_NE(Read("out/main.cpp"), "kept");
    ExpectIn(Translate({"-quick"}), skipping);
    MakeNewer("main.kvl");
    ExpectIn(Translate({"-quick"}), "[QUICK BUILD] Main file changed, transpiling...\n");
    ExpectIn(Translate({"-quick", "-d"}), "[QUICK BUILD] C++ file not found, forcing transpilation\n");

    Write("main.kvl", "Include \"std/text.kvl\"\nFunction Main\nEndFunction\n");
    Translate({"-quick"});
    ExpectIn(Translate({"-quick"}), skipping);
    Write("std/text.kvl", "");
    ExpectIn(Translate({"-quick"}), "[QUICK BUILD] Included file changed: " + folder + "/std/text.kvl\n");
}

TEST_F(Phases, QuickBuildsTellWhatForcesThem) {
    Translate({"-quick"});
    Write("out/main.h", "#include \"KVR_PSXStd.h\"\n");
    ExpectIn(Translate({"-quick"}), "[QUICK BUILD] C++ file was built for another target, transpiling...\n");
    const std::string said = Translate({"-quick", "-v"});
    ExpectIn(said, "[QUICK BUILD] Loaded dependency manifest: " + folder + "/out/.main.kvl.deps\n");
    ExpectIn(said, "[QUICK BUILD] Saved dependency manifest: " + folder + "/out/.main.kvl.deps\n");
    fs::remove(folder + "/lib/util.kvl");
    ExpectIn(Translate({"-quick"}, 1), "[QUICK BUILD] Included file missing: " + folder + "/lib/util.kvl\n");
    fs::remove(folder + "/main.kvl");
    ExpectIn(Translate({"-quick"}, 1), "[QUICK BUILD] Main file not found, forcing full rebuild\n");
    fs::remove(folder + "/out/.main.kvl.deps");
    ExpectIn(Translate({"-quick", "-v"}, 1),
             "[QUICK BUILD] No previous dependency manifest found\n[QUICK BUILD] No previous build found");
}

TEST_F(Phases, ManifestsThatCannotBeWrittenAreWarnings) {
    fs::create_directories(folder + "/out/.main.kvl.deps/x");
    fs::create_directories(folder + "/out/.main.kvl.manifest/x");
    ExpectIn(Translate({"-quick"}), "Warning: Could not create build manifest\nDone! \\o/\n");
    EXPECT_TRUE(Has("out/.main.kvl.manifest/x"));
}

TEST_F(Phases, CleansThePreviousBuild) {
    EXPECT_EQ(Translate().find("Cleaning"), std::string::npos);
    EXPECT_EQ(Read("out/.main.kvl.manifest"), folder + "/out/lib/util.h\n" + folder + "/out/lib/util.cpp\n" +
                                                  folder + "/out/main.h\n" + folder + "/out/main.cpp\n" +
                                                  folder + "/main\n" + folder + "/main.exe\n");
    Write("main.kvl", "Function Main\nEndFunction\n");
    Write("main", "the executable");
    Write("out/notes.txt", "mine");
    ExpectIn(Translate(),
             "Cleaning previous build artifacts...\nCleaned 5 file(s) from previous build\nWorking on");
    EXPECT_FALSE(Has("out/lib/util.cpp") || Has("out/lib/util.h") || Has("main"));
    EXPECT_TRUE(Has("out/notes.txt") && Has("main.kvl") && Has("lib/util.kvl") && Has("out/main.cpp"));
}

TEST_F(Phases, LeavesUnchangedOutputsAlone) {
    Translate();
    const std::string files[] = {"out/main.cpp", "out/main.h", "out/lib/util.cpp", "out/lib/util.h"};
    for (const std::string& file : files) MakeNewer(file);
    const auto time = [this](const std::string& file) { return fs::last_write_time(folder + "/" + file); };
    const auto before = time("out/main.cpp");
    const auto headerBefore = time("out/lib/util.h");
    const std::string text = Read("out/lib/util.cpp");
    ExpectIn(Translate(), "Cleaned 4 file(s) from previous build\n");
    EXPECT_EQ(time("out/main.cpp"), before);

    // Longer and shorter than before, and of the same length.
    for (const char* value : {"2 * 1000", "2", "3"}) {
        Write("lib/util.kvl",
              std::string("Function Twice:Int(n:Int)\n    Return n * ") + value + "\nEndFunction\n");
        Translate();
        const std::string written = Read("out/lib/util.cpp");
        EXPECT_EQ(written, std::string(text).replace(text.find("n * 2") + 4, 1, value));
    }
    EXPECT_EQ(time("out/main.cpp"), before);
    EXPECT_EQ(time("out/lib/util.h"), headerBefore);
}

// As if the previous build had been deleted first, whatever of it would have come again.
TEST_F(Phases, ErrorsLeaveNothingOfThePreviousBuild) {
    Translate();
    Write("main.kvl", "Include \"lib/util.kvl\"\nFunction Main\n    Print missing\nEndFunction\n");
    Translate({}, 1);
    EXPECT_TRUE(Has("out/lib/util.cpp") && Has("out/lib/util.h"));
    for (const char* file : {"out/main.cpp", "out/main.h", "out/.main.kvl.manifest"})
        EXPECT_FALSE(Has(file)) << file;

    Write("main.kvl", "Include \"lib/util.kvl\"\nFunction Main\nEndFunction\n");
    Translate();
    Write("main.kvl", "Function Main(\nEndFunction\n");
    Translate({}, 1);
    for (const char* file : {"out/lib/util.cpp", "out/lib/util.h", "out/main.cpp", "out/main.h"})
        EXPECT_FALSE(Has(file)) << file;
}

TEST_F(Phases, KeepsWhatAManifestMayNotDelete) {
    Write("out/.main.kvl.manifest", folder + "/main.kvl\n" + folder + "/../phases.other/a.cpp\n");
    WriteFile(folder + "/../phases.other/a.cpp", "mine");
    const std::string said = Translate();
    ExpectIn(said, "  Refusing to delete source file listed in manifest: " + folder + "/main.kvl\n");
    ExpectIn(said, "  Not deleting " + folder +
                       "/../phases.other/a.cpp - it is outside this build's folders "
                       "(a manifest from another copy of the tree?)\n");
    EXPECT_TRUE(Has("../phases.other/a.cpp"));
}

TEST_F(Phases, WritesLinkerFlags) {
    EXPECT_EQ(Translate().find("Compile with"), std::string::npos);
    Write("lib/util.kvl", "Linker \"-lm\"\nLinker \"-L.\"\nLinker\n" + Read("lib/util.kvl"));
    Write("main.kvl", "Linker \"-pthread\"\nLinker \"-lm\"\n" + Read("main.kvl"));
    const std::string said = Translate();
    const std::string flags = "-pthread -lm -lm -L\"" + folder + "/lib\"";
    EXPECT_EQ(Read("main.linkflags"), flags + "\n");
    ExpectIn(said, "  - Adding linker flag: -L\"" + folder + "/lib\"\n");
    const std::string stem = folder + "/main";
    ExpectIn(said, "\n\nLinker flags written to " + stem + ".linkflags\nCompile with: g++ -std=c++11 -o " +
                       stem + " " + stem + ".cpp " + flags + "\n\nDone! \\o/\n\n");
    ExpectIn(Read("out/.main.kvl.manifest"), stem + ".linkflags\n" + stem + "\n" + stem + ".exe\n");

    fs::remove(stem + ".linkflags");
    fs::create_directories(stem + ".linkflags");
    ExpectIn(Translate(), "\n\nWarning: Could not create " + stem + ".linkflags\nDone! \\o/\n");
}

// A copy of kvt in a root of its own.
class InstallationRoot : public Phases {
protected:
    void Install(const std::string& bin) {
        fs::create_directories(folder + "/root/" + bin);
        kvt = folder + "/root/" + bin + "/kvt";
        fs::copy_file(GetPlaces().stage + "/bin/kvt", kvt);
    }
    ProcessResult Run(const std::string& source) {
        ProcessResult result = RunProcess({kvt, "-s", source, "-o", "out"}, folder, "", 20);
        LogMessages(result);
        return result;
    }
    std::string kvt;
};

TEST_F(InstallationRoot, RelativePathsStartThere) {
    Install("bin");
    fs::copy(GetPlaces().stage + "/config", folder + "/root/config");
    fs::create_directories(folder + "/root/out");
    Write("root/game/hello.kvl", "Function main\nEndFunction\n");
    const ProcessResult result = Run("game/hello.kvl");
    EXPECT_EQ(result.exitStatus, 0) << result.out;
    EXPECT_TRUE(Has("root/out/hello.cpp") && Has("root/out/.hello.kvl.manifest"));
    ExpectIn(Run("hello.kvl").out, "Error: Cannot read 'hello.kvl'.\n");
}

TEST_F(InstallationRoot, NeedsItsWordLists) {
    Install("bin");
    const auto expectReport = [this](const std::string& message) {
        ExpectIn(Run("game/hello.kvl").out, "Error: " + message + "\nFile: \nLine: 0\n\n");
    };
    expectReport("Cannot open config/keywords.txt!");
    std::string words;
    for (int i = 0; i < 193; ++i) words += "w:one of too many\n";
    Write("root/config/keywords.txt", "print\n");
    expectReport("Cannot open config/cpp.txt!");
    Write("root/config/keywords.txt", words);
    expectReport("Too many keywords in config/keywords.txt - raise keywordAmount in declarations.h");
}

TEST_F(InstallationRoot, NamesTheFolderThatItCannotEnter) {
    Install("b\xC3\xAFn");
    ExpectIn(Run("game/hello.kvl").out,
             "Failed to change to: " + folder +
                 "/root/bn\nError: Cannot change working directory to exe directory\n");
}

TEST_F(Phases, OutputsThatCannotBeWrittenAreNamed) {
    Write("out/lib", "a file where a folder has to be");
    ExpectIn(Translate({}, 1), "Error: Cannot create include directory in output path\n");
}

}  // namespace
