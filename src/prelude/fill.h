// Fills the named holes of an embedded text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

struct Hole {
    std::string_view name;
    std::string_view value;
};

// The text with every @NAME@ replaced by the value of that hole. A hole without a value is a fault of
// the compiler itself and aborts the run.
std::string Fill(std::string_view text, std::initializer_list<Hole> holes);
