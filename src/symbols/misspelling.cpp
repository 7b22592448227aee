#include "symbols/misspelling.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "base/edit_distance.h"
#include "base/paths.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "base/utf8.h"
#include "lexer/lexer.h"
#include "symbols/identifiers.h"
#include "symbols/module_names.h"
#include "symbols/modules.h"
#include "symbols/scopes.h"
#include "symbols/symbols.h"

namespace {

// Looking through all names takes its time, and nobody reads so many.
constexpr int mostHints = 100;
int hints = 0, quotedHints = 0;
const PartOfRun partOfRun(hints, quotedHints);

// Finds the word among those offered that is spelt most like another one. What is offered first wins.
class Nearest {
public:
    // Among few names, such as those of one Type, a word of `shortest` letters may be meant for another one.
    explicit Nearest(const std::string& word, std::size_t most = 2, std::size_t shortest = 4)
        : lower(Lower(word)),
          best(word.size() < shortest ? 0
               : word.size() < 6      ? std::min<std::size_t>(most, 1)
                                      : most) {}

    void Offer(const std::string& word) {
        const std::size_t distance = word.empty() ? best + 1 : EditDistance(lower, Lower(word), best);
        if (distance > best || (distance == best && !nearest.empty())) return;
        best = distance;
        nearest = word;
    }
    // In the order of the alphabet, for tables that have none.
    template <class Named>
    void OfferKeys(const Named& named) {
        std::vector<std::string> names;
        names.reserve(named.size());
        for (const auto& entry : named) names.push_back(entry.first);
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) Offer(name);
    }
    void OfferList(const std::vector<std::string>& words) {
        for (const std::string& word : words) Offer(word);
    }
    const std::string& Found() const { return nearest; }
    bool IsNearerThan(const Nearest& other) const {
        return !nearest.empty() && (other.nearest.empty() || best < other.best);
    }

private:
    std::string lower;
    std::size_t best;
    std::string nearest;
};

void OfferMembers(Nearest& nearest, const ClassInfo* cls) {
    if (cls == nullptr) return;
    nearest.OfferKeys(cls->members);
    nearest.OfferKeys(cls->routines);
}

void OfferVariables(Nearest& nearest) {
    if (!localDefList.empty()) {
        std::vector<std::string> locals;
        for (const auto& [name, visible] : localDefList.back().visible)
            if (visible.variable != nullptr) locals.push_back(name);
        std::sort(locals.begin(), locals.end());
        nearest.OfferList(locals);
    }
    if (currentClass != nullptr) nearest.OfferKeys(currentClass->members);
    nearest.OfferKeys(symbols.globals);
    nearest.OfferKeys(symbols.constants);
}

void OfferCallables(Nearest& nearest) {
    if (currentClass != nullptr) nearest.OfferKeys(currentClass->routines);
    nearest.OfferKeys(symbols.functions);
    nearest.OfferKeys(symbols.userlibRoutines);
}

void OfferTypes(Nearest& nearest) {
    for (const std::string& word : wordLists.spellings)
        if (IsBasicType(word)) nearest.Offer(word);
    for (const ClassInfo& cls : symbols.classes) nearest.Offer(cls.name);
}

void OfferFiles(Nearest& nearest, const std::string& folder) {
    std::error_code ignored;
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(PathOf(folder), ignored))
        names.push_back(TextOf(entry.path().filename()));
    std::sort(names.begin(), names.end());
    nearest.OfferList(names);
}

void OfferAll(Nearest& nearest, Sought sought, const ClassInfo* owner) {
    switch (sought) {
        case Sought::Member:
            return OfferMembers(nearest, owner);
        case Sought::Type:
            return OfferTypes(nearest);
        case Sought::Value:
            OfferVariables(nearest);
            OfferCallables(nearest);
            return nearest.OfferList(wordLists.spellings);
        default:
            if (localDefList.size() < 2) nearest.OfferList(wordLists.spellings);  // outside of routines
            OfferCallables(nearest);
            nearest.OfferList(wordLists.spellings);
            return OfferVariables(nearest);
    }
}

// All that a small Type has.
std::string MembersOf(const ClassInfo& cls) {
    constexpr std::size_t most = 8;
    std::vector<std::string> names;
    for (const auto& [name, field] : cls.members) names.push_back(name->text);
    for (const auto& [name, method] : cls.routines) names.push_back(name->text + "()");
    if (names.empty() || names.size() > most) return {};
    std::sort(names.begin(), names.end());
    std::string all;
    for (const std::string& name : names) all += (all.empty() ? "" : ", ") + name;
    return cls.name + " has " + all;
}

// Where nothing is like it, that is what there is to say.
std::string NothingLike(const std::string& word, Sought sought) {
    if (sought == Sought::Value && WasInEndedBlock(word))
        return "'" + word + "' was declared in a block that has ended; declare it before the block";
    if (!IsName(word)) return {};
    const std::string nothing = "nothing that is visible here is called '" + word + "'; ";
    if (sought == Sought::Type) return HasTypeName(word) ? nothing + "Type ... EndType declares a Type" : "";
    if (sought == Sought::Statement)
        return nothing + "a line begins with a word of the language, a variable or a Function";
    if (sought == Sought::Value) return nothing + "Local, Global and Const declare variables";
    return sought == Sought::Function ? nothing + "Function ... EndFunction declares a Function" : "";
}

std::string DidYouMean(const std::string& word, const std::string& nearest) {
    const bool sameLetters = Lower(nearest) == Lower(word);
    return (sameLetters ? "names are case-sensitive; did you mean '" : "did you mean '") + nearest + "'?";
}

Advice AdviceOn(const std::string& word, const std::string& nearest, Sought sought) {
    if (nearest.empty() || nearest == word) return {NothingLike(word, sought), {}};
    return {DidYouMean(word, nearest), nearest};
}

// What a module has that the program does not include.
Advice AdviceOnModule(const std::string& word, const std::string& nearest) {
    const std::string from = " comes with " + IncludeFor(nearest);
    return {nearest == word ? "'" + word + "'" + from : DidYouMean(word, nearest) + " It" + from, {}};
}

std::string InQuotes(const std::string& text) { return "\"" + text + "\""; }

// The file in the same folder, with the usual ending, or among the modules.
std::string FileLike(const std::string& name) {
    const std::string folder = FolderOf(name), file = StripFolder(name);
    Nearest nearest(file), module(file);
    OfferFiles(nearest, settings.sourceFolder + "/" + folder);
    if (nearest.Found().empty() && IsFile(settings.sourceFolder + "/" + name + ".kvl")) return name + ".kvl";
    if (!nearest.Found().empty()) return (folder.empty() ? "" : folder + "/") + nearest.Found();
    for (const std::string& path : AllModules()) {
        module.Offer(StripFolder(path));
        if (StripExtension(StripFolder(path)) == Lower(file)) return path;
    }
    return module.Found().empty() ? "" : "std/" + module.Found();
}

Advice AdviceOnFile(const std::string& literal) {
    const std::string found = FileLike(std::string(Unquoted(literal)));
    if (found.empty()) return {};
    return {"did you mean " + InQuotes(found) + "?", InQuotes(found)};
}

}  // namespace

Advice AdviceFor(const std::string& word, Sought sought, const ClassInfo* owner) {
    if (++hints > mostHints) return {};
    if (sought == Sought::File) return AdviceOnFile(word);
    if (sought == Sought::Statement && IsBasicType(word)) return {};  // int n = 3
    Nearest nearest(word, 2, sought == Sought::Member ? 3 : 4);
    OfferAll(nearest, sought, owner);
    if (sought == Sought::Member && nearest.Found().empty() && owner != nullptr)
        return {MembersOf(*owner), {}};
    if (sought == Sought::Member) return AdviceOn(word, nearest.Found(), sought);
    Nearest inModules(word, sought == Sought::Type ? 1 : 2);  // TPlayer is no TPlaces
    inModules.OfferKeys(ModuleNames());
    return inModules.IsNearerThan(nearest) ? AdviceOnModule(word, inModules.Found())
                                           : AdviceOn(word, nearest.Found(), sought);
}

bool MayConcernBlocks(const std::string& word) {
    Nearest nearest(word);
    OfferAll(nearest, Sought::Statement, nullptr);
    const Keyword meant = FindKeyword(nearest.Found());
    return nearest.Found().empty() || BlockOf(meant) != Keyword::None || Has(meant, trait::opens);
}

std::string SpellingHint(const std::string& name) {
    if (++quotedHints > mostHints) return {};
    Nearest nearest(name);
    nearest.OfferList(wordLists.keywordList);
    for (const auto& function : symbols.functions) nearest.Offer(function.first);
    return nearest.Found().empty() ? "" : "\nDid you mean '" + nearest.Found() + "'?";
}
