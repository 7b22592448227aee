// What the compiler says of programs.
#pragma once

#include <string>

namespace korvel {

// Something that is wrong with a program, or odd about it.
struct Diagnostic {
    std::string file;  // empty for what has no place in the program
    int line = 0;
    int firstColumn = 0, lastColumn = 0;  // from 1 on; 0 where they are not known
    std::string message;
    std::string hint;  // what may help; mostly empty
    bool isWarning = false;
};

}  // namespace korvel
