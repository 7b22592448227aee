#include <gtest/gtest.h>

#include <chrono>

#include "base/run.h"
#include "base/settings.h"
#include "build/build_manifest.h"
#include "build/dependency_manifest.h"
#include "outputs/marks.h"
#include "outputs/output_files.h"
#include "scratch_folder.h"
#include "symbols/symbols.h"

namespace fs = std::filesystem;

#define EXPECT_HAS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)
#define EXPECT_LACKS(text, part) EXPECT_EQ((text).find(part), std::string::npos) << (text)

namespace {

class ManifestTest : public testing::Test {
protected:
    void SetUp() override {
        settings.mainSource = "game/main.kvl";
        settings.sourceFolder = "game";
        settings.outputPath = "out";
        ScratchFolder::Write("game/main.kvl");
        fs::create_directory("out");
    }
    void TearDown() override {
        SettleOutputs();  // the file system may give a deleted file's number to one of the next test
        RenewRun();
    }

    // What a routine prints on standard output.
    template <typename Routine>
    static std::string Said(Routine routine) {
        testing::internal::CaptureStdout();
        routine();
        return testing::internal::GetCapturedStdout();
    }

    ScratchFolder scratch;
};

class Cleaning : public ManifestTest {
protected:
    static std::string Clean(const std::string& manifest) {
        ScratchFolder::Write("out/.main.kvl.manifest", manifest);
        const std::string said = Said([] { CleanPreviousBuild("out"); });
        SettleOutputs();
        EXPECT_FALSE(ScratchFolder::Has("out/.main.kvl.manifest"));
        EXPECT_EQ(said.rfind("Cleaning previous build artifacts...\n", 0), 0U);
        return said.substr(said.find('\n') + 1);
    }
    // The line must neither delete the file nor go without the note (when there is one).
    static void ExpectKept(const std::string& line, const std::string& file, const std::string& note = "") {
        EXPECT_EQ(Clean(line + "\n"), note.empty() ? "" : note) << line;
        EXPECT_TRUE(ScratchFolder::Has(file)) << line;
    }
    static std::string Outside(const std::string& line) {
        return "  Not deleting " + line +
               " - it is outside this build's folders (a manifest from another copy of the tree?)\n";
    }
};

TEST_F(Cleaning, DeletesWhatTheBuildProduced) {
    settings.mainSource = "./game/main.kvl";  // the manifest spells it otherwise
    const char* files[] = {"out/main.cpp",        "out/main.h", "out/lib/util.cpp",
                           "game/main.linkflags", "game/main",  "game/main.exe"};
    std::string manifest;
    for (const char* file : files) {
        ScratchFolder::Write(file);
        manifest += std::string(file) + "\n";
    }
    manifest += "\nout/gone.cpp\nelsewhere/gone.cpp\n";
    EXPECT_EQ(Clean(manifest), "Cleaned 6 file(s) from previous build\n");
    for (const char* file : files) EXPECT_FALSE(ScratchFolder::Has(file)) << file;
    EXPECT_TRUE(ScratchFolder::Has("game/main.kvl"));
    EXPECT_EQ(Clean(""), "");
}

TEST_F(Cleaning, NeverDeletesSources) {
    const auto refused = [](const std::string& line) {
        return "  Refusing to delete source file listed in manifest: " + line + "\n";
    };
    ScratchFolder::Write("game/Game.KVL");
    ExpectKept("game/main.kvl", "game/main.kvl", refused("game/main.kvl"));
    ExpectKept("game/Game.KVL", "game/Game.KVL", refused("game/Game.KVL"));
    ExpectKept("game/missing.kvl", "game/main.kvl", refused("game/missing.kvl"));
    ScratchFolder::Write("game/main.decls");
    ExpectKept("game/main.decls", "game/main.decls");
    for (const char* file : {"out/notes.txt", "game/oldtool.exe", "out/main.exe"}) {
        ScratchFolder::Write(file);
        ExpectKept(file, file);
    }

    // A source without extension bears the name of its executable.
    ScratchFolder::Write("game/main");
    settings.mainSource = "game/main";
    ScratchFolder::Write("out/.main.manifest", "game/main\n");
    EXPECT_EQ(Said([] { CleanPreviousBuild("out"); }),
              "Cleaning previous build artifacts...\n" + refused("game/main"));
    EXPECT_TRUE(ScratchFolder::Has("game/main"));
}

TEST_F(Cleaning, NeverLeavesTheFoldersOfTheBuild) {
    ScratchFolder::Write("other/x.cpp");
    ScratchFolder::Write("other/x.kvl");
    ScratchFolder::Write("out2/x.cpp");
    fs::create_directory_symlink("../other", "out/link");
    fs::create_directories("other/deep");
    fs::create_directory_symlink("../other/deep", "out/deeplink");
    fs::create_symlink("../other/x.cpp", "out/x.cpp");
    const std::string absolute = (scratch.path / "other/x.cpp").string();
    ExpectKept("other/x.cpp", "other/x.cpp", Outside("other/x.cpp"));
    ExpectKept(absolute, "other/x.cpp", Outside(absolute));
    ExpectKept("out/../other/x.cpp", "other/x.cpp", Outside("out/../other/x.cpp"));
    ExpectKept("out/link/x.cpp", "other/x.cpp", Outside("out/link/x.cpp"));
    ExpectKept("out/deeplink/../x.cpp", "other/x.cpp", Outside("out/deeplink/../x.cpp"));
    ExpectKept("out2/x.cpp", "out2/x.cpp", Outside("out2/x.cpp"));
    ExpectKept("OUT/../OUT2/x.cpp", "out2/x.cpp");
    ExpectKept("out/x.cpp", "out/x.cpp");
    EXPECT_TRUE(ScratchFolder::Has("other/x.cpp"));
}

TEST_F(Cleaning, NeverDeletesFolders) {
    fs::create_directories("out/empty.cpp");
    ExpectKept("out/empty.cpp", "out/empty.cpp");
    ExpectKept("out", "out");
    ExpectKept("game/", "game");
    ExpectKept(".", "out", Outside("."));
    ExpectKept("..", "out", Outside(".."));
}

TEST_F(Cleaning, SurvivesAnyBytes) {
    ScratchFolder::Write("out/main.cpp");
    std::string bytes;
    for (int i = 1; i < 256; ++i) bytes += static_cast<char>(i);
    Clean(bytes + "\n" + std::string("out/main.cpp\0.txt\n", 18) + std::string(100000, '/') + "\n" +
          std::string(70000, 'a') + ".cpp\n");
    EXPECT_TRUE(ScratchFolder::Has("out/main.cpp"));
}

TEST_F(Cleaning, SourceFolderMayBeTheWorkingDirectory) {
    settings.mainSource = "main.kvl";
    settings.sourceFolder = ".";
    ScratchFolder::Write("main.exe");
    ExpectKept("elsewhere", "out");
    ScratchFolder::Write("out/.main.kvl.manifest", "main.exe\n");
    EXPECT_HAS(Said([] { CleanPreviousBuild("out"); }), "Cleaned 1 file(s)");
}

// Include "../shared/util.kvl" with the output folder beside the program's: the .cpp lands beside its source.
TEST_F(Cleaning, ReachesGeneratedFilesBesideTheirSources) {
    for (const char* file : {"shared/hand.cpp", "shared/other.kvl"}) ScratchFolder::Write(file);
    for (const char* file : {"shared/util.cpp", "shared/util.h"}) EXPECT_TRUE(WriteMarked(file, "// ours\n"));
    ScratchFolder::Write("game/main.kvl", "Include \"lib.kvl\"\nInclude \"main.kvl\"\n");
    ScratchFolder::Write("game/lib.kvl", "include \"../shared/util.kvl\" ; both need it\n");
    ScratchFolder::Write("shared/util.kvl");
    ScratchFolder::Write("shared/other.cpp");
    const std::string hand = "out/../shared/hand.cpp";
    EXPECT_EQ(Clean("out/../shared/util.cpp\nout/../shared/util.h\n" + hand + "\n"),
              Outside(hand) + "Cleaned 2 file(s) from previous build\n");
    EXPECT_TRUE(ScratchFolder::Has("shared/hand.cpp"));
    ScratchFolder::Write("shared/util.h", "// the user's by now\n");
    ExpectKept("out/../shared/util.h", "shared/util.h");
    ExpectKept("out/../shared/other.cpp", "shared/other.cpp", Outside("out/../shared/other.cpp"));
    EXPECT_TRUE(ScratchFolder::Has("shared/util.kvl"));
}

class QuickBuild : public ManifestTest {
protected:
    void SetUp() override {
        ManifestTest::SetUp();
        ScratchFolder::Write("game/lib.kvl");
        ScratchFolder::Write("out/main.cpp");
        ScratchFolder::Write("out/main.h", "#ifndef MAIN_H\n");
        ResetDependencies();
        AddOnce(symbols.includedSources, "game/lib.kvl");
        UpdateDependencyManifest();
    }
    static constexpr const char* manifest = "out/.main.kvl.deps";

    static void Touch(const std::string& file, int seconds) {
        fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(seconds));
    }
    static void ExpectTranslation(const std::string& message) {
        dependencies = {};
        bool skip = true;
        EXPECT_EQ(Said([&skip] { skip = CanSkipTranslation(); }),
                  message.empty() ? "" : "[QUICK BUILD] " + message + "\n");
        EXPECT_FALSE(skip);
    }
    static void ExpectSkip() {
        dependencies = {};
        bool skip = false;
        EXPECT_EQ(Said([&skip] { skip = CanSkipTranslation(); }),
                  "[QUICK BUILD] No source files changed - skipping transpilation\n"
                  "[QUICK BUILD] Using existing: out/main.cpp\n");
        EXPECT_TRUE(skip);
    }
};

TEST_F(QuickBuild, FilesWithoutRecordedTimesForceTranslation) {
    ScratchFolder::Write(manifest, "MAIN:x\nINCLUDES:0\nKVL_TIMES:0\nCPP_TIMES:0\nOBJ_TIMES:0\n");
    ExpectTranslation("");
    ScratchFolder::Write(
        manifest,
        "MAIN:x\nINCLUDES:1\ngame/lib.kvl\nKVL_TIMES:1\ngame/main.kvl|99999999999\nCPP_TIMES:0\n"
        "OBJ_TIMES:0\n");
    ExpectTranslation("");
}

TEST_F(QuickBuild, DamagedRecordsAreNone) {
    const std::string good = ScratchFolder::Read(manifest);
    for (std::size_t length = 0; length < good.find("OBJ_TIMES:") + 10; ++length) {
        ScratchFolder::Write(manifest, good.substr(0, length));
        DependencyRecord record;
        EXPECT_FALSE(LoadDependencyManifest(record, "main.kvl", "out")) << good.substr(0, length);
    }
    for (const char* text : {
             "MAIN:a\nINCLUDES:2\nb\n",
             "MAIN:a\nINCLUDES:99999999999999999999\nb\n",
             "MAIN:a\nINCLUDES:0\nKVL_TIMES:1\nno bar\nCPP_TIMES:0\nOBJ_TIMES:0\n",
             "MAIN:a\nINCLUDES:0\nKVL_TIMES:1\na|soon\nCPP_TIMES:0\nOBJ_TIMES:0\n",
             "MAIN:a\nINCLUDES:0\nKVL_TIMES:1\na|\nCPP_TIMES:0\nOBJ_TIMES:0\n",
             "MAIN:a\nINCLUDES:0\nKVL_TIMES:1\na|12x\nCPP_TIMES:0\nOBJ_TIMES:0\n",
             "MAIN:a\nINCLUDES:0\nKVL_TIMES:1\na|99999999999999999999\nCPP_TIMES:0\nOBJ_TIMES:0\n",
             "MAIN:a\nINCLUDES:0\nCPP_TIMES:0\nKVL_TIMES:0\nOBJ_TIMES:0\n",
         }) {
        ScratchFolder::Write(manifest, text);
        ExpectTranslation("No previous build found, performing full transpilation");
    }
}

TEST_F(QuickBuild, KeepsObjectTimesOverASkip) {
    std::string text = ScratchFolder::Read(manifest);
    text.replace(text.find("OBJ_TIMES:0\n"), 12, "OBJ_TIMES:1\nmain.o|-5\n");
    ScratchFolder::Write(manifest, text);
    ExpectSkip();
    UpdateDependencyManifest();
    EXPECT_EQ(ScratchFolder::Read(manifest), text);
}

TEST_F(QuickBuild, CountsThatAreNoNumbersAreZero) {
    ScratchFolder::Write(manifest, "MAIN:a\nINCLUDES:none\nKVL_TIMES:-2\nCPP_TIMES:\nOBJ_TIMES:x\n");
    DependencyRecord record;
    EXPECT_TRUE(LoadDependencyManifest(record, "main.kvl", "out"));
    EXPECT_EQ(record.main, "a");
    settings.outputPath = "nowhere";
    testing::internal::CaptureStderr();
    SaveDependencyManifest(record);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "[QUICK BUILD] Warning: Could not save dependency manifest\n");
}

}  // namespace
