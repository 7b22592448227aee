#include "symbols/uses.h"

#include <algorithm>
#include <functional>
#include <unordered_map>

#include "base/report.h"
#include "base/run.h"
#include "lexer/holes.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

NotedUses notedUses;

namespace {

// A token of the statement, or of a hole in it.
struct Slot {
    TokenSpan list;
    std::size_t index = 0;
    NotedUse use;
};

// Tokens that stand for others, as `its` does: where they are, and the slots of those.
struct Substitutes {
    TokenSpan tokens;
    std::vector<std::size_t> slots;
};

struct Statement {
    TokenSpan tokens;
    std::vector<Slot> slots;  // those of the statement's own tokens come first
    std::vector<Substitutes> substitutes;
    std::unordered_map<const Token*, std::size_t> copies;
};

std::vector<Statement> statements;  // the last is under way
std::unordered_map<const Variable*, NotedLocal*> openLocals;
const PartOfRun partOfRun(notedUses, statements, openLocals);

bool Holds(TokenSpan tokens, const Token* token) {
    const std::less<> before;
    return !before(token, tokens.first) && before(token, tokens.last);
}

void AddHoles(Statement& statement, const Token* literal) {
    for (const StringPiece& piece : PiecesOf(**literal)) {
        std::size_t at = piece.from + 2;  // behind the brace and the tag
        for (std::size_t i = 0; i < piece.tokens.size(); ++i) {
            const std::string& text = piece.tokens[i]->text;
            at = (*literal)->text.find_first_not_of(" \t", at);
            const auto from = static_cast<int>(at);
            statement.slots.push_back(
                {piece.tokens, i, {literal, from, from + static_cast<int>(text.size()), nullptr, false}});
            at += text.size();
        }
    }
}

bool IsMember(TokenSpan list, std::size_t index) {
    const char before = index > 0 ? list.SignAt(index - 1) : '\0';
    return before == '\\' || before == '.';
}

// The slot of a token that is a copy: that of the first such name whose meaning is not known yet.
std::size_t SlotOfCopy(Statement& statement, const Token* name) {
    const auto known = statement.copies.find(name);
    if (known != statement.copies.end()) return known->second;
    const auto found = std::find_if(statement.slots.begin(), statement.slots.end(), [name](const Slot& slot) {
        return slot.use.meaning == nullptr && slot.list.At(slot.index).text == (*name)->text;
    });
    const auto index = static_cast<std::size_t>(found - statement.slots.begin());
    if (found != statement.slots.end()) statement.copies.emplace(name, index);
    return index;
}

std::size_t SlotOf(Statement& statement, const Token* name) {
    if (Holds(statement.tokens, name)) return static_cast<std::size_t>(name - statement.tokens.first);
    for (const Substitutes& substitutes : statement.substitutes)
        if (Holds(substitutes.tokens, name))
            return substitutes.slots[static_cast<std::size_t>(name - substitutes.tokens.first)];
    for (std::size_t i = statement.tokens.size(); i < statement.slots.size(); ++i)
        if (statement.slots[i].list.first + statement.slots[i].index == name) return i;
    return SlotOfCopy(statement, name);
}

// Which slots the tokens stand for that come out of others when `its` is replaced; slots of those begin at `first`.
std::vector<std::size_t> SlotsOf(TokenSpan replaced, TokenSpan written, std::size_t first) {
    std::size_t its = 0;
    for (std::size_t i = 0; i < written.size(); ++i) its += written.KeywordAt(i) == Keyword::Its ? 1 : 0;
    const std::size_t size = its == 0 ? 1 : (replaced.size() + its - written.size()) / its;
    std::vector<std::size_t> slots;
    for (std::size_t i = 0; i < written.size(); ++i)
        slots.insert(slots.end(), written.KeywordAt(i) == Keyword::Its ? size : 1, first + i);
    slots.resize(replaced.size(), first);
    return slots;
}

void SubstituteHoles(Statement& statement, const Word& replaced, std::size_t literal) {
    const std::vector<StringPiece>& pieces = PiecesOf(replaced);
    const std::vector<StringPiece>& written = PiecesOf(statement.tokens.At(literal));
    const Token* at = statement.tokens.first + literal;
    const auto found =
        std::find_if(statement.slots.begin() + static_cast<std::ptrdiff_t>(statement.tokens.size()),
                     statement.slots.end(), [at](const Slot& slot) { return slot.use.at == at; });
    auto first = static_cast<std::size_t>(found - statement.slots.begin());
    for (std::size_t i = 0; i < pieces.size() && i < written.size(); ++i) {
        statement.substitutes.push_back(
            {pieces[i].tokens, SlotsOf(pieces[i].tokens, written[i].tokens, first)});
        first += written[i].tokens.size();
    }
}

// The value of a Global that has no type yet may be wrong, which is told elsewhere.
const Variable* FindVariableAnyway(const std::string& name) {
    try {
        return FindVariable(name);
    } catch (const Stop&) {
        return nullptr;
    }
}

// What the name means outside of expressions, or would mean in a statement that is wrong.
const void* MeaningOf(TokenSpan list, std::size_t index) {
    const std::string& name = list[index];
    const void* meanings[] = {FindVariableAnyway(name), FindCallable(name), FindClass(name)};
    const bool isType = index > 0 && list.SignAt(index - 1) == ':';
    if (list.SignAt(index + 1) == '(') std::swap(meanings[0], meanings[1]);
    if (isType) std::swap(meanings[0], meanings[2]);
    const auto* found =
        std::find_if(std::begin(meanings), std::end(meanings), [](const void* m) { return m != nullptr; });
    return found == std::end(meanings) ? nullptr : *found;
}

bool DeclaresVariable(Keyword keyword) {
    return Has(keyword, trait::variables) || keyword == Keyword::EachSeq;
}

// Names that are declared here: a wrong declaration must not be taken for a use of another one.
bool IsNewName(TokenSpan list, std::size_t index) {
    const Keyword keyword = list.KeywordAt(0);
    if (DeclaresVariable(keyword)) return index == 1;
    if (!Has(keyword, trait::routine)) return false;
    return index > 1 && (list.SignAt(index - 1) == '(' || list.SignAt(index - 1) == ',');
}

bool MayBeUse(const Slot& slot) {
    const Word& word = slot.list.At(slot.index);
    if (slot.use.meaning != nullptr || word.keyword != Keyword::None || !IsName(word.text)) return false;
    return !IsMember(slot.list, slot.index) && !IsNewName(slot.list, slot.index);
}

const void* Kept(const void* meaning) {
    const auto local = openLocals.find(static_cast<const Variable*>(meaning));
    return local == openLocals.end() ? meaning : local->second;
}

void EndLocal(NotedLocal& local, const Variable& variable) {
    local.variable = variable;
    local.variable.file = settings.currentFile;
    local.lastLine = settings.currentLine;
}

}  // namespace

void noting::Meaning(const Token* name, const void* meaning) {
    if (statements.empty() || name == nullptr) return;
    Statement& statement = statements.back();
    const std::size_t index = SlotOf(statement, name);
    if (index < statement.slots.size()) statement.slots[index].use.meaning = Kept(meaning);
}

void NoteDeclaration(const Variable& variable) {
    if (statements.empty()) return;
    for (Slot& slot : statements.back().slots) {
        if (slot.use.meaning != nullptr || slot.list[slot.index] != variable.name ||
            IsMember(slot.list, slot.index))
            continue;
        slot.use.meaning = Kept(&variable);
        slot.use.declares = true;
        return;
    }
}

void noting::Local(const Variable& variable) {
    NotedLocal& local = notedUses.locals.emplace_back();
    openLocals[&variable] = &local;
    EndLocal(local, variable);
    NoteDeclaration(variable);
}

void NoteLocalEnds(const Variable& variable) {
    if (openLocals.empty()) return;
    const auto local = openLocals.find(&variable);
    if (local == openLocals.end()) return;
    EndLocal(*local->second, variable);
    openLocals.erase(local);
}

void NoteAllLocalsEnd() {
    for (const auto& [variable, local] : openLocals) EndLocal(*local, *variable);
    openLocals.clear();
}

void noting::Type(TokenSpan tokens, const ValueType& type) {
    if (statements.empty() || tokens.empty() || !type.IsKnown() || type.Is(Base::Void)) return;
    Statement& statement = statements.back();
    const std::size_t first = SlotOf(statement, tokens.first), last = SlotOf(statement, tokens.last - 1);
    if (first > last || last >= statement.tokens.size()) return;
    notedUses.types.push_back({statement.tokens.Slice(first, last + 1), type});
}

StatementUses::StatementUses(TokenSpan tokens) : notes(settings.uses) {
    if (!notes) return;
    Statement& statement = statements.emplace_back();
    statement.tokens = tokens;
    for (std::size_t i = 0; i < tokens.size(); ++i)
        statement.slots.push_back({tokens, i, {tokens.first + i, -1, -1, nullptr, false}});
    for (std::size_t i = 0; i < tokens.size(); ++i)
        if (HasHoles(tokens.At(i))) AddHoles(statement, tokens.first + i);
}

StatementUses::~StatementUses() {
    if (!notes) return;
    for (Slot& slot : statements.back().slots) {
        if (MayBeUse(slot)) slot.use.meaning = Kept(MeaningOf(slot.list, slot.index));
        if (slot.use.meaning != nullptr) notedUses.uses.push_back(slot.use);
    }
    statements.pop_back();
}

void NoteSubstitution(TokenSpan substituted) {
    if (statements.empty()) return;
    Statement& statement = statements.back();
    statement.substitutes.push_back({substituted, SlotsOf(substituted, statement.tokens, 0)});
    const std::vector<std::size_t> slots = statement.substitutes.back().slots;
    for (std::size_t i = 0; i < substituted.size(); ++i)
        if (HasHoles(substituted.At(i)) && HasHoles(statement.tokens.At(slots[i])))
            SubstituteHoles(statement, substituted.At(i), slots[i]);
}
