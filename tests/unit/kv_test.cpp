// The parts of kv that need no processes: its command line, what the compilers say, flags, stamps.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "base/command_quoting.h"
#include "kv/command_line.h"
#include "kv/commands/commands.h"
#include "kv/compiler_report.h"
#include "kv/diagnostics.h"
#include "kv/manual_pages.h"
#include "kv/progress.h"
#include "kv/stamp.h"
#include "kv/toolchain.h"
#include "kv/translation.h"
#include "kv/units.h"

namespace {

using Words = std::vector<std::string>;

// A folder of this test's own, gone at its end.
class Scratch {
public:
    Scratch()
        : folder_(testing::TempDir() + "kv_test_" +
                  std::to_string(std::chrono::steady_clock::now().time_since_epoch().count())) {
        std::filesystem::create_directories(folder_);
    }
    ~Scratch() { std::filesystem::remove_all(folder_); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    std::string File(const std::string& name, const std::string& text) const {
        const std::string path = folder_ + "/" + name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    const std::string& Folder() const { return folder_; }

private:
    std::string folder_;
};

TEST(KvCommandLine, Understood) {
    Options options;
    std::string problem;
    ASSERT_TRUE(ParseCommandLine(
        {"run", "--safe", "game.kvl", "-O2", "--keep-cpp", "out", "--", "-o", "--", "x"}, options, problem));
    EXPECT_EQ(options.command, Command::run);
    EXPECT_EQ(options.source, "game.kvl");
    EXPECT_TRUE(options.safe);
    EXPECT_FALSE(options.debug);
    EXPECT_EQ(options.optimisation, "-O2");
    EXPECT_EQ(options.keepCppFolder, "out");
    EXPECT_EQ(options.arguments, (Words{"-o", "--", "x"}));
    EXPECT_TRUE(IsFast(options));

    options = Options();
    ASSERT_TRUE(
        ParseCommandLine({"build", "-o", "-strange", "game.kvl", "--debug", "--verbose"}, options, problem));
    EXPECT_EQ(options.outputFile, "-strange");
    EXPECT_TRUE(options.debug && options.verbose && !IsFast(options));

    options = Options();
    ASSERT_TRUE(ParseCommandLine({"run", "--plain", "game.kvl"}, options, problem));
    EXPECT_TRUE(options.plain && !IsFast(options));
    options = Options();
    ASSERT_TRUE(ParseCommandLine({"run", "game.kvl", "--help"}, options, problem));
    EXPECT_EQ(options.command, Command::help);
    EXPECT_EQ(options.names, Words{"run"});
    options = Options();
    ASSERT_TRUE(ParseCommandLine({"check", "-O0", "/a", "[b]", "-O1", "-"}, options, problem)) << problem;
    EXPECT_EQ(options.names, (Words{"/a", "[b]", "-"}));
    EXPECT_EQ(options.optimisation, "-O1");
    options = Options();
    EXPECT_TRUE(ParseCommandLine({}, options, problem));
    EXPECT_EQ(options.command, Command::help);
}

TEST(KvCommandLine, Refused) {
    const struct {
        Words arguments;
        const char* problem;
    } rows[] = {
        {{"game.kvl"}, "what shall be done with game.kvl? Try: kv run game.kvl"},
        {{"play"}, "unknown command \"play\""},
        {{"run"}, "which program? Name its main file: kv run game.kvl"},
        {{"run", "--"}, "which program? Name its main file: kv run game.kvl"},
        {{"run", "a.kvl", "b.kvl"},
         "one program at a time: a.kvl or b.kvl? (Arguments for the program stand behind \"--\".)"},
        {{"run", "a.kvl", "--fast"}, "unknown option \"--fast\""},
        {{"run", "a.kvl", "-o", "x"}, "-o belongs to kv build and kv package"},
        {{"build", "a.kvl", "-o"}, "-o needs a FILE behind it"},
        {{"run", "a.kvl", "--keep-cpp", "--"}, "--keep-cpp needs a DIR behind it"},
        {{"check", "a.kvl", "--keep-cpp", "x"},
         "--keep-cpp belongs to kv run, kv build, kv watch and kv package"},
        {{"build", "-O5", "a.kvl"}, "-O is one of 0, 1, 2, 3, not 5"},
        {{"chekc"}, "unknown command \"chekc\"; did you mean check?"},
        {{"help", "compile"}, "unknown command \"compile\"; did you mean build?"},
        {{"run", "--sfae"}, "unknown option \"--sfae\"; did you mean --safe?"},
        {{"version", "x"}, "kv version stands alone"},
        {{"check", "a.kvl", "--", "x"}, "arguments after \"--\" belong to kv run"},
    };
    for (const auto& row : rows) {
        Options options;
        std::string problem;
        EXPECT_FALSE(ParseCommandLine(row.arguments, options, problem)) << row.problem;
        EXPECT_EQ(problem, row.problem);
    }
}

TEST(Translations, ArriveAsTheyWere) {
    korvel::Result result;
    result.sources = {"/my games/a.kvl", "b\nc"};
    result.linkerFlags = {"-L\"/x y\"", ""};
    result.diagnostics = {
        {{"a.kvl", 3, 5, 7}, korvel::Severity::Error, "first\n  second", "", "hint", "", {}, {}},
        {{}, korvel::Severity::Warning, "odd", "", "", "odd-one", {}, {}}};
    result.diagnostics[0].related = {{{"b.kvl", 1, 2, 3}, "declared here"}};
    result.diagnostics[0].fixes = {{{"a.kvl", 3, 5, 4}, "Then "}, {{"a.kvl", 3, 6, 7}, ""}};
    const std::string packed = PackTranslation(result);
    korvel::Result same;
    ASSERT_TRUE(UnpackTranslation(packed, same));
    EXPECT_EQ(PackTranslation(same), packed);
    EXPECT_EQ(same.diagnostics[0].lastColumn, 7);
    EXPECT_EQ(same.diagnostics[0].fixes[1].firstColumn, 6);
    for (const std::size_t size : {std::size_t{0}, std::size_t{30}, packed.size() / 2, packed.size() - 1})
        EXPECT_FALSE(UnpackTranslation(packed.substr(0, size), same)) << size;
}

TEST(Flags, Split) {
    EXPECT_EQ(SplitFlags(" -lm\t-L\"/my dir\" \"-l x\"  'a \"b'\n"),
              (Words{"-lm", "-L/my dir", "-l x", "a \"b"}));
    EXPECT_EQ(SplitFlags("C:\\lib\\x.a \"\" \"open"), (Words{"C:\\lib\\x.a", "", "open"}));
    EXPECT_TRUE(SplitFlags(" \n").empty());
}

TEST(Flags, Quoted) {
    EXPECT_EQ(WindowsCommandLine({"a", "b c", "", "q\"", "d\\", "e f\\", "x\\\"y"}),
              R"(a "b c" "" "q\"" d\ "e f\\" "x\\\"y")");
    EXPECT_EQ(ReadableCommandLine({"g++", "my dir", "it's", "$ORIGIN", ""}),
              R"(g++ 'my dir' 'it'\''s' '$ORIGIN' '')");
}

TEST(Diagnostics, Formatted) {
    const Scratch scratch;
    Diagnostic diagnostic;
    diagnostic.file = scratch.File("x.kvl", "one\n\ttwo\x1b[0m\r\n");
    diagnostic.line = 2;
    diagnostic.message = "bad\n  hint";
    EXPECT_EQ(Format(diagnostic, false), diagnostic.file + ":2: error: bad\n    hint\n    2 |  two [0m\n");
    EXPECT_EQ(Format(diagnostic, true), "\033[1m" + diagnostic.file +
                                            ":2: \033[0m\033[1;31merror: \033[0m\033[1mbad\n    hint\033[0m\n"
                                            "    2 |  two [0m\n");
    diagnostic.line = 9;
    EXPECT_EQ(Format(diagnostic, false), diagnostic.file + ":9: error: bad\n    hint\n");
    EXPECT_EQ(Format(Diagnostic(), false), "kv: error: \n");
    EXPECT_EQ(ShortPath("/a/b/c.kvl", "/a"), "b/c.kvl");
    EXPECT_EQ(ShortPath("/a/b/../c.kvl", "/a"), "c.kvl");
    EXPECT_EQ(ShortPath("/x/c.kvl", "/a"), "/x/c.kvl");
}

TEST(CompilerReports, OnlyWhatTheUserCanMend) {
    const Scratch scratch;
    const std::string source = scratch.File(
        "g.kvl", "Extern\nFunction cube(a:Int):Int\nEndExtern\nInlineCpp\n  int y = zz;\nEndInlineCpp\n");
    std::filesystem::create_directories(scratch.Folder() + "/.kvbuild");
    const std::string cpp = scratch.File(".kvbuild/g.cpp", "int KVL_x = ;\n\tint y = zz;\n");
    const std::string header = scratch.File("own.h", "");
    const std::string output =
        cpp + ":1:13: error: expected primary-expression\n" + cpp + ":2:9: error: 'zz' was not declared\n" +
        cpp + ":2:9: error: 'zz' was not declared\n" + header +
        ":4: fatal error: no.h: No such file\n/usr/include/x.h:1:1: error: strange\n" +
        "/usr/bin/ld: cannot find -lfoo: No such file\nld: g.cpp:(.text+0x1): undefined reference " +
        "to `cube'\nld: undefined reference to `other'\nerror: : error: \n";
    const auto found =
        ExplainCompilerOutput(output, {source}, scratch.Folder() + "/.kvbuild", scratch.Folder());
    ASSERT_EQ(found.size(), 4u);
    EXPECT_EQ(Format(found[0], false),
              source + ":5: error: in C++ code: 'zz' was not declared\n    5 |   int y = zz;\n");
    EXPECT_EQ(found[1].file + std::to_string(found[1].line), header + "4");
    EXPECT_EQ(found[2].message, "the library foo was not found (Linker \"-lfoo\")");
    EXPECT_EQ(found[3].message,
              "no library defines the Extern function cube (a Linker line names libraries)");
    EXPECT_EQ(found[3].line, 2);
    for (const char* const lack :
         {"ld: /usr/lib/libSDL2.a(w.o): in function `f':\nld: (.text+0x4): undefined reference to `wl'\n",
          "/usr/lib/libSDL2.a(w.o):function f: error: undefined reference to 'wl'\n",
          "ld.lld: error: undefined symbol: wl\n>>> referenced by w.c\n>>>  w.o:(f) in archive "
          "/usr/libSDL2.a\n"})
        EXPECT_EQ(
            ExplainCompilerOutput(lack, {source}, "/a", "/b", true).at(0).message,
            "the library SDL2 cannot be put into a program: it needs wl, which has no static form here; "
            "leave out --static");
    const auto trouble = ExplainCompilerOutput(
        "/tmp/x.s: Fatal error: No space left on device\nx:1: fatal error: iostream: "
        "No such file or directory\n",
        {}, "/a", "/b");
    ASSERT_EQ(trouble.size(), 2u);
    EXPECT_EQ(trouble[0].message,
              "the C++ compiler could not do its work: /tmp/x.s: Fatal error: No space left on device");
    EXPECT_EQ(trouble[1].message,
              "the C++ compiler has no standard library. On Debian: sudo apt-get install g++");
}

TEST(Stamps, HoldUntilSomethingChanges) {
    const Scratch scratch;
    const std::string source = scratch.File("a.kvl", "1");
    const std::string generated = scratch.File("a.cpp", "int a;");
    const std::string program = scratch.File("a", "x");
    const std::string stamp = scratch.Folder() + "/stamp";
    std::string started = scratch.File("started", "");
    StampFiles files = {{source}, {generated}, {program}, {}};
    WriteStamp(stamp, started, "g++", files);
    EXPECT_FALSE(StampHolds(stamp, "g++")) << "a source as young as the build is not trusted";
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    started = scratch.File("started", "");
    WriteStamp(stamp, started, "g++", {{source, source + ".missing"}, {generated}, {program}, {}});
    EXPECT_FALSE(StampHolds(stamp, "g++")) << "a source that is missing";
    WriteStamp(stamp, started, "g++", files);
    EXPECT_TRUE(StampHolds(stamp, "g++"));
    EXPECT_FALSE(StampHolds(stamp, "clang++"));
    scratch.File("a.cpp", "int a;");
    EXPECT_TRUE(StampHolds(stamp, "g++")) << "a generated file that is written again counts by its content";
    scratch.File("a.cpp", "int b;");
    EXPECT_FALSE(StampHolds(stamp, "g++")) << "and is another one now";

    files.generated.clear();
    WriteStamp(stamp, started, "g++", files);
    EXPECT_TRUE(StampHolds(stamp, "g++"));
    std::filesystem::remove(program);
    EXPECT_FALSE(StampHolds(stamp, "g++")) << "the program is gone";
    files.products.clear();
    WriteStamp(stamp, started, "g++", files);
    EXPECT_TRUE(StampHolds(stamp, "g++"));
    const auto time = std::filesystem::last_write_time(source);
    std::filesystem::rename(scratch.File("other", "2"), source);
    std::filesystem::last_write_time(source, time);
    EXPECT_FALSE(StampHolds(stamp, "g++")) << "another file of the same size and time put in its place";
    scratch.File("stamp", "kv-stamp 2\ng++\n");
    EXPECT_FALSE(StampHolds(stamp, "g++")) << "cut off";
}

TEST(Stamps, Lists) {
    EXPECT_EQ(FilesInMakeRule("a.o: /x/a.cpp /my\\ dir/b.h \\\n  c$$d.h e\\#f.h\n"),
              (Words{"/x/a.cpp", "/my dir/b.h", "c$d.h", "e#f.h"}));
    EXPECT_EQ(FilesInMakeRule("a.o: a.cpp \\\r\n b.h\r\n\r\nb.h:\r\n"), (Words{"a.cpp", "b.h"}));
    EXPECT_EQ(FilesOfLinker("a: \\\n  /my libs/x.so \\\n  y.o\n\n/my libs/x.so:\n\ny.o:\n"),
              (Words{"/my libs/x.so", "y.o"}));
    for (const char* const cutOff : {"", "a.o: ", "a.o: a.cpp b", "a.o: a.cpp \\\n"}) {
        EXPECT_TRUE(FilesInMakeRule(cutOff).empty()) << cutOff;
    }
    for (const char* const cutOff : {"", "a: \\\n", "a: \\\n  x.o \\\n", "a: \\\n  x.o"}) {
        EXPECT_TRUE(FilesOfLinker(cutOff).empty()) << cutOff;
    }
}

TEST(Linking, ApartWhereTheFlagsAllowIt) {
    EXPECT_TRUE(CanLinkApart({"-lm", "-Lmy libs", "-Wl,-rpath,/x", "-DX=1", "-Iown", "-pthread"}));
    for (const char* const flag : {"extra.cpp", "libx.a", "-l", "-I", "-framework", "-static", "-O2"}) {
        EXPECT_FALSE(CanLinkApart({"-lm", flag})) << flag;
    }
    CompileJob job;
    job.linkerFlags = {"-lm", "-DX"};
    const Words compile = CompileCommand({"g++"}, job);
    const Words link = LinkCommand({"g++"}, job);
    const auto has = [](const Words& words, const char* word) {
        return std::find(words.begin(), words.end(), word) != words.end();
    };
    EXPECT_TRUE(has(compile, "-DX") && !has(compile, "-lm") && has(link, "-lm"));
}

// The units of a program by their texts: "a1 b1 c2".
std::vector<Unit> UnitsNamed(const std::string& texts) {
    std::vector<Unit> units;
    std::istringstream words(texts);
    for (std::string word; words >> word;) units.push_back({word.substr(0, 1), word, 100});
    return units;
}

std::string Named(const std::vector<UnitObject>& objects, const std::vector<Unit>& units) {
    std::string text;
    for (const UnitObject& object : objects) {
        text += IsBatch(object) ? "(" : LeansOnBatches(object) ? "~" : "";
        for (const Unit* unit : UnitsOf(object, units)) text += unit->hash;
        text += IsBatch(object) ? ")" : "";
        text += object.mark.empty() ? "* " : " ";
    }
    return text;
}

TEST(UnitPlans, CompileWhatHasChanged) {
    UnitRecord record;
    const struct {
        const char* units;
        std::size_t overhead;
        const char* linked;  // in brackets a batch, with a star what has to be compiled
    } rows[] = {
        {"g1 a1 b1 c1 d1", 50, "g1* (a1b1)* (c1d1)* "},  // the first time: a batch for each core
        {"g1 a1 b1 c1 d1", 50, "g1 (a1b1) (c1d1) "},
        {"g2 a1 b2 c1 d1", 50,
         "g2* ~b2* (a1) (c1d1) "},                    // what stands in no batch takes the place of what does
        {"g1 a1 b1 c1 d1", 50, "g1 (a1b1) (c1d1) "},  // taken back
        {"g1 a1 b2 c1 d3", 50, "g1 ~b2 ~d3* (a1) (c1) "},
        {"g1 a1 e1 c1", 50, "g1 ~e1* (a1) (c1) "},   // a unit comes, others go
        {"g1 a4 e4 c4 d1", 500, "g1 (a4e4c4d1)* "},  // that many one by one would take longer
        {"g1", 500, "g1 "},
    };
    for (const auto& row : rows) {
        const std::vector<Unit> units = UnitsNamed(row.units);
        const UnitPlan plan =
            PlanUnits(UnpackUnitRecord(PackUnitRecord(record)), units, row.overhead, 2, true);
        std::vector<UnitObject> linked;
        record = plan.record;
        record.key = "key";
        for (auto* objects : {&record.singles, &record.batches}) {
            for (UnitObject& object : *objects) {
                if (std::count(plan.linked.begin(), plan.linked.end(), object.name) > 0)
                    linked.push_back(object);
                object.mark = "made";
            }
        }
        EXPECT_EQ(Named(linked, units), row.linked) << row.units;
    }
    // What cannot be linked: new objects do without batches first, then there are none that lean on them.
    const std::vector<Unit> units = UnitsNamed("g1 a4 e4 c5");
    UnitRecord before = record;
    before.batches = {{"batch-x", "made", {"a4", "e4"}}};
    UnitPlan plan = PlanUnits(before, units, 50, 2, true);
    EXPECT_EQ(plan.linked, (Words{"unit-g1", "lean-c5", "batch-x"}));
    EXPECT_TRUE(GiveUpSparing(before, plan.record));
    plan = PlanUnits(plan.record, units, 50, 2, false);
    EXPECT_EQ(plan.linked, (Words{"unit-g1", "unit-c5", "batch-x"}));
    EXPECT_TRUE(GiveUpSparing(before, plan.record)) << "others lean";
    EXPECT_EQ(Named(plan.record.batches, units), "");
    EXPECT_FALSE(GiveUpSparing(before, plan.record));
    const std::string packed = PackUnitRecord(record);
    EXPECT_EQ(PackUnitRecord(UnpackUnitRecord(packed)), packed);
    for (std::size_t size = 0; size + 1 < packed.size(); ++size)
        EXPECT_TRUE(UnpackUnitRecord(packed.substr(0, size)).singles.empty()) << "cut off at " << size;
}

TEST(ProgressLines, FitTheTerminal) {
    EXPECT_EQ(ProgressLine("Compiling game.cpp", 1.25, 80), "Compiling game.cpp ... 1.2 s");
    EXPECT_EQ(ProgressLine("Compiling game.cpp", 61, 30), "Compiling game.cpp ... 61.0 s") << "exactly";
    EXPECT_EQ(ProgressLine("Compiling a_very_long_name.cpp", 1, 30), "Compilin...name.cpp ... 1.0 s");
    EXPECT_EQ(ProgressLine("Compiling game.cpp", 1, 10), "");
    EXPECT_EQ(ProgressLine("Compiling K\xC3\xB6nig.cpp", 1, 30), "Compiling K\xC3\xB6nig.cpp ... 1.0 s");
    EXPECT_EQ(ProgressLine("\xE6\xB8\xB8\xE6\xB8\xB8\xE6\xB8\xB8\xE6\xB8\xB8\xE6\xB8\xB8\xE6\xB8\xB8", 1, 21),
              "\xE6\xB8\xB8...\xE6\xB8\xB8\xE6\xB8\xB8 ... 1.0 s")
        << "characters of two columns";
    EXPECT_EQ(ProgressLine("a\033[2J\nb and more", 1, 80), "a?[2J?b and more ... 1.0 s");
}

TEST(Manual, HasAnEntryForEveryWord) {
    const std::vector<ManualEntry> entries = ReadManual(SOURCE_ROOT "/docs/manual");
    std::ifstream words(SOURCE_ROOT "/config/keywords.txt");
    int count = 0;
    for (std::string word; std::getline(words, word); ++count) {
        word.erase(std::min(word.find(':'), word.size()));
        EXPECT_NE(FindEntry(entries, word), nullptr) << word;
    }
    EXPECT_GT(count, 100);
    for (const CommandRow& row : CommandRows()) EXPECT_NE(FindEntry(entries, row.word), nullptr) << row.word;
    for (const OptionRow& row : OptionRows()) {
        const std::string last = std::string(row.names).substr(std::string(row.names).rfind(',') + 1);
        EXPECT_NE(FindEntry(entries, last), nullptr) << last;
    }
    EXPECT_NE(FindEntry(entries, "-o"), FindEntry(entries, "-O"));
    ASSERT_NE(FindEntry(entries, "StartsWith"), nullptr) << "of a module";
    EXPECT_NE(FindEntry(entries, "RandomInt"), nullptr) << "above its sections";
    EXPECT_EQ(FindEntry(entries, "StartsWith"), FindEntry(entries, "findlast"));
    EXPECT_EQ(SimilarNames(entries, "pritn"), Words{"Print"});
    EXPECT_EQ(PlainText("### `A`, B\n\nSee **the** [page](a.md) of `f[x](y)`.\n```output\n\na `b`\n```\n"),
              "A, B\n====\n\nSee the page of f[x](y).\nprints\n\n\n    a `b`\n");
}

}  // namespace
