// Reads test cases: Korvel files that carry their expectations in comments (see tests/README.md).
#pragma once

#include <map>
#include <string>
#include <vector>

// A text that must, or must not, stand in one of the outputs.
struct Fragment {
    std::string where;  // "cpp", "header", "lines", "kvt-stdout", "kvt-stderr", "run-stderr"
    bool wanted = true;
    std::vector<std::string> text;  // one entry, several for "lines"
};

struct Case {
    std::string name;                          // letters, digits and "_"
    std::string place;                         // file:line, for the reader of a failure
    std::map<std::string, std::string> files;  // path -> bytes
    std::string mainFile;                      // a key of `files`
    std::vector<std::string> flags;            // for kvt
    std::vector<std::string> command;          // all arguments of kvt, when not the usual ones
    std::vector<std::string> modes{"plain"};
    std::vector<std::string> arguments;  // for the program
    std::string input, output;           // of the program
    int exitStatus = 0;                  // of the program, or of kvt when there is none to run
    bool translateOnly = false;
    bool sanitize = false;
    std::vector<Fragment> fragments;

    // An error that kvt must report.
    bool wantsError = false;
    bool lexerError = false;   // about brackets or strings: its own form, on the error stream
    bool streamError = false;  // on the error stream, without a place
    std::string error, errorFile;
    int errorLine = -1;
};

// All cases of a file. A mistake in the directives throws std::runtime_error.
std::vector<Case> ReadCases(const std::string& path);
