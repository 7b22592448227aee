// Work that takes longer shows what is going on and for how long, in one line of the terminal that is gone when the
// work ends. Nothing is shown where the error stream is no terminal.
#pragma once

#include <chrono>
#include <functional>
#include <string>

class Progress {
public:
    // `work` says what is being done: "Compiling game.cpp".
    explicit Progress(const std::string& work);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // To be called while the work goes on; empty when there is no terminal.
    std::function<void()> Ticks();

    // What is being done now.
    void Tell(const std::string& work) { work_ = work; }

    // The work is done.
    void End();

private:
    void Show() const;

    std::string work_;
    std::chrono::steady_clock::time_point start_;
};

// How many columns of a terminal the text takes.
std::size_t ColumnsOf(const std::string& text);

// "Compiling game.cpp ... 1.2 s", in less than `columns` columns: a long text is cut in its middle. Empty where a line
// of that width would tell nothing.
std::string ProgressLine(const std::string& work, double seconds, int columns);
