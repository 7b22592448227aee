#include "symbols/scopes.h"

#include <algorithm>
#include <iterator>

#include "base/report.h"
#include "base/run.h"
#include "base/settings.h"
#include "symbols/identifiers.h"
#include "symbols/uses.h"

std::deque<ScopeBranch> localDefList;
const ClassInfo* currentClass = nullptr;

namespace {

constexpr char tracedName[] = "scopedVar";

const FileLevelNames* atFileLevel = nullptr;

const PartOfRun partOfRun(localDefList, currentClass, atFileLevel);

std::string Number(std::size_t value) { return std::to_string(value); }

// Longer lists would make the notes grow with the square of the program.
std::string Listed(const std::vector<const Variable*>& variables) {
    constexpr std::size_t most = 100;
    std::string list;
    for (std::size_t i = 0; i < variables.size() && i < most; ++i) list += "'" + variables[i]->name + "' ";
    return variables.size() > most ? list + "..." : list;
}

void DumpScopes(const std::string& name) {
    if (!settings.verbose) return;
    Say("DEBUG AddVarToScopeList ENTRY: newVar='" + name + "'");
    Say("  localDefList.size()=" + Number(localDefList.size()));
    for (std::size_t level = 0; level < localDefList.size(); ++level) {
        const std::vector<ScopeBlock>& leaves = localDefList[level].leaves;
        Say("  Scope " + Number(level) + " has " + Number(leaves.size()) + " blocks:");
        for (std::size_t block = 0; block < leaves.size(); ++block) {
            const std::vector<const Variable*>& listed = leaves[block].listed;
            Say("    Block " + Number(block) + " has " + Number(listed.size()) + " vars: " + Listed(listed));
        }
    }
}

struct HasName {
    const std::string& name;
    bool operator()(const Variable* variable) const { return variable->name == name; }
    bool operator()(const Variable& variable) const { return variable.name == name; }
};

// Where a name is recorded: the outermost level and block that has it.
struct Match {
    std::size_t level = 0;
    std::size_t block = 0;
};

Variable* FindIn(const ScopeBranch& branch, Token name) {
    const VisibleVariable* visible = branch.visible.Find(name);
    return visible == nullptr ? nullptr : visible->variable;
}

bool IsRecorded(Token name) {
    return std::any_of(localDefList.begin(), localDefList.end(),
                       [name](const ScopeBranch& branch) { return FindIn(branch, name) != nullptr; });
}

bool IsRecordedOutside(Token name) {
    return std::any_of(localDefList.begin(), std::prev(localDefList.end()),
                       [name](const ScopeBranch& branch) { return FindIn(branch, name) != nullptr; });
}

Match FindRecord(const std::string& name) {
    Match match;
    for (; match.level < localDefList.size(); ++match.level) {
        const std::vector<ScopeBlock>& leaves = localDefList[match.level].leaves;
        for (match.block = 0; match.block < leaves.size(); ++match.block) {
            const std::vector<const Variable*>& listed = leaves[match.block].listed;
            if (std::any_of(listed.begin(), listed.end(), HasName{name})) return match;
        }
    }
    return match;
}

void DumpMatch(const std::string& name) {
    if (!settings.verbose) return;
    const Match match = FindRecord(name);
    const std::size_t blocks = localDefList[match.level].leaves.size();
    const bool isCurrentFunction = match.level + 1 == localDefList.size();
    const bool isCurrentBlock = match.block + 1 == blocks;
    Say("DEBUG AddVarToScopeList: Found match '" + name + "' == '" + name + "'");
    Say("  isCurrentFunction=" + Number(isCurrentFunction) + " isCurrentBlock=" + Number(isCurrentBlock));
    Say("  scopeLevel=" + Number(match.level) + " localDefList.size()=" + Number(localDefList.size()));
    Say("  i=" + Number(match.block) + " scopeBranch.leaves.size()=" + Number(blocks));
}

bool StandsBefore(const Variable& constant) {
    return constant.isReached ||
           (constant.line <= settings.currentLine && constant.file == settings.currentFile);
}

void RefuseConstName(Token name) {
    Variable* constant = symbols.constants.Find(name);
    if (constant == nullptr) return;
    if (StandsBefore(*constant))
        ReportFatal("Syntax error: Variable '" + name->text +
                        "' conflicts with an already-declared Const (first come first served)",
                    Tokens{name}, DeclarationOf(name));
    constant->isTakenEarlier = true;
}

bool IsStored(Token name) { return IsRecorded(name) || IsRecorded("kvl_" + name->text); }

std::string Joined(const std::vector<const Variable*>& variables) {
    std::string text;
    for (const Variable* variable : variables) text += (text.empty() ? "" : ", ") + variable->name;
    return text;
}

void TraceBlocks(const std::string& name) {
    Say("IsVariableInScope('" + name + "') called");
    const std::vector<ScopeBlock> none;
    const std::vector<ScopeBlock>& leaves = localDefList.empty() ? none : localDefList.back().leaves;
    Say("  Current function has " + Number(leaves.size()) + " block scopes");
    for (std::size_t block = 0; block < leaves.size(); ++block) {
        const std::vector<const Variable*>& listed = leaves[block].listed;
        Say("  Scope " + Number(block) + " has " + Number(listed.size()) + " variables: " + Joined(listed));
    }
}

void TraceResult(const std::string& name) {
    if (IsStored(name)) {
        const std::string stored = IsRecorded(name) ? name : "kvl_" + name;
        Say("  Found '" + name + "' in scope index " + Number(FindRecord(stored).block));
    } else {
        Say("  Variable '" + name + "' NOT found in any scope");
    }
}

// Makes the record in the current block. The variable is listed once, where it was met first; `visible` is what
// it means in the routine.
Variable& Record(Token name, const std::string& cppName, bool recorded, VisibleVariable& visible) {
    ScopeBranch& branch = localDefList.back();
    Variable& variable = branch.storage.emplace_back();
    variable.name = name->text;
    variable.cppName = cppName;
    variable.line = settings.currentLine;
    if (!recorded) branch.leaves.back().listed.push_back(&variable);
    branch.leaves.back().variables.push_back({&variable, &visible, visible});
    visible = {&variable, branch.leaves.size() - 1};
    return variable;
}

bool IsTypedGlobal(Token name) {
    const Variable* global = symbols.globals.Find(name);
    return global != nullptr && (global->typed || global->isPreCalc);
}

}  // namespace

void ResetScopes() {
    NoteAllLocalsEnd();
    localDefList.clear();
    currentClass = nullptr;
}

void PushRoutineScope() { localDefList.emplace_back(); }

void PopRoutineScope() {
    NoteAllLocalsEnd();
    if (!localDefList.empty()) localDefList.pop_back();
}

void PushBlock() {
    if (localDefList.empty()) return;
    std::vector<ScopeBlock>& leaves = localDefList.back().leaves;
    if (leaves.empty()) leaves.emplace_back();
    leaves.emplace_back();
}

void PopBlock() {
    if (BlockCount() < 2) return;
    ScopeBranch& branch = localDefList.back();
    std::vector<ScopeBlock::Declaration>& ended = branch.leaves.back().variables;
    for (; !ended.empty(); ended.pop_back()) {
        NoteLocalEnds(*ended.back().variable);
        *ended.back().visible = ended.back().before;
    }
    branch.leaves.pop_back();
}

std::size_t BlockCount() { return localDefList.empty() ? 0 : localDefList.back().leaves.size(); }

Variable& AddVarToScopeList(Token name, const std::string& cppName) {
    DumpScopes(name);
    CheckCppWord(name);
    CheckKeyword(name);
    RefuseConstName(name);
    CheckName(name);
    if (IsClass(name)) FailAlreadyDefined(name);

    ScopeBranch& branch = localDefList.back();
    VisibleVariable& visible = branch.visible[name];
    const bool isShadowing = visible.variable != nullptr;
    const bool recorded = isShadowing || IsRecordedOutside(name);
    if (recorded) DumpMatch(name);
    if (branch.leaves.empty()) branch.leaves.emplace_back();
    if (isShadowing && visible.block + 1 == branch.leaves.size()) FailDeclaredTwice(name);
    Variable& variable = Record(name, cppName, recorded, visible);
    NoteLocal(variable);
    return variable;
}

Variable& AddOwnName(Token name) {
    if (localDefList.back().leaves.empty()) localDefList.back().leaves.emplace_back();
    return Record(name, SafeName(name), IsRecorded(name), localDefList.back().visible[name]);
}

Elsewhere DeclarationOf(Token name) {
    if (const Variable* local = FindLocal(name))
        return {settings.currentFile, local->line, name, declaredHere};
    if (const ClassInfo* cls = FindClass(name)) return {cls->sourceFile, cls->line, name, declaredHere};
    for (const auto* variables : {&symbols.globals, &symbols.constants})
        if (const Variable* variable = variables->Find(name))
            return {variable->file, variable->line, name, declaredHere};
    const Routine* routine = FindFunction(name);
    if (routine == nullptr) routine = FindUserlibFunction(name);
    if (routine == nullptr) return {};
    return {routine->file, routine->line, routine->name, declaredHere};
}

void FailAlreadyDefined(const std::string& name, const Elsewhere& other) {
    ReportFatal("Identifier '" + name + "' is already defined.", Tokens{name},
                other.line != 0 ? other : DeclarationOf(name));
}

void FailDeclaredTwice(const std::string& name) {
    ReportFatal("Syntax error: Variable '" + name + "' is already declared in this scope", Tokens{name},
                DeclarationOf(name));
}

void ReachConst(const std::string& name) {
    Variable& constant = symbols.constants[name];
    if (constant.isTakenEarlier)
        ReportFatal("Syntax error: Const '" + name +
                        "' conflicts with an already-declared Variable (first come first served)",
                    Tokens{name});
    constant.isReached = true;
}

bool IsVariableInScope(Token name) {
    const bool traced = settings.verbose && name->text == tracedName;
    if (traced) TraceBlocks(name);
    if (traced) TraceResult(name);
    return IsTypedGlobal(name) || symbols.constants.Has(name) || IsStored(name);
}

const Variable* FindLocal(Token name) {
    if (localDefList.empty() || atFileLevel != nullptr) return nullptr;
    return FindIn(localDefList.back(), name);
}

const Variable* FindVariable(Token name) {
    if (const Variable* local = FindLocal(name)) return local;
    if (currentClass) {
        if (const Variable* field = FindField(*currentClass, name)) return field;
        if (FindMethod(*currentClass, name) != nullptr) return nullptr;
    }
    return FindGlobal(name);
}

const Routine* FindCallable(Token name) {
    const Routine* routine = currentClass != nullptr ? FindMethod(*currentClass, name) : nullptr;
    if (routine == nullptr) routine = FindFunction(name);
    return routine != nullptr ? routine : FindUserlibFunction(name);
}

FileLevelNames::FileLevelNames()
    : textClass(atFileLevel != nullptr ? atFileLevel->textClass : currentClass),
      wasClass(currentClass),
      outer(atFileLevel) {
    atFileLevel = this;
    currentClass = nullptr;
}

FileLevelNames::~FileLevelNames() {
    atFileLevel = outer;
    currentClass = wasClass;
}

bool FileLevelNames::InForce() { return atFileLevel != nullptr; }

bool IsHidden(Token name) {
    if (!localDefList.empty() && FindIn(localDefList.back(), name) != nullptr) return true;
    const ClassInfo* cls = atFileLevel != nullptr ? atFileLevel->TextClass() : currentClass;
    if (cls == nullptr) return false;
    return cls->members.Has(name) || cls->routines.Has(name) || name->text == "InsertAfter" ||
           name->text == "InsertBefore";  // members that every Type has
}

bool WasInEndedBlock(const std::string& name) {
    if (localDefList.empty()) return false;
    const ScopeBranch& branch = localDefList.back();
    const HasName named{name};
    std::ptrdiff_t open = 0;
    for (const ScopeBlock& block : branch.leaves)
        for (const ScopeBlock::Declaration& declared : block.variables) open += named(*declared.variable);
    return std::count_if(branch.storage.begin(), branch.storage.end(), named) > open;
}
