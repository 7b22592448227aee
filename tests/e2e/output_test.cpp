// What fast programs have printed is there however they end, and they end when nobody reads it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <thread>

#include "program_test.h"
#include "toolchain.h"

namespace {

// Builds the program in a folder of its own, which it returns.
std::string Build(const std::string& name, const std::string& source, const char* conio = "") {
    const std::string folder = FreshFolder("output." + name);
    WriteFile(folder + "/main.kvl", source);
    WriteFile(folder + "/out/.keep", "");
    const ProcessResult kvt = RunKvt({"-s", folder + "/main.kvl", "-o", folder + "/out", "-fast"}, folder);
    EXPECT_EQ(kvt.exitStatus, 0) << kvt.out;
    if (GetPlaces().translateOnly) return folder;
    CompileOptions options;
    if (*conio != 0) {
        options.precompiled = false;
        options.includeFolder = folder + "/include";
        WriteFile(options.includeFolder + "/conio.h", conio);
    }
    const ProcessResult compiler = CompileProgram(folder + "/out/main.cpp", folder, options);
    EXPECT_EQ(compiler.exitStatus, 0) << compiler.err;
    return folder;
}

// Where a program writes to, and from where that can be read afterwards.
struct Target {
    int writer = -1, reader = -1;
};

Target OpenTarget(const std::string& kind, const std::string& folder) {
    Target target;
    int ends[2] = {-1, -1};
    if (kind == "pipe" && pipe2(ends, O_CLOEXEC) == 0) {
        target = {ends[1], ends[0]};
    } else if (kind == "terminal") {
        target.reader = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_TRUE(grantpt(target.reader) == 0 && unlockpt(target.reader) == 0);
        target.writer = open(ptsname(target.reader), O_RDWR | O_NOCTTY | O_CLOEXEC);
    } else if (kind == "file") {
        target.writer = open((folder + "/lines").c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        target.reader = open((folder + "/lines").c_str(), O_RDONLY | O_CLOEXEC);
    } else {
        target.writer = open(kind.c_str(), O_WRONLY | O_CLOEXEC);
    }
    EXPECT_GE(target.writer, 0) << kind;
    return target;
}

// What waits there to be read, with the line ends of a file.
std::string Drain(const Target& target) {
    std::string text;
    pollfd waiting = {target.reader, POLLIN, 0};
    char bytes[65536];
    while (target.reader >= 0 && poll(&waiting, 1, 0) == 1) {
        const ssize_t size = read(target.reader, bytes, sizeof bytes);
        if (size <= 0) break;
        for (ssize_t i = 0; i < size; ++i)
            if (bytes[i] != '\r') text += bytes[i];
    }
    return text;
}

// Starts ./program, waits for the first character on its error stream, sends both signals after `delay` and
// returns the status that it ends with, or -1 when it goes on.
int EndBySignals(const std::string& folder, const Target& target, std::chrono::microseconds delay, int first,
                 int second) {
    int news[2];
    if (pipe2(news, O_CLOEXEC) != 0) return -1;
    const pid_t child = fork();
    if (child == 0) {
        dup2(open("/dev/null", O_RDONLY), 0);
        dup2(target.writer, 1);
        dup2(news[1], 2);
        execl((folder + "/program").c_str(), "program", nullptr);
        _exit(127);
    }
    close(news[1]);
    char dot = 0;
    EXPECT_EQ(read(news[0], &dot, 1), 1);
    close(news[0]);
    std::this_thread::sleep_for(delay);
    kill(child, first);
    kill(child, second);
    int status = -1;
    for (int waited = 0; waitpid(child, &status, WNOHANG) == 0; ++waited) {
        if (waited == 5000) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return status;
}

// Nothing of the output is lost in front of what is there, nothing comes twice, and every program ends, also
// one that waits for a reader.
TEST(Output, OfAProgramThatIsEndedAtAnyMoment) {
    const std::string folder = Build("ended",
                                     "Function Main\nLocal n:Int = 1\nLocal key:Int\nPrint n\n"
                                     "InlineCpp\nstd::cerr << '.';\nEndInlineCpp\nWhile key = 0\n"
                                     "n = n + 1\nPrint n\nIf n Mod 64 = 0 Then key = GetKey()\n"
                                     "Wend\nEndFunction\n");
    if (GetPlaces().translateOnly) return;
    std::string lines;
    for (int n = 1; n <= 200000; ++n) lines += std::to_string(n) + "\n";
    const int signals[] = {SIGTERM, SIGINT, SIGHUP, SIGALRM, SIGUSR1, SIGXCPU};
    std::mt19937 random(20);
    for (int run = 0; run < 30; ++run) {
        for (const char* kind : {"file", "pipe", "terminal", "/dev/null"}) {
            const Target target = OpenTarget(kind, folder);
            const int first = signals[random() % 6], second = signals[random() % 6];
            const std::chrono::microseconds delay(random() % 3000);
            const int status = EndBySignals(folder, target, delay, first, second);
            EXPECT_TRUE(WIFSIGNALED(status) && (WTERMSIG(status) == first || WTERMSIG(status) == second))
                << kind << ' ' << first << ' ' << second << ' ' << status;
            const std::string text = Drain(target);
            EXPECT_EQ(text.empty(), target.reader < 0);
            const std::size_t size = std::min(text.size(), lines.size());
            EXPECT_EQ(text.compare(0, size, lines, 0, size), 0) << kind << FirstDifference(lines, text);
            close(target.writer);
            if (target.reader >= 0) close(target.reader);
        }
    }
}

// A conio.h that is not ours knows nothing of terminals that have to be restored.
TEST(Output, OfACrashBesideAnotherConio) {
    const std::string folder =
        Build("crash",
              "Function Main\nPrint \"before\"\nInlineCpp\n*(volatile int*)8 = 1;\n"
              "EndInlineCpp\nEndFunction\n",
              "inline int _kbhit() { return 0; }\ninline int _getch() { return 0; }\n");
    if (GetPlaces().translateOnly) return;
    const ProcessResult run = RunProcess({folder + "/program"}, folder, "", 10);
    EXPECT_EQ(run.out, "before\n");
    EXPECT_EQ(run.signal, SIGSEGV) << DescribeEnd(run);
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
        {"std::raise(SIGXCPU);", -1, SIGXCPU, ""},
        {"std::cerr << \"words\"; std::abort();", -1, SIGABRT, "words"},
    };
    std::string source =
        "Global wanted:Int\nFunction Main\nInput \"\", wanted\nPrint "
        "\"one\"\nInlineCpp\nstd::cout << \"two\\n\";\n";
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
