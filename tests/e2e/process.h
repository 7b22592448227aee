// Runs a program with captured output and a time limit.
#pragma once

#include <string>
#include <vector>

struct ProcessResult {
    int exitStatus = -1;  // -1 when a signal or the time limit ended the program
    int signal = 0;
    bool timedOut = false;
    std::string out, err;
};

// Runs command[0] (found by PATH) with the rest as arguments. The working directory, standard input and
// two files for the outputs come from `folder`, which must exist. The whole process group is killed when
// the time is up, and no file it writes may pass 64 MB, so a program gone wild ends as a failure.
ProcessResult RunProcess(const std::vector<std::string>& command, const std::string& folder,
                         const std::string& input, int seconds);

// "ended with status 3", "was killed by signal 11", "was still running after the time limit".
std::string DescribeEnd(const ProcessResult& result);

std::string ReadFile(const std::string& path);                      // empty when it cannot be read
void WriteFile(const std::string& path, const std::string& bytes);  // makes the folders on the way
