// A source file cut into lines, statements and tokens: continued lines are joined, "|" separates statements,
// inline C++ goes its own way. Everybody who reads Korvel sources reads them in this form (source_lines.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/source_reader.h"
#include "base/token_span.h"
#include "lexer/cpp_lines.h"
#include "lexer/lexer.h"

// One line with the lines joined to it. Its statements and the inline C++ before it begin in the lists of
// the file where those of the line before end.
struct CutLine {
    int start = 0;  // the physical line on which it begins
    int count = 0;  // its number, or that of the last line with tokens, as the first pass counts: a joined
                    // line counts once more
    std::uint32_t indent = 0;
    std::uint32_t statementsEnd = 0;
    std::uint32_t inlineEnd = 0;
    bool declares = false;     // a statement begins with a word of declarations or names another file
    bool afterInline = false;  // a block of inline C++ stands before it
    bool isEnd = false;        // not a line but the end of the file; start is its last line
};

// Tokens [begin, end) of the file.
struct CutStatement {
    std::uint32_t begin = 0, end = 0;
};

// Where a token stands: its physical line, and its first and last byte there, from 1 on.
struct TokenPlace {
    int line = 0, first = 0, last = 0;
};

// Wrong brackets or an open string, which only the passes report, when they come to the line.
// Brackets that a "|" cuts apart are the second pass's, which takes the statements one by one.
struct CutTrouble {
    const char* message = nullptr;
    std::size_t line = 0;  // index of the line that was being cut
    int count = 0;
    std::string text;
    int openParentheses = 0;
    TokenPlace where;  // of the bracket or String, where places are asked for
};

// With -v: a text that was lexed for a line, as the passes show it.
struct LexedText {
    std::size_t line = 0;         // index of the line
    int count = 0, physical = 0;  // its numbers in the first and the second pass
    bool isPiece = false;         // nothing was checked
    std::string text;
};

// A line of inline C++ as it stands.
struct InlineLine {
    std::string text;
    int line = 0;         // where it stands
    bool goesOn = false;  // behind its end, where nothing may be added
    int braces = 0;       // how many more it opens than it closes
};

struct CutFile {
    std::vector<CutLine> lines;  // those with statements or, with -c, comments; the end mark is the last
    std::vector<CutStatement> statements;
    Tokens tokens;
    std::vector<InlineLine> inlineLines;
    std::vector<std::string> comments;  // with -c: of each line, those of joined lines included
    CutTrouble trouble;                 // the first
    CutTrouble splitTrouble;            // the first bracket that a "|" cuts apart
    bool inlineOpen = false;            // the file ends inside inline C++
    std::uint64_t hash = 0;             // of its text, where settings.record is there
    std::vector<LexedText> lexed;       // with -v: up to the first trouble
};

class LineCutter {
public:
    // Where `noted` is given it receives the places of the file's tokens, one for each.
    explicit LineCutter(CutFile& target, std::vector<TokenPlace>* noted = nullptr)
        : file(target), places(noted) {}

    // False when the file cannot be read.
    bool Open(const std::string& path);

    // Appends the next line, or the end mark, to the lists of the file.
    void CutNext();

private:
    CutFile& file;
    Lexer lexer;
    SourceReader reader;
    CppLines cpp;
    int physical = 0;
    int count = 0;
    int lexedLine = 0;  // the last that was lexed as it stands
    std::string comment;
    // From this byte of the text that is cut on, it is what stands in the line from the column on.
    struct Stretch {
        std::size_t at = 0;
        int line = 0, column = 0;
    };
    std::vector<TokenPlace>* places;
    std::vector<TokenPlace> placesInLine;  // of the lexer's tokens
    std::vector<Stretch> stretches;

    void NoteStretch(std::size_t at, std::size_t column);
    void NoteStretchesBetweenTildes(std::size_t at, std::string_view piece);
    TokenPlace PlaceAt(std::size_t at, std::size_t size) const;
    void LocateTokens(std::string_view text);
    void LocateWhole(std::string_view text);
    std::string_view ReadLine();
    void NoteLexed(std::string_view text, bool isPiece);
    void NoteTrouble(const LexTrouble& trouble, std::string_view text);
    TokenPlace PlaceOfTrouble(char sign, std::size_t from, std::size_t to) const;
    void Lex(std::string_view text);
    void LexJoined(const std::string& text, bool counts);
    void LexPiece(std::string_view text);
    void TakeComment(std::string_view raw);
    void RefuseCompany(const char* message, std::string_view text);
    void CutInline();
    void Join(std::string_view first);
    void JoinTildeLines(std::string& text);
    void JoinUnderscoreLines(std::string& text);
    void AddStatement(CutLine& line, std::size_t from, std::size_t to);
    void AddStatements(CutLine& line, std::string_view text);
    void CheckSplit(const CutLine& line, std::size_t from, std::size_t to, std::string_view text);
    void AddLine(const CutLine& line);
};
