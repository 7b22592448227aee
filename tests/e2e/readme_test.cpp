// The README shows a program and what it prints; both are its first two fenced blocks.
#include <gtest/gtest.h>

#include "program_test.h"
#include "toolchain.h"

static std::string NextBlock(const std::string& text, std::size_t& at) {
    const std::string fence = "\n```\n";
    const std::size_t begin = text.find(fence, at) + fence.size();
    at = text.find(fence, begin);
    if (at == std::string::npos) return "";
    const std::string block = text.substr(begin, at + 1 - begin);
    at += fence.size() - 1;
    return block;
}

TEST(Readme, ProgramPrintsWhatItSays) {
    const std::string readme = ReadFile(GetPlaces().source + "/README.md");
    std::size_t at = 0;
    Case program;
    program.name = "readme";
    program.mainFile = "readme.kvl";
    program.files["readme.kvl"] = NextBlock(readme, at);
    program.output = NextBlock(readme, at);
    ASSERT_NE(program.output, "");
    RunCase(program, "plain");
}
