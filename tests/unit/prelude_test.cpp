#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/run.h"
#include "prelude/fill.h"
#include "prelude/support.h"
#include "prelude/texts.h"

namespace fs = std::filesystem;

namespace {

TEST(Fill, ReplacesEveryHole) {
    EXPECT_EQ(Fill("@A@+@B@+@A@", {{"A", "x"}, {"B", "@A@"}}), "x+@A@+x");
    EXPECT_EQ(Fill("plain", {}), "plain");
    EXPECT_DEATH(Fill("a @B@", {{"A", "x"}}), "hole 'B'");
    EXPECT_DEATH(Fill("a @A", {{"B", "x"}}), "hole 'A'");
}

// A scratch folder that holds the texts as headers.
class GeneratedCode : public ::testing::Test {
protected:
    fs::path folder = fs::temp_directory_path() / ("kvt_prelude_" + std::to_string(getpid()));

    void SetUp() override { fs::create_directories(folder); }
    void TearDown() override { fs::remove_all(folder); }

    void Write(const std::string& name, const std::string& text) { std::ofstream(folder / name) << text; }

    std::string Compile(const std::string& options, const std::string& source) {
        const fs::path log = folder / "log.txt";
        const std::string command = "g++ -std=c++11 -Wall -Wextra -Werror -I'" + folder.string() +
                                    "' -I'" SOURCE_ROOT "/include' " + options + " '" + source + "' > '" +
                                    log.string() + "' 2>&1";
        if (std::system(command.c_str()) == 0) return "";
        std::ifstream in(log);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    // What the built program writes on both streams, and its exit status.
    std::pair<std::string, int> Run(const std::string& argument) {
        std::string output;
        std::FILE* pipe = popen(("'" + (folder / "check").string() + "' " + argument + " 2>&1").c_str(), "r");
        for (int c; (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
        return {output, WEXITSTATUS(pclose(pipe))};
    }
};

std::string WithIncludes(std::string_view text) {
    std::string includes(texts::includes);
    if (!fs::exists(SOURCE_ROOT "/include/conio.h"))
        includes.replace(includes.find("#include <conio.h>\n"), 19, "");
    return includes + "using namespace std;\n" + std::string(text);
}

TEST_F(GeneratedCode, EverySupportTextCompilesOnItsOwn) {
    std::string sources;
    for (int i = 0; i < static_cast<int>(Support::Count); ++i) {
        RenewRun();
        RequireSupport(static_cast<Support>(i));
        const std::string name = "support" + std::to_string(i) + ".cpp";
        Write(name, WithIncludes(FillNames(texts::safeDivision) +
                                 SequenceText(texts::sequence, "std::vector") + SupportText()));
        EXPECT_EQ(Compile("-fsyntax-only", (folder / name).string()), "") << "support row " << i;
    }
    RenewRun();
}

// Each with no more in front of it than what it builds on.
TEST_F(GeneratedCode, EveryFastTextCompilesOnItsOwn) {
    const std::string sequence = std::string(texts::fastItems) + SequenceText(texts::fastSequence, "KVItems");
    const std::string lists = sequence + "const bool __kvTidyLists = true;\n" +
                              std::string(texts::fastInstances) + std::string(texts::fastSeenLists) +
                              std::string(texts::fastTracked) +
                              "class KVL_TMob : public KVObject, public KVTracked<KVL_TMob>\n{\npublic:\n";
    const std::string closing =
        Fill(std::string(texts::classConstructor) + " ~@C@() {\n" + std::string(texts::fastClassLeaving) +
                 " }\n" + std::string(texts::fastClassNavigation),
             {{"C", "KVL_TMob"}});
    const std::pair<const char*, std::string> sources[] = {
        {"output", FillNames(texts::fastOutput) + std::string(texts::fastOutputObject)},
        {"line_output", std::string(texts::fastLineOutput) + std::string(texts::fastLineOutputObject)},
        {"unit_output", std::string(texts::fastUnitOutput) + std::string(texts::fastUnitOutputObject)},
        {"sequence", sequence +
                         "struct Item { int n; bool operator==(const Item& o) const { return n == o.n; } "
                         "int KVL_Compare(Item o) { return n - o.n; } };\ntemplate struct KVRow<Item>;\n"
                         "void Sort(KVSeq<Item>& items) { items.SortCompare(true); }\n"},
        {"vector_items", std::string(texts::fastVectorItems) + SequenceText(texts::fastSequence, "KVItems")},
        {"scheduler", std::string(texts::fastScheduler)},
        {"no_timers", std::string(texts::fastNoTimers)},
        {"instances", lists + closing +
                          "template struct KVTracked<KVL_TMob>;\ntemplate struct KVCreated<KVL_TMob>;\n" +
                          "template struct KVInstances<KVL_TMob>;\ntemplate struct KVItemWalk<KVL_TMob>;\n"},
        {"safe_index", FillNames(texts::fastSafeIndex)},
        {"fixed_array",
         std::string(texts::fastFixedArray) + "template struct KVArray<KVArray<double, 2>, 3>;\n"},
    };
    for (const auto& [name, text] : sources) {
        Write(std::string(name) + ".cpp", WithIncludes(text));
        EXPECT_EQ(Compile("-fsyntax-only", (folder / (std::string(name) + ".cpp")).string()), "") << name;
    }
}

TEST_F(GeneratedCode, BehavesUnderTheSanitizers) {
    for (int i = 0; i < static_cast<int>(Support::Count); ++i) RequireSupport(static_cast<Support>(i));
    const std::string prelude = FillNames(texts::safeDivision) +
                                SequenceText(texts::sequence, "std::vector") + std::string(texts::scheduler) +
                                std::string(texts::iteration) + SupportText();
    RenewRun();
    Write("all_texts.h", "#include <sstream>\n" + WithIncludes(prelude));
    const std::string closing = std::string(texts::classConstructor) + " ~@C@() {\n" +
                                std::string(texts::classLeaving) + " }\n" +
                                std::string(texts::classNavigation);
    Write("class_closing.h", Fill(closing, {{"C", "KVL_TMob"}}));
    ASSERT_EQ(Compile("-g1 -fsanitize=address,undefined -fno-sanitize-recover=all -o '" +
                          (folder / "check").string() + "'",
                      SOURCE_ROOT "/tests/unit/generated/support_check.cpp"),
              "");
    EXPECT_EQ(Run("all"), std::make_pair(std::string(), 0));
    const std::pair<const char*, const char*> failures[] = {
        {"index", "Array bounds error: a[12] dimension 0 out of range [0, 9]\n"},
        {"first", "Array bounds error: m[7][...] dimension 0 out of range [0, 4]\n"},
        {"second", "Array bounds error: m[-1] dimension 1 out of range [0, 1]\n"},
        {"divide", "Division by zero error\n"},
        {"modulo", "Modulo by zero error\n"},
    };
    for (const auto& [argument, message] : failures)
        EXPECT_EQ(Run(argument), std::make_pair(std::string(message), 1)) << argument;
}

}  // namespace
