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

bool IsVisibleIn(const ScopeBranch& branch, const std::string& name) {
    const auto found = branch.visible.find(name);
    return found != branch.visible.end() && !found->second.empty();
}

bool IsRecorded(const std::string& name) {
    return std::any_of(localDefList.begin(), localDefList.end(),
                       [&name](const ScopeBranch& branch) { return IsVisibleIn(branch, name); });
}

bool IsRecordedOutside(const std::string& name) {
    return std::any_of(localDefList.begin(), std::prev(localDefList.end()),
                       [&name](const ScopeBranch& branch) { return IsVisibleIn(branch, name); });
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

void RefuseConstName(const std::string& name) {
    const auto found = symbols.constants.find(name);
    if (found == symbols.constants.end()) return;
    Variable& constant = found->second;
    if (StandsBefore(constant))
        ReportFatal("Syntax error: Variable '" + name +
                        "' conflicts with an already-declared Const (first come first served)",
                    Tokens{name}, DeclarationOf(name));
    constant.isTakenEarlier = true;
}

bool IsStored(const std::string& name) { return IsRecorded(name) || IsRecorded("kvl_" + name); }

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
Variable& Record(const std::string& name, const std::string& cppName, bool recorded,
                 std::vector<VisibleVariable>& visible) {
    ScopeBranch& branch = localDefList.back();
    Variable& variable = branch.storage.emplace_back();
    variable.name = name;
    variable.cppName = cppName;
    variable.line = settings.currentLine;
    if (!recorded) branch.leaves.back().listed.push_back(&variable);
    branch.leaves.back().variables.push_back(&variable);
    visible.push_back({&variable, branch.leaves.size() - 1});
    return variable;
}

bool IsTypedGlobal(const std::string& name) {
    const auto found = symbols.globals.find(name);
    return found != symbols.globals.end() && (found->second.typed || found->second.isPreCalc);
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
    NoteLocalsEnd(branch.leaves.back().variables);
    for (const Variable* variable : branch.leaves.back().variables) branch.visible[variable->name].pop_back();
    branch.leaves.pop_back();
}

std::size_t BlockCount() { return localDefList.empty() ? 0 : localDefList.back().leaves.size(); }

Variable& AddVarToScopeList(const std::string& name, const std::string& cppName) {
    DumpScopes(name);
    CheckCppWord(name);
    CheckKeyword(name);
    RefuseConstName(name);
    CheckName(name);
    if (IsClass(name)) FailAlreadyDefined(name);

    ScopeBranch& branch = localDefList.back();
    std::vector<VisibleVariable>& visible = branch.visible[name];
    const bool recorded = !visible.empty() || IsRecordedOutside(name);
    if (recorded) DumpMatch(name);
    if (branch.leaves.empty()) branch.leaves.emplace_back();
    if (!visible.empty() && visible.back().block + 1 == branch.leaves.size()) FailDeclaredTwice(name);
    Variable& variable = Record(name, cppName, recorded, visible);
    NoteLocal(variable);
    return variable;
}

Variable& AddOwnName(const std::string& name) {
    if (localDefList.back().leaves.empty()) localDefList.back().leaves.emplace_back();
    return Record(name, SafeName(name), IsRecorded(name), localDefList.back().visible[name]);
}

Elsewhere DeclarationOf(const std::string& name) {
    if (const Variable* local = FindLocal(name))
        return {settings.currentFile, local->line, name, declaredHere};
    if (const ClassInfo* cls = FindClass(name)) return {cls->sourceFile, cls->line, name, declaredHere};
    for (const auto* variables : {&symbols.globals, &symbols.constants}) {
        const auto found = variables->find(name);
        if (found != variables->end()) return {found->second.file, found->second.line, name, declaredHere};
    }
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

bool IsVariableInScope(const std::string& name) {
    const bool traced = settings.verbose && name == tracedName;
    if (traced) TraceBlocks(name);
    if (traced) TraceResult(name);
    return IsTypedGlobal(name) || symbols.constants.count(name) != 0 || IsStored(name);
}

const Variable* FindLocal(const std::string& name) {
    if (localDefList.empty() || atFileLevel != nullptr) return nullptr;
    const ScopeBranch& branch = localDefList.back();
    const auto found = branch.visible.find(name);
    if (found == branch.visible.end() || found->second.empty()) return nullptr;
    return found->second.back().variable;
}

const Variable* FindVariable(const std::string& name) {
    if (const Variable* local = FindLocal(name)) return local;
    if (currentClass) {
        if (const Variable* field = FindField(*currentClass, name)) return field;
        if (FindMethod(*currentClass, name) != nullptr) return nullptr;
    }
    return FindGlobal(name);
}

const Routine* FindCallable(const std::string& name) {
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

bool IsHidden(const std::string& name) {
    if (!localDefList.empty() && IsVisibleIn(localDefList.back(), name)) return true;
    const ClassInfo* cls = atFileLevel != nullptr ? atFileLevel->TextClass() : currentClass;
    if (cls == nullptr) return false;
    return cls->members.count(name) != 0 || cls->routines.count(name) != 0 || name == "InsertAfter" ||
           name == "InsertBefore";  // members that every Type has
}

bool WasInEndedBlock(const std::string& name) {
    if (localDefList.empty()) return false;
    const ScopeBranch& branch = localDefList.back();
    const HasName named{name};
    std::ptrdiff_t open = 0;
    for (const ScopeBlock& block : branch.leaves)
        open += std::count_if(block.variables.begin(), block.variables.end(), named);
    return std::count_if(branch.storage.begin(), branch.storage.end(), named) > open;
}
