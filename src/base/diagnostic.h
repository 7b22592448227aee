// What the compiler tells of a program, as other programs get it (library/korvel.h).
#pragma once

#include <string>
#include <vector>

namespace korvel {

// A part of one line of a source. Columns count bytes from 1 on; the last one belongs to it.
struct Range {
    std::string file;
    int line = 0;
    int firstColumn = 0, lastColumn = 0;  // 0 where they are not known
};

// Another place that a mistake has to do with.
struct Related : Range {
    std::string message;  // "declared here"
};

// What to write there instead. Where the last column stands before the first one nothing is taken away.
struct Fix : Range {
    std::string replacement;
};

enum class Severity : unsigned char { Error, Warning, Note };

// Something that is wrong with a program, or odd about it. It has no file where it has no place in the program.
struct Diagnostic : Range {
    Severity severity = Severity::Error;
    std::string message;
    std::string quoted;  // the message as kvt has it, where that names types of C++
    std::string hint;    // what may help; mostly empty
    std::string name;    // of a warning, by which it is silenced
    std::vector<Related> related;
    std::vector<Fix> fixes;  // all of them together; only where they are likely to be what was meant
};

}  // namespace korvel
