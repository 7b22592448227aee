// One line of a program in its usual form: its words spelt as they are meant, one blank where one belongs.
#pragma once

#include <string>
#include <string_view>

#include "base/token.h"

struct SplitLine {
    std::string_view code;  // without blanks at its ends
    std::string_view
        comment;  // from the blanks before its ";" on; with nothing else in the line from the ";" on
};

// The parts of a line without its line end.
SplitLine PartsOf(std::string_view line);

// The code in its usual form. Its tokens are the same, but for the letter case of keywords; where that cannot be had
// the code stays as it is. `tokens` are those of the code, which begins statements or goes on with one.
std::string Spaced(std::string_view code, const Tokens& tokens, bool beginsStatement);
