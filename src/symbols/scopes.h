// The scope tree: which local variables exist where.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "base/report.h"
#include "symbols/symbols.h"

// What a name means in a routine.
struct VisibleVariable {
    Variable* variable = nullptr;  // null where the block of each that had it has ended
    std::size_t block = 0;         // index of its block in `leaves`
};
struct ScopeBlock {
    struct Declaration {
        Variable* variable;
        VisibleVariable* visible;  // of its name
        VisibleVariable before;    // what that was
    };
    std::vector<const Variable*> listed;  // as the scope rules see them
    std::vector<Declaration> variables;   // shadowing ones included
};
struct ScopeBranch {
    std::vector<ScopeBlock> leaves;  // open blocks, the last is the current one
    std::deque<Variable> storage;    // every variable of the routine, ended blocks included
    NameTable<VisibleVariable> visible;
};

extern std::deque<ScopeBranch> localDefList;  // one branch per open routine, the last is the current one

void ResetScopes();
void PushRoutineScope();
void PopRoutineScope();
void PushBlock();  // opens the routine's outermost block, too, when it has none yet
void PopBlock();   // leaves the routine's outermost block alone
std::size_t BlockCount();

// Declares a variable in the current block after the identifier and scope checks, each of which ends
// the run. Returns the record that look-ups find from here on, for the caller to fill in.
Variable& AddVarToScopeList(Token name, const std::string& cppName);
// The same without any check, for names that the compiler declares itself ("this").
Variable& AddOwnName(Token name);

// Where the name is declared that is in force here; line 0 when it is not.
Elsewhere DeclarationOf(Token name);

[[noreturn]] void FailDeclaredTwice(const std::string& name);
// The other declaration is that of the name, unless it is given.
[[noreturn]] void FailAlreadyDefined(const std::string& name, const Elsewhere& other = {});

// The second pass has come to a Const: ends the run when a variable before it has the name, and from here on
// no variable may take it.
void ReachConst(const std::string& name);

bool IsVariableInScope(Token name);

// The Local, parameter or loop variable that the name means here; null when there is none.
const Variable* FindLocal(Token name);
// Local, then Field of the Type whose Method is open, then Global, Const or PreCalc table. Null where the bare
// name means a Method of that Type.
const Variable* FindVariable(Token name);
// True when a block of the current routine that has ended declared the name.
bool WasInEndedBlock(const std::string& name);

// The class whose Method is being translated, for bare Field and Method names; null outside.
extern const ClassInfo* currentClass;

// What is called by the name: a Method of the open Type comes first, as it does in C++. Null when nothing is.
const Routine* FindCallable(Token name);

// While one lives, names mean what they mean at file level, outside all routines and Types. What is translated
// still goes to the place of the statement under way, where such a name may be hidden.
class FileLevelNames {
public:
    FileLevelNames();
    ~FileLevelNames();
    FileLevelNames(const FileLevelNames&) = delete;
    FileLevelNames& operator=(const FileLevelNames&) = delete;

    static bool InForce();
    // The class whose Method the text goes to.
    const ClassInfo* TextClass() const { return textClass; }

private:
    const ClassInfo* textClass;
    const ClassInfo* wasClass;
    const FileLevelNames* outer;
};

// Whether a Local or a member stands between the place of the statement under way and what the name means at
// file level.
bool IsHidden(Token name);
