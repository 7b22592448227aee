// What the first pass knows while it reads one file, and the routines that its statements share.
#pragma once

#include <string>
#include <unordered_set>

#include "base/token_span.h"
#include "collect/first_pass.h"

struct FirstPass {
    FirstPass(Declarations& lists, IncludeFollower includes) : out(lists), follow(includes) {}

    Declarations& out;
    IncludeFollower follow;
    bool goesOn = true;
    int line = 0;  // physical line of the statement, the place that declarations carry
    bool inExtern = false;

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

// Reads `name [: type] [= value]` into a variable declared on the pass's line. The type stays Unknown
// without an annotation.
Variable ReadDeclaration(const FirstPass& pass, TokenSpan tokens);
