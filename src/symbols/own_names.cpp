#include "symbols/own_names.h"

#include <unordered_set>
#include <utility>

#include "base/run.h"
#include "base/settings.h"
#include "base/token.h"
#include "symbols/identifiers.h"
#include "symbols/symbols.h"

namespace {

AskedWords asked;
std::size_t wordsOfProgram = 0;  // how many words there were when all files had been read; 0 before
const PartOfRun partOfRun(asked, wordsOfProgram);

// Names written in the program are known before anything is emitted: every name is a word of some line. One that
// is merely mentioned counts, too; a program that declares it nowhere is refused anyway.
bool IsNameOfProgram(const std::string& cppName) {
    if (symbols.externFunctions.Has(cppName) || symbols.userlibRoutines.Has(cppName)) return true;
    const std::string start = SafeName("");
    if (cppName.compare(0, start.size(), start) != 0) return false;
    const std::string written = cppName.substr(start.size());
    const bool isKnown = IsWordOfProgram(written);
    if (!settings.record.empty()) asked.emplace(written, isKnown);
    return isKnown && SafeName(written) == cppName;
}

std::unordered_set<std::string> fresh;  // given out on the line below
int freshLine = 0;
const PartOfRun otherPartOfRun(fresh, freshLine);

}  // namespace

void CloseNamesOfProgram() { wordsOfProgram = WordCount(); }

bool IsWordOfProgram(const std::string& text) {
    return IsKnownWord(text) && (wordsOfProgram == 0 || WordOf(text).id < wordsOfProgram);
}

std::string OwnName(std::string plain) {
    while (IsNameOfProgram(plain)) plain += '_';
    return plain;
}

std::string FreshName(const std::string& plain) {
    if (freshLine != settings.currentLine) ResetFreshNames();
    freshLine = settings.currentLine;
    std::string name = OwnName(plain);
    for (int count = 2; !fresh.insert(name).second; ++count)
        name = OwnName(plain + "_" + std::to_string(count));
    return name;
}

AskedWords ExchangeAskedWords(AskedWords others) { return std::exchange(asked, std::move(others)); }

void ResetFreshNames() { fresh.clear(); }

std::string SizeName(const std::string& cppName, int dimension) {
    return OwnName(cppName + "_size_" + std::to_string(dimension));
}

std::string SafeDivName() { return OwnName("KVL_SafeDiv"); }
std::string SafeModName() { return OwnName("KVL_SafeMod"); }
