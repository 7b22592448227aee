// Lines that somebody types, with history where the library for that is there.
#pragma once

#include <memory>
#include <string>

namespace debug {

class LineEditor {
public:
    LineEditor();
    ~LineEditor();
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    // Without its end of line. False when no more will come.
    bool Read(const char* prompt, std::string& line);

private:
    struct Library;
    std::unique_ptr<Library> library;
};

}  // namespace debug
