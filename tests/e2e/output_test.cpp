// What fast programs have printed is there however they end, and they end when nobody reads it.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "program_test.h"
#include "toolchain.h"

namespace {

// Builds the program in a folder of its own, which it returns.
std::string Build(const std::string& name, const std::string& source) {
    const std::string folder = FreshFolder("output." + name);
    WriteFile(folder + "/main.kvl", source);
    WriteFile(folder + "/out/.keep", "");
    const ProcessResult kvt = RunKvt({"-s", folder + "/main.kvl", "-o", folder + "/out", "-fast"}, folder);
    EXPECT_EQ(kvt.exitStatus, 0) << kvt.out;
    if (GetPlaces().translateOnly) return folder;
    const ProcessResult compiler = CompileProgram(folder + "/out/main.cpp", folder, CompileOptions());
    EXPECT_EQ(compiler.exitStatus, 0) << compiler.err;
    return folder;
}

TEST(Output, OfAProgramThatIsEndedFromOutside) {
    const std::string folder = Build("ended",
                                     "Function Main\nLocal n:Int = 0\nPrint \"started\"\nWhile n < 1\n"
                                     "If n < -5 Then Print n\nWend\nEndFunction\n");
    if (GetPlaces().translateOnly) return;
    // It has printed when it has had processor time of its own for a while.
    const std::string start =
        "ulimit -c 0; ./program > lines & p=$!; "
        "until [ \"$(cut -d ' ' -f 14 /proc/$p/stat)\" -gt 8 ]; do sleep 0.01; done; ";
    for (const char* signal : {"TERM", "HUP", "ALRM", "USR1", "XCPU"}) {
        const std::string command = start + "kill -s " + signal + " $p; wait $p; echo $?; cat lines";
        const ProcessResult run = RunProcess({"sh", "-c", command}, folder, "", 60);
        EXPECT_EQ(run.exitStatus, 0) << signal << run.err;
        EXPECT_EQ(run.out.substr(run.out.find('\n') + 1), "started\n") << signal;
        EXPECT_GT(std::atoi(run.out.c_str()), 128) << signal;
    }
}

TEST(Output, ThatNobodyReadsEndsTheProgram) {
    const std::string folder = Build(
        "unread", "Function Main\nLocal n:Int = 0\nWhile True\nn = n + 1\nPrint n\nWend\nEndFunction\n");
    if (GetPlaces().translateOnly) return;
    const ProcessResult run = RunProcess({"sh", "-c", "./program | head -n 2"}, folder, "", 60);
    EXPECT_EQ(run.out, "1\n2\n");
    EXPECT_FALSE(run.timedOut);
    EXPECT_EQ(run.err, "");
}

// The way each kind of end would go without buffering: output first, then what C++ says about it.
TEST(Output, OfAProgramThatEndsItself) {
    struct Row {
        const char* ending;
        int status, signal;
        const char* saidAfterwards;
    };
    const Row rows[] = {
        {"std::abort();", -1, SIGABRT, ""},
        {"exit(3);", 3, 0, ""},
        {"std::exit(4);", 4, 0, ""},
        {"std::raise(SIGTERM);", -1, SIGTERM, ""},
        {"std::raise(SIGINT);", -1, SIGINT, ""},
        {"std::raise(SIGQUIT);", -1, SIGQUIT, ""},
        {"throw 5;", -1, SIGABRT, "terminate called after throwing an instance of 'int'\n"},
        {"*(volatile int*)8 = 1;", -1, SIGSEGV, ""},
        {"std::cerr << \"words\"; std::abort();", -1, SIGABRT, "words"},
    };
    std::string source =
        "Global wanted:Int\nFunction Main\nInput \"\", wanted\nPrint "
        "\"one\"\nInlineCpp\nprintf(\"two\\n\");\n";
    int number = 0;
    for (const Row& row : rows)
        source += "if (KVL_wanted == " + std::to_string(number++) + ") { " + row.ending + " }\n";
    const std::string folder = Build("ends", source + "EndInlineCpp\nEndFunction\n");
    if (GetPlaces().translateOnly) return;
    for (int i = 0; i < number; ++i) {
        const Row& row = rows[i];
        const ProcessResult run = RunProcess({folder + "/program"}, folder, std::to_string(i) + "\n", 60);
        EXPECT_EQ(run.out, "one\ntwo\n") << row.ending;
        EXPECT_EQ(run.exitStatus, row.status) << row.ending;
        EXPECT_EQ(run.signal, row.signal) << row.ending;
        EXPECT_EQ(run.err, row.saidAfterwards);
    }
    const ProcessResult both =
        RunProcess({"sh", "-c", "ulimit -c 0; echo 6 | ./program 2>&1"}, folder, "", 60);
    EXPECT_EQ(both.out.rfind("one\ntwo\nterminate called", 0), 0U) << both.out;
}

}  // namespace
