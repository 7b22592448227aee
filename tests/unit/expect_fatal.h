// Checks for texts, and for routines that end the run with a report.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <ostream>
#include <string>

#define EXPECT_HAS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)
#define EXPECT_LACKS(text, part) EXPECT_EQ((text).find(part), std::string::npos) << (text)

// Matches an output that contains a text as it stands, without the rules of regular expressions.
class HasText {
public:
    using is_gtest_matcher = void;
    explicit HasText(std::string wanted) : text(std::move(wanted)) {}
    bool MatchAndExplain(const std::string& output, std::ostream*) const {
        return output.find(text) != std::string::npos;
    }
    void DescribeTo(std::ostream* stream) const { *stream << "contains " << text; }
    void DescribeNegationTo(std::ostream* stream) const { *stream << "lacks " << text; }

private:
    std::string text;
};

// The statement ends the run with status 1 and a report that begins with "Error: " + message. Death tests
// look at the error stream, so the report is sent there.
#define EXPECT_FATAL(statement, message)        \
    EXPECT_EXIT(                                \
        {                                       \
            dup2(STDERR_FILENO, STDOUT_FILENO); \
            statement;                          \
        },                                      \
        testing::ExitedWithCode(1), HasText("Error: " + std::string(message) + "\nFile: "))
