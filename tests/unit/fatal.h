// What a routine says when it ends the run: it is called in a child process.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

// Everything that the routine writes to standard output and the error stream; "no error" when it returns.
template <class Routine>
std::string FatalText(Routine routine) {
    int ends[2];
    if (pipe(ends) != 0) return "no pipe";
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], 1);
        dup2(ends[1], 2);
        routine();
        std::fputs("no error", stdout);
        std::fflush(nullptr);
        _exit(0);
    }
    close(ends[1]);
    std::string text;
    char buffer[4096];
    for (ssize_t got = 0; (got = read(ends[0], buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(got));
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
    std::fputs(text.c_str(), stdout);
    return text;
}

// The message alone: the first line(s) between "Error: " and the place.
template <class Routine>
std::string FatalMessage(Routine routine) {
    const std::string text = FatalText(routine);
    const std::size_t start = text.rfind("Error: ", text.find("\nFile: "));
    if (start == std::string::npos || text.find("\nFile: ") == std::string::npos) return text;
    return text.substr(start + 7, text.find("\nFile: ") - start - 7);
}
