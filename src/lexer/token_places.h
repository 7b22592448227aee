// Where tokens stand in their source. Nobody needs to know while all is well: a file is cut once more for its places
// when somebody asks.
#pragma once

#include <string>
#include <vector>

#include "base/report.h"
#include "base/token_span.h"
#include "lexer/cut_file.h"

struct SourcePlace {
    std::string file;
    TokenPlace where;  // as far as the tokens stand on the line of the first one
};

// The places of all tokens of a file that has been read, in their order.
const std::vector<TokenPlace>& PlacesOf(const std::string& file);

// The place of what a mistake in the statement is about. Tokens that are copies, as those in the holes of Strings are,
// are looked for in the statement. False when it cannot be told.
bool FindPlace(const Stop::Subject& subject, TokenSpan statement, SourcePlace& place);

// Gives what is said the place of what it is about, as far as that can be told without a statement.
void Locate(korvel::Diagnostic& said, const Stop::Subject& about);

// The same for tokens of a file's own list.
bool FindPlace(TokenSpan tokens, SourcePlace& place);

// The place of the words on a line of a file that has been read: of all of them, of the first one in any letter case, or
// else of what stands first there. False when there is nothing.
bool FindOnLine(const std::string& file, int line, TokenSpan words, TokenPlace& place);

// The place of the bracket or String that is not right, if that is what the mistake says.
bool FindTrouble(const korvel::Diagnostic& mistake, TokenPlace& place);

// The place of the first token from the line on that is the name. False when there is none.
bool FindName(const std::string& file, int line, const std::string& name, TokenPlace& place);
