// A source file as a list of lines: continued lines are joined, "|" separates statements, inline C++ goes
// its own way. Shared by everyone who reads Korvel sources.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "lexer/lexer.h"
#include "lexer/source_reader.h"
#include "lexer/token_span.h"

enum class Checking : unsigned char {
    Strict,    // brackets and strings are checked, lines are counted by the lexer, and those that cannot
               // declare anything are passed over
    Physical,  // checked too; the lexer is told the physical line on which each statement starts
    None,      // nothing is checked or counted; for readers that must not report before the first pass does
    Names,     // the same, and lines that cannot name a Type, an Element or another file are passed over
};

class SourceLines {
public:
    SourceLines(Lexer& lineLexer, Checking mode) : lexer(lineLexer), checking(mode) {}

    // False when the file cannot be read.
    bool Open(const std::string& path) { return reader.Open(path); }

    // Goes to the next line that has tokens, or a comment to carry; false at the end of the file.
    bool Next();

    // The physical line on which the current one starts.
    int Line() const { return start; }
    // With Checking::Strict: the lexer's count at the last line that has tokens, passed over or not.
    int LastCount() const { return lastCount; }
    // The statements of the current line; valid until the lexer is used again.
    const std::vector<TokenSpan>& Statements() const { return statements; }
    // True when inline C++ stood between the previous line and this one (or the end of the file).
    bool MetInlineCpp() const { return metInlineCpp; }
    // True when the file ended inside a block of inline C++, which started on Line().
    bool InlineCppOpen() const { return inlineCppOpen; }
    // With -c: the comments of the line and of those joined to it, ready for the output.
    const std::string& Comment() const { return comment; }

    // Gets every line of inline C++ that has tokens, as it stands.
    std::function<void(const std::string&)> onInlineCpp;

private:
    Lexer& lexer;
    Checking checking;
    SourceReader reader;
    std::vector<TokenSpan> statements;
    int physical = 0;
    int start = 0;
    int lastCount = 0;
    bool metInlineCpp = false;
    bool inlineCppOpen = false;
    std::string comment;

    std::string_view ReadLine();
    bool PassOver(std::string_view text);
    void Lex(std::string_view text);
    void LexAgain(const std::string& text);
    void TakeComment(std::string_view raw);
    void SkipInlineCpp();
    void Join(std::string_view first);
    void JoinTildeLines(std::string& text);
    void JoinUnderscoreLines(std::string& text);
    void SplitStatements();
};

// Tells whether two paths mean the same file, by their text.
std::string FileId(const std::string& path);

// Text of tokens joined by single blanks.
std::string JoinTokens(TokenSpan tokens);
