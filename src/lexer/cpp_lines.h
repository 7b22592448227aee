// The lines of inline C++, read only as far as it takes to know their tokens, where their braces are and where a line
// end is more than a blank.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class CppLines {
public:
    void Read(std::string_view line);

    // Is called with what stands in code that is no directive: names and numbers, signs of one character, and of
    // literals their opening quote alone.
    std::function<void(std::string_view token)> onToken;

    // Whether the last line is, or belongs to, one of the preprocessor's.
    bool IsDirective() const { return inDirective; }

    // How many more braces the last line opened than it closed: those of its code, not of literals, comments and
    // macros. Of the branches of an #if one counts, so that an #else takes back what the branch before it opened.
    int Braces() const { return depth - depthBefore; }

    // Whether the last line goes on behind its end: in a raw string, or by a backslash. Nothing may be added to
    // such a line, and the next one may not be left out.
    bool GoesOn() const { return goesOn; }

private:
    enum class Inside : unsigned char { Code, Comment, LineComment, Text, Character, RawText };
    Inside inside = Inside::Code;
    std::string rawEnd;  // what closes the raw string that is open
    bool goesOn = false;
    bool inDirective = false;
    int depth = 0, depthBefore = 0;
    std::vector<int> branches;  // the depths at the open #if lines

    void ReadDirective(std::string_view line);
    std::size_t Step(std::string_view line, std::size_t at);
    void Tell(std::string_view token) const;
    std::size_t PassWord(std::string_view line, std::size_t at) const;
    std::size_t StepInCode(std::string_view line, std::size_t at);
    std::size_t SkipTo(std::string_view end, std::string_view line, std::size_t at);
    std::size_t OpenText(std::string_view line, std::size_t quote);
};
