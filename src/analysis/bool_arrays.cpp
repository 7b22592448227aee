#include "analysis/bool_arrays.h"

#include <algorithm>

#include "base/run.h"
#include "base/settings.h"
#include "lexer/mentions.h"
#include "lexer/source_lines.h"
#include "symbols/symbols.h"

namespace {

constexpr int items = -1;  // in place of a number of indices: the items themselves are handed on

struct Row {
    const Word* name;
    const Word* table;
};

struct Facts {
    bool built = false;
    bool taken = false;                            // some parameter takes arrays of Bool
    bool read = false;                             // Input reads into some item
    std::unordered_map<const Word*, int> indices;  // the fewest with which the name is handed on
    std::vector<Row> rows;                         // what EachIn calls the rows of a table
};

Facts facts;
const PartOfRun partOfRun(facts);

bool IsName(const Word& word) { return !word.text.empty() && IsLetterByte(word.text[0]); }

void HandOn(const Word& name, int count) {
    const auto known = facts.indices.emplace(&name, count).first;
    known->second = std::min(known->second, count);
}

bool TakesBools(const Routine& routine) {
    return std::any_of(routine.parameters.begin(), routine.parameters.end(), [](const Parameter& parameter) {
        return parameter.type.IsArray() && parameter.type.base == Base::Bool;
    });
}

bool SomeRoutineTakesBools() {
    for (const auto& function : symbols.functions)
        if (TakesBools(function.second)) return true;
    for (const ClassInfo* cls : symbols.classList)
        for (const auto& method : cls->routines)
            if (TakesBools(method.second)) return true;
    return false;
}

// Where a name stands that may be an argument: behind a bracket, a comma, the accessor of a member, or the name
// of a routine that is called without parentheses.
bool MayBeginArgument(TokenSpan tokens, std::size_t at) {
    if (at == 0) return false;
    const Word& before = tokens.At(at - 1);
    constexpr std::string_view signs = "(,\\.";
    if (before.sign != '\0') return signs.find(before.sign) != std::string_view::npos;
    return before.keyword == Keyword::None && IsName(before);
}

bool MayEndArgument(const Word& behind) {
    return behind.text.empty() || behind.sign == ',' || behind.sign == ')' || behind.sign == '|' ||
           behind.keyword != Keyword::None;
}

// The array of SeqFromArray is copied from where it is.
bool IsCopiedFrom(TokenSpan tokens, std::size_t end) {
    if (tokens.KeywordAt(0) != Keyword::SeqFromArray) return false;
    return tokens.SignAt(1) == '(' ? tokens.SignAt(end) == ')' && end + 1 == tokens.size()
                                   : end == tokens.size();
}

void ReadArguments(TokenSpan tokens) {
    for (std::size_t i = 1; i < tokens.size(); ++i) {
        if (!IsName(tokens.At(i)) || !MayBeginArgument(tokens, i)) continue;
        int count = 0;
        std::size_t end = i + 1;
        for (; tokens.SignAt(end) == '['; ++count) end = tokens.Behind(end);
        if (MayEndArgument(tokens.At(end)) && !IsCopiedFrom(tokens, end)) HandOn(tokens.At(i), count);
    }
}

void ReadInput(TokenSpan tokens, std::size_t from) {
    for (std::size_t i = from; i + 1 < tokens.size(); ++i) {
        if (tokens.SignAt(i + 1) != '[' || !IsName(tokens.At(i))) continue;
        HandOn(tokens.At(i), items);
        facts.read = true;
    }
}

// For Each row In table , For row EachIn owner\table
void ReadLoop(TokenSpan tokens, std::size_t at) {
    const Word* row = nullptr;
    for (std::size_t i = at + 1; i < tokens.size(); ++i) {
        const Keyword keyword = tokens.KeywordAt(i);
        const bool collection = keyword == Keyword::EachIn || keyword == Keyword::In;
        if (row == nullptr && keyword != Keyword::Each && keyword != Keyword::Local) row = &tokens.At(i);
        if (!collection || row == nullptr) continue;
        for (std::size_t k = i + 1; k < tokens.size() && tokens.SignAt(k) != '|'; ++k)
            if (IsName(tokens.At(k))) facts.rows.push_back({row, &tokens.At(k)});
        return;
    }
}

void ReadStatement(TokenSpan tokens) {
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Word& token = tokens.At(i);
        if (token.keyword == Keyword::Input) ReadInput(tokens, i + 1);
        if (token.keyword == Keyword::For) ReadLoop(tokens, i);
        if (!token.text.empty() && token.text[0] == '"') ReadArguments(HoleTokens(token));
    }
    ReadArguments(tokens);
}

// A table whose row is handed on is handed on with an index more.
void FollowRows() {
    for (bool changed = true; changed;) {
        changed = false;
        for (const Row& row : facts.rows) {
            const auto handed = facts.indices.find(row.name);
            if (handed == facts.indices.end()) continue;
            const int count = handed->second == items ? items : handed->second + 1;
            const auto known = facts.indices.find(row.table);
            if (known != facts.indices.end() && known->second <= count) continue;
            HandOn(*row.table, count);
            changed = true;
        }
    }
}

// Whole items are quicker than packed ones. Inline C++ knows the vectors of plain programs.
bool AllForSpeed() { return settings.fastMode && !symbols.inlineCpp; }

void Build() {
    facts.built = true;
    facts.taken = SomeRoutineTakesBools();
    for (const std::string& file : symbols.sourceFiles) {
        SourceLines lines(Reading::Uses);
        if (!lines.Open(file)) continue;
        while (lines.Next())
            for (const TokenSpan statement : lines.Statements()) ReadStatement(statement);
    }
    FollowRows();
}

}  // namespace

bool AreBoolArraysKnown() { return AllForSpeed() || facts.built; }

bool HandsOnBools(const std::string& name, int dimensions) {
    if (AllForSpeed()) return true;
    if (!facts.built) Build();
    const auto found = facts.indices.find(&WordOf(name));
    if (found == facts.indices.end()) return false;
    return found->second == items || (facts.taken && found->second < dimensions);
}

bool AnyHandsOnBools() {
    if (AllForSpeed()) return true;
    if (!facts.built) Build();
    return facts.taken || facts.read;
}

void NoteHandedOnBools() {
    const auto note = [](Variable& variable) {
        const ValueType& type = variable.type;
        if (!type.IsArray() || type.base != Base::Bool) return;
        variable.handsOnBools =
            variable.initialiser.empty() ? HandsOnBools(variable.name, type.dims) : AnyHandsOnBools();
    };
    for (auto& global : symbols.globals) note(global.second);
    for (ClassInfo* cls : symbols.classList)
        for (auto& field : cls->members) note(field.second);
}
