#include <gtest/gtest.h>

#include "driver/command_line.h"
#include "driver/paths.h"
#include "driver/report.h"
#include "driver/settings.h"
#include "driver/word_lists.h"
#include "expect_fatal.h"
#include "scratch_folder.h"
#include "symbols/identifiers.h"

namespace {

TEST(Paths, AreCutByTheirText) {
    const struct {
        std::string path, stem, name, folder;
    } rows[] = {
        {"game.kvl", "game", "game.kvl", ""},
        {"a/b.c/game.v2.kvl", "a/b.c/game.v2", "game.v2.kvl", "a/b.c"},
        {"dir.old/game", "dir", "game", "dir.old"},
        {"c:\\src\\game.kvl", "c:\\src\\game", "game.kvl", "c:\\src"},
        {"a\\b/c", "a\\b/c", "c", "a\\b"},
        {"/game", "/game", "game", ""},
        {"folder/", "folder/", "", "folder"},
        {"", "", "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(StripExtension(row.path), row.stem);
        EXPECT_EQ(StripFolder(row.path), row.name);
        EXPECT_EQ(FolderOf(row.path), row.folder);
    }
    EXPECT_EQ(SourceFolderOf("game.kvl"), ".");
    EXPECT_EQ(SourceFolderOf("a/b\\game.kvl"), "a/b");
    EXPECT_EQ(SourceFolderOf("/game.kvl"), "");
}

class CommandLine : public testing::Test {
protected:
    void TearDown() override { settings = {}; }

    static std::string Parse(const std::vector<std::string>& arguments) {
        settings = {};
        testing::internal::CaptureStdout();
        goesOn = ParseCommandLine(arguments);
        return testing::internal::GetCapturedStdout();
    }
    static bool goesOn;
};
bool CommandLine::goesOn = false;

TEST_F(CommandLine, NotesEveryFlag) {
    EXPECT_EQ(
        Parse({"-t", "-c", "-d", "-safe", "-x", "-S", "-quick", "-v", "-s", "a/b.kvl", "-o", "out", "-t"}),
        "Flag Set: Do Trace\n"
        "Flag Set: Output comments\n"
        "Flag Set: Debug mode (debugger + runtime checks)\n"
        "Flag Set: Safe mode (runtime error checking)\n"
        "Flag Set: Quick build mode (incremental compilation)\n"
        "Flag Set: Verbose mode\n"
        "Main source: a/b.kvl\n"
        "Output path: out\n"
        "Flag Set: Do Trace\n"
        "Debug mode: Runtime safety checks automatically enabled\n\n");
    EXPECT_TRUE(goesOn);
    EXPECT_EQ(settings.sourceFolder, "a");
    EXPECT_TRUE(settings.traceMode && settings.outputComments && settings.verbose && settings.quickBuild);
}

TEST_F(CommandLine, DebugModeIsSafe) {
    for (const char* flag : {"-d", "--debug"}) {
        EXPECT_EQ(Parse({"-s", "a.kvl", flag, "-"}),
                  "Main source: a.kvl\nFlag Set: Debug mode (debugger + runtime checks)\n\n");
        EXPECT_TRUE(settings.safeMode);
    }
    Parse({"-s", "a.kvl", "-o", "out"});
    EXPECT_FALSE(settings.safeMode);
}

TEST_F(CommandLine, LooksAtValuesOnceMore) {
    Parse({"-s", "-safe", "-o", "-s"});
    EXPECT_TRUE(settings.safeMode);
    EXPECT_EQ(settings.outputPath, "-s");
    EXPECT_EQ(settings.mainSource, "") << "the -s that -o took comes last";
    EXPECT_EQ(settings.sourceFolder, ".");
}

TEST_F(CommandLine, ShowsTheUsageForTooFewArguments) {
    const std::string usage = Parse({"-s", "a.kvl", "-o"});
    EXPECT_FALSE(goesOn);
    EXPECT_EQ(usage.rfind("Usage: kvt -s /path/to/mainSource.kvl -o /path/to/outputdir "
                          "[-t] [-c] [-v] [-d] [-safe] [-quick]\n\n-s     : Main",
                          0),
              0U);
    EXPECT_EQ(usage.substr(usage.rfind("-quick")),
              "-quick : Quick build - incremental compilation (skip unchanged files)\n");
}

TEST(ReportDeathTest, ShowsFileAndLine) {
    settings.currentFile = "lib/util.kvl";
    settings.currentLine = 12;
    EXPECT_EXIT((dup2(STDERR_FILENO, STDOUT_FILENO), ReportFatal("Odd")), testing::ExitedWithCode(1),
                "^Error: Odd\nFile: lib/util.kvl\nLine: 12\n\n$");
    settings = {};
}

class WordListTest : public testing::Test {
protected:
    static void Load(const std::string& keywords, const std::string& cpp) {
        ScratchFolder::Write("config/keywords.txt", keywords);
        ScratchFolder::Write("config/cpp.txt", cpp);
        LoadWordLists();
    }
    static std::string Lines(int count) {
        std::string text;
        for (int i = 1; i <= count; ++i) text += "word" + std::to_string(i) + "\n";
        return text;
    }
    void TearDown() override { wordLists = {}; }

    ScratchFolder scratch;
};

TEST_F(WordListTest, TakesWhatStandsBeforeTheColon) {
    Load("While\n\nprint:writes: a line\n:nothing\nWend\r\nnext:closes\r\n", "While\r\n\r\n\nint:x\n");
    const std::vector<std::string> keywords = {"while", "print", "", "wend\r", "next"};
    ASSERT_EQ(wordLists.keywordList.size(), 192U);
    EXPECT_EQ(std::vector<std::string>(wordLists.keywordList.begin(), wordLists.keywordList.begin() + 5),
              keywords);
    EXPECT_EQ(wordLists.keywordList[5], "");
    EXPECT_EQ(wordLists.cppWordList, (std::vector<std::string>{"While", "int:x"}));
    EXPECT_TRUE(IsReservedKeyword("WHILE"));
    EXPECT_FALSE(IsReservedKeyword("wend"));
    EXPECT_TRUE(IsCppWord("While"));
    EXPECT_FALSE(IsCppWord("while"));
}

TEST_F(WordListTest, TheLastSlotReservesNothing) {
    Load(Lines(192), "");
    EXPECT_EQ(wordLists.keywordList.back(), "word192");
    EXPECT_TRUE(IsReservedKeyword("word191"));
    EXPECT_FALSE(IsReservedKeyword("word192"));
}

TEST_F(WordListTest, MissingAndOverlongListsEndTheRun) {
    EXPECT_FATAL(LoadWordLists(), "Cannot open config/keywords.txt!");
    EXPECT_FATAL(Load(Lines(192) + "word1\n", ""),
                 "Too many keywords in config/keywords.txt - raise keywordAmount in declarations.h");
    ScratchFolder::Write("config/keywords.txt", "a\n");
    std::filesystem::remove("config/cpp.txt");
    EXPECT_FATAL(LoadWordLists(), "Cannot open config/cpp.txt!");
}

TEST(InstalledWordLists, LeaveOrdinaryNamesAlone) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(SOURCE_ROOT);
    LoadWordLists();
    std::filesystem::current_path(before);
    EXPECT_EQ(wordLists.keywordList[191], "");
    for (const char* name :
         {"score", "name", "x", "list", "count", "result", "i", "value", "index", "main", "Main"}) {
        EXPECT_FALSE(IsReservedKeyword(name) || IsCppWord(name)) << name;
    }
    for (const char* name : {"Print", "EachIn", "SeqSort", "Sin", "BitXor", "its"}) {
        EXPECT_TRUE(IsReservedKeyword(name)) << name;
    }
    for (const char* name : {"co_await", "xor_eq", "NULL", "std", "vector", "register"}) {
        EXPECT_TRUE(IsCppWord(name)) << name;
    }
    wordLists = {};
}

}  // namespace
