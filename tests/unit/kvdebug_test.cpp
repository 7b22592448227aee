#include "../../include/kvdebug.h"

#include <gtest/gtest.h>

namespace {

void ReportOneGlobal() { _kvDebugVar("score", "int", std::to_string(7).c_str(), 0); }

// What a small debug build calls, a second Init and a missing Leave included.
void RunTracedProgram() {
    _kvDebugInit();
    _kvDebugInit();
    _kvDebugSetGlobalReporter(&ReportOneGlobal);
    _kvDebugEnter(nullptr, nullptr, "Main");
    _kvDebugEnter(nullptr, nullptr, "TPlayer\\Hit");
    _kvDebugStmt(3, "game.kvl");
    _kvDebugVar("hp", "int", "5", 3);
    _kvDebugVar("name", "string", std::string("Bo").c_str(), 1);
    _kvDebugPause();
    _kvDebugLeave();
    _kvDebugShutdown();
    _kvDebugLeave();
    _kvDebugLeave();
}

TEST(DebugCalls, SilentUnlessTraced) {
    unsetenv("KVDEBUG");
    testing::internal::CaptureStderr();
    RunTracedProgram();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(DebugCalls, Trace) {
    setenv("KVDEBUG", "trace", 1);
    testing::internal::CaptureStderr();
    RunTracedProgram();
    unsetenv("KVDEBUG");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "kvdebug: enter Main\n"
              "kvdebug:   enter TPlayer\\Hit\n"
              "kvdebug:   game.kvl:3\n"
              "kvdebug:       field hp : int = 5\n"
              "kvdebug:       name : string = Bo\n"
              "kvdebug:       global score : int = 7\n"
              "kvdebug:   leave TPlayer\\Hit\n"
              "kvdebug: end of program\n");
}

TEST(DebugCalls, EnterWithoutLeaveIsCounted) {
    _kvDebugInit();
    for (int i = 0; i < 1000000; ++i) _kvDebugEnter(nullptr, nullptr, "Loop");
    EXPECT_EQ(kvdebug::TheState().depth, 1000000u);
    for (int i = 0; i < 1000001; ++i) _kvDebugLeave();
    EXPECT_EQ(kvdebug::TheState().depth, 0u);
}

TEST(DebugCalls, NothingIsWorkedOutForNobody) {
    _kvDebugInit();
    bool asked = false;
    _kvDebugVar("n", "int", (asked = true, "5"), 1);
    EXPECT_FALSE(asked);
}

}  // namespace
