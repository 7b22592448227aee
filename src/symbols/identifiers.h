// Identifier rules: the C++ names of user identifiers and which names are reserved.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

// The word lists of config/, loaded by LoadWordLists (library/word_lists.h), read-only afterwards.
constexpr int keywordAmount = 192;
struct WordLists {
    std::vector<std::string> keywordList;              // keywordAmount slots, unfilled ones empty
    std::vector<std::string> spellings;                // of those that are filled, as they are written
    std::vector<std::string> cppWordList;              // in file order
    std::unordered_set<std::string> reservedKeywords;  // the first 191 slots
    std::unordered_set<std::string> reservedCppWords;
};
extern WordLists wordLists;

std::string SafeName(const std::string& name);
// True when SafeName must prefix the name.
bool IsReservedCppName(const std::string& name);

bool IsCppWord(const std::string& name);          // exact
bool IsReservedKeyword(const std::string& name);  // any letter case, the first 191 slots

// Each ends the run with the message of the rule when the name is reserved.
void CheckCppWord(const std::string& name);
void CheckKeyword(const std::string& name);
void CheckValueWord(const std::string& name);      // only words that stand for a value wherever they are met
void CheckFileLevelName(const std::string& name);  // of a Global, Const, PreCalc table, Type or Element
void CheckExternParameter(const std::string& name);  // refuses only what no parameter of C++ can be called

// Ends the run unless the text is a name: letters of any language, digits and "_", no digit first.
void CheckName(const std::string& name);
bool IsName(const std::string& text);

// "Unknown type: " + name, with the naming hint where the name calls for it.
[[noreturn]] void FailUnknownType(const std::string& name);
