// PreCalc blocks: tables that are computed while the program is translated.
#pragma once

#include <string>
#include <vector>

#include "base/token_span.h"

struct PreCalcTable {
    std::string name;  // as written
    bool isDouble = false;
    std::vector<long long> sizes;
    std::string variable;    // "int KVL_sq[4]"
    std::string definition;  // "int KVL_sq[4] = { 0, 1, 4, 9 };", for the header
};

// Checks the opening line of a block; whatever is wrong with it ends the run. `topLevel` is false inside
// a Function, a Method or a Type.
void CheckPreCalcHeader(TokenSpan header, bool topLevel);

// Computes the table of a block whose header passed the check. `body` holds the lines or statements
// between header and EndPreCalc, `bodyLines` their line numbers. An error ends the run with
// settings.currentLine on the line at fault.
PreCalcTable EvaluatePreCalc(TokenSpan header, const std::vector<TokenSpan>& body,
                             const std::vector<int>& bodyLines);
