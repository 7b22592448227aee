// The harness must not be blind: what the cases lean on is checked here.
#include <gtest/gtest.h>

#include <stdexcept>

#include "case_file.h"
#include "generated_code.h"
#include "toolchain.h"

namespace {

// Tests run side by side.
std::string OwnFolder() {
    return FreshFolder(std::string("harness.") +
                       testing::UnitTest::GetInstance()->current_test_info()->name());
}

std::vector<Case> Read(const std::string& text) {
    const std::string path = OwnFolder() + "/demo.kvl";
    WriteFile(path, text);
    return ReadCases(path);
}

TEST(Harness, CasesKeepTheirLineNumbers) {
    const std::vector<Case> cases = Read(
        ";flags: -t\n"
        "Shared\n"
        ";case: one\n"
        "Print \"a;=> b\" ;=> a;=> b\n"
        ";case: two\n"
        "x = 1 ;error: No x\\nhere\n"
        ";file: lib/util.kvl\n"
        "y ; a comment\n");
    ASSERT_EQ(cases.size(), 2U);
    EXPECT_EQ(cases[0].name, "demo_one");
    EXPECT_EQ(cases[0].files.at("demo.kvl"), "\nShared\n\nPrint \"a;=> b\"\n");
    EXPECT_EQ(cases[0].output, "a;=> b\n");
    EXPECT_EQ(cases[1].files.at("demo.kvl"), "\nShared\n\n\n\nx = 1\n");
    EXPECT_EQ(cases[1].files.at("lib/util.kvl"), "\n\n\n\n\n\n\ny ; a comment\n");
    EXPECT_EQ(cases[1].error, "No x\nhere");
    EXPECT_EQ(cases[1].errorLine, 6);
    EXPECT_EQ(cases[1].flags, std::vector<std::string>{"-t"});
}

TEST(Harness, RowsFillTheirFrame) {
    const std::vector<Case> cases = Read(
        ";here top\n"
        "Begin\n"
        "    ;here\n"
        "End\n"
        ";row: a\n"
        ";error: first\n"
        ";row: b\n"
        ";+   c\n"
        ";fill: top head\n"
        ";error: second\n"
        ";expect-line: +1\n");
    ASSERT_EQ(cases.size(), 2U);
    EXPECT_EQ(cases[0].files.at("demo.kvl"), "\nBegin\n    a\nEnd\n");
    EXPECT_EQ(cases[0].errorLine, 3);
    EXPECT_EQ(cases[1].files.at("demo.kvl"), "head\nBegin\n    b\n      c\nEnd\n");
    EXPECT_EQ(cases[1].errorLine, 4);
}

TEST(Harness, MistakesInDirectivesAreErrors) {
    EXPECT_THROW(Read(";expect-cp: x\n"), std::runtime_error);
    EXPECT_THROW(Read("Print 1\n;error: no line\n"), std::runtime_error);
    EXPECT_THROW(Read(";row: no hole\n"), std::runtime_error);
    EXPECT_THROW(Read("a\n;here\n;row: b\nc\n"), std::runtime_error);
    EXPECT_NO_THROW(Read("; note: a comment\n"));
}

TEST(Harness, FaultsInGeneratedCodeAreFound) {
    for (const char* good : {"f({1, {2}}, a[0]); // ) }", "\"(\\\"[\" '(' '\\'' /* { */", "R\"x(\")\")x\"",
                             "{{1}}", "{{a}, {b}}"}) {
        EXPECT_EQ(FindFault(good), "") << good;
    }
    for (const char* bad : {"f(", "f)", "(]", "{ // }", "'(' (", "x = {{name}};", "KVL_a$", "@x"}) {
        EXPECT_NE(FindFault(bad), "") << bad;
    }
}

TEST(Harness, RunsEndInTime) {
    const std::string folder = OwnFolder();
    EXPECT_TRUE(RunProcess({"sleep", "30"}, folder, "", 1).timedOut);
    EXPECT_EQ(RunProcess({"sh", "-c", "kill -SEGV $$"}, folder, "", 5).signal, 11);
    const ProcessResult result = RunProcess({"sh", "-c", "cat; echo no >&2; exit 3"}, folder, "in", 5);
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_EQ(result.out + result.err, "inno\n");
}

}  // namespace
