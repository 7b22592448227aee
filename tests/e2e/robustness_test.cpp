// Whatever bytes kvt is given, it ends with a report or with success: no signal, no hang.
#include <gtest/gtest.h>

#include <filesystem>

#include "toolchain.h"

namespace fs = std::filesystem;

namespace {

void Feed(const std::string& bytes, const std::string& what) {
    static int failures = 0;
    const std::string name =
        std::string("robustness.") + testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::string folder = FreshFolder(name);
    WriteFile(folder + "/in.kvl", bytes);
    fs::create_directories(folder + "/out");
    const ProcessResult kvt =
        RunKvt({"-s", folder + "/in.kvl", "-o", folder + "/out", "-c", "-t", "-safe"}, folder);
    const bool reported =
        kvt.exitStatus == 1 && (kvt.out.find("Error: ") != std::string::npos || !kvt.err.empty());
    if (kvt.exitStatus == 0 || reported) return;
    const std::string kept = GetPlaces().work + "/" + name + "-failed-" + std::to_string(++failures) + ".kvl";
    WriteFile(kept, bytes);
    ADD_FAILURE() << what << ": kvt " << DescribeEnd(kvt) << ", source: " << kept << "\n"
                  << kvt.err.substr(0, 3000);
}

TEST(Robustness, EmptyAndTinySources) {
    const std::vector<std::string> sources{"", "\n", ";", "_", "_\n_\n", "|", "\"", "\\", "\xEF\xBB\xBF"};
    for (const std::string& bytes : sources) Feed(bytes, "'" + bytes + "'");
    Feed(std::string("\0\0\n\0", 4), "zero bytes");
}

TEST(Robustness, OwnBinary) { Feed(ReadFile(GetPlaces().stage + "/bin/kvt"), "kvt itself"); }

// Depth and length that would exhaust a careless recursion or a fixed buffer.
TEST(Robustness, ExtremeLines) {
    const std::string head = "Function Main\n    Local a:Int = 1\n    ", tail = "\nEndFunction\n";
    auto repeat = [](const std::string& text, int times) {
        std::string all;
        for (int i = 0; i < times; ++i) all += text;
        return all;
    };
    Feed(head + "a = " + repeat("(", 20000) + "1" + repeat(")", 20000) + tail, "20000 parentheses");
    Feed(head + "a = " + repeat("-", 20000) + "1" + tail, "20000 signs");
    Feed(head + "a = 1" + repeat(" + 1", 100000) + tail, "100000 terms");
    Feed(head + repeat("If a = 1 Then ", 3000) + "a = 2" + tail, "3000 nested Thens");
    Feed(head + repeat("If a = 1\n", 5000) + tail, "5000 open blocks");
    Feed(head + "Print \"" + repeat("x", 1000000) + "\"" + tail, "string of a megabyte");
    Feed(head + "a = " + repeat("b", 1000000) + tail, "name of a megabyte");
}

}  // namespace
