// A PreCalc block in its compiled form: a flat list of instructions for a stack of doubles. What is wrong in a
// statement is an instruction, too: it is reported when the evaluation comes to it, and never when it does not.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/token_span.h"
#include "base/wording.h"

enum class TableOp : unsigned char {
    Constant,  // pushes value
    Variable,  // pushes variables[operand]
    Address,   // replaces one index per dimension by the position in the table; checks the ranges
    Load,      // replaces a position by the item there
    Store,     // takes a value and a position; ends an assignment statement
    Add,
    Subtract,
    Multiply,
    Divide,
    Modulo,
    Negate,
    CallOne,
    CallTwo,
    Enter,  // takes start, end and step of a For; goes to target when there is no round
    Next,   // adds the step; goes to target when there is another round
    Fail,   // reports messages[operand]
    End,
};

struct TableInstruction {
    TableOp op = TableOp::End;
    int line = 0;             // of the source
    TokenSpan about;          // the tokens that it comes from
    std::size_t operand = 0;  // loop: its variable, which the end and the step of the loop follow
    std::size_t target = 0;   // instruction to go to
    double value = 0;
    double (*one)(double) = nullptr;
    double (*two)(double, double) = nullptr;
};

struct TableProgram {
    std::string name;
    bool isDouble = false;
    std::vector<long long> sizes;
    std::vector<TableInstruction> code;
    std::vector<Wording> messages;
    std::size_t variableCount = 0;
    std::size_t stackSize = 0;
};

// Reports the message for an instruction and ends the run.
[[noreturn]] void FailInBlock(const TableInstruction& at, const Wording& message);
