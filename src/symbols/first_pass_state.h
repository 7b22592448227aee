// What the first pass knows while it reads one file, and the routines that its statements share.
#pragma once

#include <string>
#include <unordered_set>

#include "lexer/token_span.h"
#include "symbols/first_pass.h"

struct FirstPass {
    FirstPass(Declarations& lists, const std::string& path) : out(lists), source(path) {}

    Declarations& out;
    std::string source;
    bool again = false;  // collected before: nothing is registered or compared once more
    int line = 0;        // physical line of the statement, the place that declarations carry
    bool inExtern = false;
    std::string mainName;  // how this file spells Main, when it has it

    // The open Type or Element.
    bool inType = false;
    bool isPrivate = false;
    ClassInfo open;

    std::unordered_set<std::string> globals;  // of this file
    std::unordered_set<std::string> constants;
};

// One routine per declaration; each takes the statement's tokens, the keyword first.
void CollectImport(FirstPass& pass, TokenSpan tokens);
void CollectLinker(FirstPass& pass, TokenSpan tokens);
void CollectInclude(FirstPass& pass, TokenSpan tokens);

void CollectClass(FirstPass& pass, TokenSpan tokens);
void CollectEndClass(FirstPass& pass, TokenSpan tokens);
void CollectField(FirstPass& pass, TokenSpan tokens);
void CollectMethod(FirstPass& pass, TokenSpan tokens);
void CollectAccess(FirstPass& pass, TokenSpan tokens);

void CollectGlobal(FirstPass& pass, TokenSpan tokens);
void CollectConst(FirstPass& pass, TokenSpan tokens);
void CollectPreCalc(FirstPass& pass, TokenSpan tokens);

void CollectExtern(FirstPass& pass, TokenSpan tokens);
void CollectFunction(FirstPass& pass, TokenSpan tokens);

// Settles the parameters of the file's routines and writes the prototypes, once all its names are known.
void FinishRoutines(FirstPass& pass);

// Ends the run when Elements hold each other by value in a circle.
void CheckElementCycles();

// Reads `name [: type] [= value]` into a variable declared on the pass's line. The type stays Unknown
// without an annotation.
Variable ReadDeclaration(const FirstPass& pass, TokenSpan tokens);

[[noreturn]] void FailAlreadyDefined(const std::string& name);
