// Tokens are handles on words: every distinct text of a run is kept once, with what is asked of it again
// and again. Copying a token costs nothing, and equal tokens are the same word.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/keywords.h"

struct StringPiece;

struct Word {
    std::string text;
    Keyword keyword = Keyword::None;
    char sign = '\0';     // of a token of one character that is no letter or digit, or else 0
    bool braced = false;  // a String literal with a "{", which may begin a hole (lexer/holes.h)
    // The tables that it may be in (symbols/name_table.h), a bit for each of those that are asked about every name.
    mutable unsigned char tables = 0;
    std::uint32_t id = 0;  // counts the words of the run
    // Of a String literal that somebody asked about, what it is made of.
    mutable const std::vector<StringPiece>* pieces = nullptr;
};

// No text.
inline const Word noWord;

// The word with the text. It lasts until the end of the run.
const Word& WordOf(std::string_view text);
// The word of the one-character text.
const Word& WordOf(char character);
// Whether the text has been the text of a token.
bool IsKnownWord(std::string_view text);
// For when no other thread looks for words: frees what they have outgrown.
void ForgetOutgrownTables();
// The word with the id.
const Word& WordWithId(std::uint32_t id);
// How many words there are so far; their ids are smaller.
std::size_t WordCount();

class Token {
public:
    Token() : word(&noWord) {}
    Token(const Word& meant) : word(&meant) {}                         // NOLINT: a word is a token
    Token(std::string_view text) : word(&WordOf(text)) {}              // NOLINT: so is its text
    Token(const std::string& text) : Token(std::string_view(text)) {}  // NOLINT
    Token(const char* text) : Token(std::string_view(text)) {}         // NOLINT

    const Word& operator*() const { return *word; }
    const Word* operator->() const { return word; }
    operator const std::string&() const { return word->text; }  // NOLINT: most readers want the text

    friend bool operator==(Token a, Token b) { return a.word == b.word; }
    friend bool operator!=(Token a, Token b) { return a.word != b.word; }

private:
    const Word* word;
};

using Tokens = std::vector<Token>;
