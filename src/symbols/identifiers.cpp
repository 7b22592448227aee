#include "symbols/identifiers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "base/report.h"
#include "base/run.h"
#include "lexer/lexer.h"
#include "symbols/name_characters.h"
#include "symbols/symbols.h"

WordLists wordLists;
static const PartOfRun partOfRun(wordLists);

namespace {

constexpr std::string_view neverPrefixed[] = {
    "std",    "string",  "vector",   "cout",  "endl",   "main",  // names to C++
    "NULL",   "nullptr", "true",     "false", "return", "if",     "else",    "for",
    "while",  "break",   "continue", "class", "struct", "public", "private", "protected",
    "int",    "float",   "double",   "char",  "void",   "bool",   "const",   "static",
    "extern", "sizeof",  "typedef",  "enum",  "new",    "delete", "this",
};
constexpr std::ptrdiff_t namesToCpp = 6;

// The first and last letters of these names at their lengths, as bits: they rule out nearly all others at one
// look.
struct LetterBits {
    std::uint64_t first = 0, last = 0;
};

constexpr std::uint64_t BitOf(char c) { return std::uint64_t(1) << (static_cast<unsigned char>(c) & 63U); }

constexpr std::array<LetterBits, 10> LettersByLength() {
    std::array<LetterBits, 10> letters{};
    for (const std::string_view name : neverPrefixed) {
        letters[name.size()].first |= BitOf(name.front());
        letters[name.size()].last |= BitOf(name.back());
    }
    return letters;
}

bool IsNeverPrefixed(std::string_view name) {
    constexpr std::array<LetterBits, 10> letters = LettersByLength();
    if (name.empty() || name.size() >= letters.size()) return false;
    const LetterBits& known = letters[name.size()];
    if ((known.first & BitOf(name.front())) == 0 || (known.last & BitOf(name.back())) == 0) return false;
    return std::find(std::begin(neverPrefixed), std::end(neverPrefixed), name) != std::end(neverPrefixed);
}

constexpr std::string_view prefix = "KVL_";

constexpr char typeNamingHint[] =
    "Custom Type names must start with 'T' followed by an uppercase letter (e.g., TPlayer, TEnemy, "
    "TMyType)";

}  // namespace

bool IsReservedCppName(const std::string& name) {
    if (IsNeverPrefixed(name)) return false;
    const bool foreign = symbols.externFunctions.size() + symbols.userlibRoutines.size() != 0;
    return !foreign || !(symbols.externFunctions.Has(name) || symbols.userlibRoutines.Has(name));
}

std::string SafeName(const std::string& name) {
    if (!IsReservedCppName(name)) return name;
    std::string safe;
    safe.reserve(prefix.size() + name.size());
    safe += prefix;
    return safe += name;
}

bool IsCppWord(const std::string& name) { return wordLists.reservedCppWords.count(name) != 0; }

bool IsReservedKeyword(const std::string& name) { return wordLists.reservedKeywords.count(Lower(name)) != 0; }

static void FailCppWord(const std::string& name) {
    const bool isOurs = IsReservedKeyword(name);
    const char* const whose =
        isOurs ? "It is a word of the language, in any letter case" : "C++ keeps this name for itself";
    ReportFatal("This is a reserved C++ identifier '" + name + "', use another identifier" +
                    Hint{std::string(whose) + "; '" + name + "_' would do"},
                Tokens{name});
}

void CheckCppWord(const std::string& name) {
    if (IsCppWord(name)) FailCppWord(name);
}

// All other words of C++ get a prefix.
void CheckExternParameter(const std::string& name) {
    const auto* words = std::begin(neverPrefixed) + namesToCpp;
    if (std::find(words, std::end(neverPrefixed), name) != std::end(neverPrefixed)) FailCppWord(name);
}

void CheckKeyword(const std::string& name) {
    if (IsReservedKeyword(name)) {
        ReportFatal("This is a reserved Korvel keyword '" + name + "', use another identifier", Tokens{name});
    }
}

void CheckValueWord(const std::string& name) {
    if (Has(FindKeyword(name), trait::value)) CheckKeyword(name);
}

// At file level "main" is the entry point of the C++ program.
void CheckFileLevelName(const std::string& name) {
    if (name == "main") ReportFatal("This is a reserved C++ identifier 'main', use another identifier");
    CheckCppWord(name);
}

bool IsName(const std::string& text) { return IsNameText(text); }

void CheckName(const std::string& name) {
    if (IsName(name)) return;
    ReportFatal("'" + name +
                    "' is not a valid name: names consist of letters, digits and '_' and do not begin "
                    "with a digit",
                Tokens{name});
}

void FailUnknownType(const std::string& name) {
    const bool calledForHint = !name.empty() && name[0] >= 'A' && name[0] <= 'Z' && name[0] != 'T';
    Wording message = "Unknown type: " + name;
    if (calledForHint) message = message + Wording{std::string("\n") + typeNamingHint, ""};
    if (calledForHint || IsClass(name)) message = message + Hint{typeNamingHint};
    ReportFatal(message, Tokens{name}, Sought::Type);
}
