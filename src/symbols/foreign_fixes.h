// What to write in place of words and signs of other languages, as changes that an editor can make.
#pragma once

#include <string>
#include <string_view>

#include "base/diagnostic.h"
#include "symbols/sign_fixes.h"

// The part of the line that a place on it names; empty where its columns are not known.
std::string_view TextOf(const korvel::Range& place, std::string_view line);

// "End If" is one word: adds that change to a mistake about two such words on the line.
void JoinWords(korvel::Diagnostic& mistake, const std::string& line);

// Adds what to write in place of the foreign word or sign that the mistake is about, where that can be told.
void FixForeignWord(korvel::Diagnostic& mistake, const WrongLine& line);
