// Checks for texts, and for routines that stop the run.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "base/report.h"

#define EXPECT_HAS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)
#define EXPECT_LACKS(text, part) EXPECT_EQ((text).find(part), std::string::npos) << (text)

// What kvt would quote when the routine stops the run, else "no error". It goes to the log of messages, too.
template <class Routine>
std::string FatalText(Routine routine) {
    try {
        routine();
        return "no error";
    } catch (const Stop& stop) {
        std::fputs(stop.quoted.c_str(), stdout);
        return stop.quoted;
    }
}

// The message alone.
template <class Routine>
std::string FatalMessage(Routine routine) {
    try {
        routine();
        return "no error";
    } catch (const Stop& stop) {
        std::fputs(stop.quoted.c_str(), stdout);
        return stop.mistakes.back().message;
    }
}

#define EXPECT_FATAL(statement, text) EXPECT_EQ(FatalMessage([&] { statement; }), text)
