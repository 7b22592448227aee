// The line lexer: cuts one line of Korvel into tokens and checks its brackets and strings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/token.h"

// Brackets or strings of a line that are not right.
struct LexTrouble {
    const char* message = nullptr;  // null when all is well
    int openParentheses = 0;
    char sign = '\0';  // the bracket, or '"'
};

class Lexer {
public:
    std::vector<std::string> delimiters;  // the 29 one-character tokens
    std::uint32_t indent = 0;             // leading blanks and tabs of the last line
    std::string fileName;                 // shown in error messages
    std::int32_t lineNumber = 0;          // advanced by LexLine when countLine is set
    std::string lineText;                 // last line lexed with countLine set
    Tokens tokens;                        // tokens of the last line
    bool hasBar = false;                  // one of them is a "|"

    Lexer();

    // Replaces `tokens` with those of `line` and returns their number. Unbalanced brackets and
    // open strings end the run, unless skipValidation is set or the line ends in a lone "_".
    std::int32_t LexLine(std::string_view line, bool keepComment, bool countLine, bool skipValidation);

    // The same without counting, and without a report: what is wrong is returned.
    LexTrouble Cut(std::string_view line);

    std::int32_t TokenCount() const;
    std::string GetToken(std::int32_t i) const;  // empty outside the list
    std::uint32_t GetIndent() const;
};

// What is not closed, for what else cuts lines apart.
inline constexpr char unclosedParenthesis[] = "Unclosed parenthesis '('",
                      unclosedBracket[] = "Unclosed bracket '['";

// Ends the run with the report of such a line.
[[noreturn]] void FailInLine(const std::string& file, int number, const char* message, std::string_view line);

// Tokens of a piece of text, comments dropped and nothing checked.
Tokens Cut(std::string_view text);
// The same; verbose runs show the text.
Tokens Split(std::string_view text);
// What verbose runs show of a text that is split, of one that is lexed as a line, and before the report of a line.
void ShowSplit(std::string_view text);
void ShowLine(std::int32_t number, bool skipValidation, std::string_view line);
void ShowTrouble(const LexTrouble& trouble);

// ASCII lower case; other bytes stay.
std::string Lower(std::string_view text);

// Position of the ';' that starts the comment of a line, or npos.
std::size_t CommentStart(std::string_view line);

// The raw line up to its last "_" that is code; its trailing comment does not count. For lines whose
// last token is "_".
std::string CutAtContinuation(const std::string& rawLine);

// "//" and everything after the ';' that starts the comment of a raw line, safe to stand at the end of
// a C++ line; empty without a comment.
std::string CommentOf(const std::string& rawLine);

// Whether C++ would join the next line to this one.
bool EndsContinued(std::string_view line);

// The comment in one line: without returns, and with a point behind it where its end would make C++ join the next line
// to it.
std::string GuardComment(std::string comment);
