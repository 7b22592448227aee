// The debugger of Korvel: runs programs that kv has made for it (include/kvdebugger.cpp), step by step.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace debug {

// A program that can be run.
struct Launch {
    std::vector<std::string> command;
    std::string source;        // its main file
    std::string typedFolder;   // where paths that people type begin
    std::string installation;  // no step leads into the modules there
    std::string kv;            // the command itself
};

// Serves somebody at a terminal. `remake` makes the program once more, from its source as it is then; false when that has
// mistakes in it, which have been told. Returns the exit status of kv.
int DebugInTerminal(const Launch& launch, const std::function<bool(Launch& launch)>& remake);

// What kv dap takes from the program that it is a part of: makes a program of a source, with arguments for it. False
// when that has mistakes in it; these have been said on the error stream.
using Maker =
    std::function<bool(const std::string& source, const std::vector<std::string>& arguments, Launch& launch)>;

// What kv is called with in a terminal of the editor's, where it runs a program for kv dap. Returns the program's status.
bool IsDebuggeeCommand(const std::vector<std::string>& words);
int RunDebuggee(const std::vector<std::string>& words);

// Serves an editor, with the Debug Adapter Protocol on the standard streams. Returns the exit status of kv.
int ServeEditor(const Maker& make);

}  // namespace debug
