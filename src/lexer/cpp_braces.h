// Counts the braces of C++ that is read line by line: those of its code, not of its literals and comments.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class CppBraces {
public:
    void Read(std::string_view line);

    // How many more braces were opened than closed since the last call; less than 0 when more were closed.
    int Take();

private:
    enum class Inside : unsigned char { Code, Comment, RawString, Directive };
    Inside inside = Inside::Code;
    std::string rawEnd;  // ")delimiter\"" of the raw string that is open
    int depth = 0;
    std::vector<int> branches;  // the depths at the open #if lines: of their branches, one counts

    void ReadDirective(std::string_view line);
    std::size_t SkipLiteral(std::string_view line, std::size_t at);
    std::size_t SkipTo(std::string_view end, std::string_view line, std::size_t at);
};
