// What the names of a program mean where they stand, for editors. Noted while statements are translated, and only when
// somebody asks for it (settings.uses).
#pragma once

#include <deque>
#include <vector>

#include "base/settings.h"
#include "base/token_span.h"
#include "symbols/symbols.h"

// A Local, parameter or loop variable, which outlives its scope here.
struct NotedLocal {
    Variable variable;
    int lastLine = 0;  // of its scope
};

// A name at a place.
struct NotedUse {
    const Token* at = nullptr;      // in the list of a file
    int from = -1, to = -1;         // in a hole: its bytes in the literal that stands there
    const void* meaning = nullptr;  // a NotedLocal, Variable, Routine or ClassInfo
    bool declares = false;
};

// The tokens of a file have a value of the type.
struct NotedType {
    TokenSpan tokens;
    ValueType type;
};

struct NotedUses {
    std::deque<NotedLocal> locals;
    std::vector<NotedUse> uses;  // a name may come more than once, the first time counts
    std::vector<NotedType> types;
};
extern NotedUses notedUses;

namespace noting {
void Meaning(const Token* name, const void* meaning);
void Local(const Variable& variable);
void Type(TokenSpan tokens, const ValueType& type);
}  // namespace noting

// The name, a window of one token, means this.
template <class Meaning>  // a Variable or Routine
void NoteUse(TokenSpan name, const Meaning& meaning) {
    if (settings.uses) noting::Meaning(name.first, &meaning);
}
// The value of the tokens has the type.
inline void NoteType(TokenSpan tokens, const ValueType& type) {
    if (settings.uses) noting::Type(tokens, type);
}
// The statement under way declares it.
void NoteDeclaration(const Variable& variable);
inline void NoteLocal(const Variable& variable) {
    if (settings.uses) noting::Local(variable);
}
// Here their scope ends.
void NoteLocalEnds(const Variable& variable);
void NoteAllLocalsEnd();

// While one lives its statement is under way. At its end names that nobody has asked about are looked up as well.
class StatementUses {
public:
    explicit StatementUses(TokenSpan tokens);
    ~StatementUses();
    StatementUses(const StatementUses&) = delete;
    StatementUses& operator=(const StatementUses&) = delete;

private:
    bool notes;
};
// These tokens are translated in place of the statement under way: its words `its`, the Strings with such words in their
// holes, and nothing else have been replaced.
void NoteSubstitution(TokenSpan substituted);
