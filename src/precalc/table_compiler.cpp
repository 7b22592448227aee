#include "precalc/table_compiler.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "base/settings.h"
#include "base/token_span.h"
#include "expressions/math_functions.h"
#include "lexer/lexer.h"
#include "precalc/table_functions.h"
#include "symbols/identifiers.h"

namespace {

constexpr int deepestNesting = 500;  // of parentheses, calls, indices and signs

// A number token: digits with a point or an exponent, or "$" and hexadecimal digits.
bool ReadNumber(const std::string& token, double& value) {
    if (token.empty() || (token[0] != '$' && !IsDigit(token[0]))) return false;
    const char* last = token.data() + token.size();
    if (token[0] == '$') {
        unsigned long long whole = 0;
        const auto read = std::from_chars(token.data() + 1, last, whole, 16);
        value = static_cast<double>(whole);
        return read.ptr == last && read.ec == std::errc();
    }
    const auto read = std::from_chars(token.data(), last, value);
    return read.ptr == last && read.ec == std::errc();
}

struct TableOperator {
    char sign;
    Keyword word;
    TableOp op;
    int level;
};

constexpr int loosest = 2;
const TableOperator operators[] = {
    {'+', Keyword::None, TableOp::Add, loosest}, {'-', Keyword::None, TableOp::Subtract, loosest},
    {'*', Keyword::None, TableOp::Multiply, 1},  {'/', Keyword::None, TableOp::Divide, 1},
    {'\0', Keyword::Mod, TableOp::Modulo, 1},
};

// Null for what is none of the level.
const TableOperator* OperatorOf(const Word& word, int level) {
    for (const TableOperator& op : operators)
        if (op.sign == word.sign && op.word == word.keyword && op.level == level) return &op;
    return nullptr;
}

// Instructions are appended while the tokens are read from left to right, so operands stand before
// their operator. Every routine leaves `at` behind what it has read. A mistake becomes the last instruction of its
// statement: `at` goes behind the tokens, and what routines still want to append is dropped.
class TableCompiler {
public:
    explicit TableCompiler(TableProgram& target) : program(target) {}

    void Statement(TokenSpan statement, int statementLine) {
        tokens = statement;
        whole = statement;
        line = statementLine;
        at = 0;
        depth = 0;
        failed = false;
        if (tokens.KeywordAt(0) == Keyword::For) return For();
        if (tokens.KeywordAt(0) == Keyword::Next) return Next();
        const bool hasEquals = std::find(tokens.begin(), tokens.end(), "=") != tokens.end();
        const bool assigns = (tokens[1] == "[" && hasEquals) || tokens[1] == "=";
        if (!assigns) return FailStatement(0);
        Assignment();
    }

    void Finish() {
        for (failed = false; !loops.empty(); failed = false) {
            line = loops.back().line;
            tokens = loops.back().header;
            at = 0;
            program.code[loops.back().enter].target = program.code.size();
            loops.pop_back();
            Fail("PreCalc: For without matching Next (block ended inside a loop)");
        }
        Emit(TableOp::End);
    }

private:
    struct Loop {
        std::string variable;
        std::size_t slot = 0;
        std::size_t enter = 0;  // its Enter instruction, or the mistake in its place
        int line = 0;
        TokenSpan header;
    };

    TableProgram& program;
    std::vector<Loop> loops;
    TokenSpan whole;   // the statement
    TokenSpan tokens;  // what is read of it
    std::size_t at = 0;
    int line = 0;
    int nesting = 0;
    std::size_t depth = 0;  // of the stack
    bool failed = false;    // the statement is wrong
    TableInstruction dropped;

    // The token that comes next, or else the last one.
    TokenSpan Coming() const {
        if (!AtEnd()) return tokens.Slice(at, at + 1);
        return tokens.empty() ? whole.From(whole.size() - 1) : tokens.From(tokens.size() - 1);
    }

    TokenSpan Taken() const { return tokens.Slice(at - 1, at); }

    void Fail(const Wording& message) { Fail(message, Coming()); }
    void Fail(const Wording& message, TokenSpan about) {
        if (failed) return;
        TableInstruction& fail = Emit(TableOp::Fail);
        fail.operand = program.messages.size();
        fail.about = about;
        program.messages.push_back(message);
        failed = true;
        at = tokens.size();
    }

    void FailStatement(std::size_t token) {
        Fail("PreCalc: only For/Next and assignments are allowed here (got '" + tokens[token] + "')" +
                 Hint{"What takes more goes into a Function that fills a Global array"},
             tokens.Slice(token, token + 1));
    }

    bool AtEnd() const { return at >= tokens.size(); }

    bool Take(const char* text) {
        if (tokens[at] != text) return false;
        ++at;
        return true;
    }

    void ExpectEnd() {
        if (!AtEnd()) Fail("PreCalc: unexpected '" + tokens[at] + "' at the end of the statement");
    }

    // `change` is what the instruction does to the height of the stack.
    TableInstruction& Emit(TableOp op, int change = 0) {
        if (failed) return dropped;
        depth += static_cast<std::size_t>(change);
        program.stackSize = std::max(program.stackSize, depth);
        program.code.emplace_back();
        program.code.back().op = op;
        program.code.back().line = line;
        program.code.back().about = whole;
        return program.code.back();
    }

    void Constant(double value) { Emit(TableOp::Constant, 1).value = value; }

    // For name [: type] = start To end [Step step]
    void For() {
        Loop loop = {tokens[1], program.variableCount, 0, line, tokens};
        program.variableCount += 3;
        ForParts();
        Emit(TableOp::Enter, -3).operand = loop.slot;
        loop.enter = program.code.size() - 1;
        loops.push_back(loop);
    }

    void ForParts() {
        at = 2;
        if (!IsName(tokens[1]) || (Take(":") && !IsName(tokens[at++])))
            return Fail("PreCalc: For syntax is 'For var:Int = start To end [Step s]'");
        if (!Take("=")) return Fail("PreCalc: For needs '=' (e.g. For i:Int = 0 To 15)");
        const std::size_t to = tokens.Find(Keyword::To, at), step = tokens.Find(Keyword::Step, at);
        if (to == noToken) return Fail("PreCalc: For without 'To'");
        Part(whole.Slice(at, to));
        Part(whole.Slice(to + 1, step));
        if (step != noToken)
            Part(whole.From(step + 1));
        else
            Constant(1);
    }

    // One expression that fills the whole window.
    void Part(TokenSpan window) {
        tokens = window;
        at = 0;
        Expression();
        ExpectEnd();
    }

    // Next [name]
    void Next() {
        if (loops.empty()) return Fail("PreCalc: Next without For");
        const Loop& loop = loops.back();
        at = tokens[1] == loop.variable ? 2 : 1;
        ExpectEnd();
        TableInstruction& next = Emit(TableOp::Next);
        next.operand = loop.slot;
        next.target = loop.enter + 1;
        program.code[loop.enter].target = program.code.size();
        loops.pop_back();
    }

    // array[index]... = expression
    void Assignment() {
        at = 1;
        Indices(tokens[0]);
        if (!Take("=")) return FailStatement(AtEnd() ? 0 : at);
        Expression();
        ExpectEnd();
        Emit(TableOp::Store, -2);
    }

    // [index]... behind the array's name; the position in the table ends up on the stack.
    void Indices(const std::string& name) {
        if (name != program.name)
            return Fail("PreCalc: unknown array '" + name + "' (this block builds '" + program.name + "')",
                        Taken());
        const std::size_t begin = at - 1;
        std::size_t count = 0;
        for (; Take("["); ++count) {
            Expression();
            if (!Take("]")) Fail("PreCalc: missing ']'");
        }
        if (count != program.sizes.size())
            Fail("PreCalc: '" + name + "' has " + std::to_string(program.sizes.size()) +
                     " dimension(s), but was indexed with " + std::to_string(count),
                 tokens.Slice(begin, at));
        Emit(TableOp::Address, 1 - static_cast<int>(count)).about = tokens.Slice(begin, at);
    }

    // term {("+" | "-") term} , where a term is factor {("*" | "/" | "mod") factor}
    void Expression(int level = loosest) {
        if (level == 0) return Factor();
        Expression(level - 1);
        while (const TableOperator* op = OperatorOf(tokens.At(at), level)) {
            const std::size_t operand = ++at;
            Expression(level - 1);
            TableInstruction& emitted = Emit(op->op, -1);
            if (op->op == TableOp::Divide) emitted.about = tokens.Slice(operand, at);
        }
    }

    // number | ("-" | "+") factor | "(" expression ")" | variable | array element | call
    void Factor() {
        if (AtEnd()) Fail("PreCalc: unexpected end of expression");
        if (++nesting > deepestNesting)
            Fail("PreCalc: the expression is nested too deeply. Give a part of it to a variable first");
        if (Take("-")) {
            Factor();
            Emit(TableOp::Negate);
        } else if (Take("+")) {
            Factor();
        } else if (Take("(")) {
            Expression();
            if (!Take(")")) Fail("PreCalc: missing ')'");
        } else if (!Number()) {
            Named(tokens[at++]);
        }
        --nesting;
    }

    // A point that opens or ends a number is a token of its own.
    bool Number() {
        double value = 0;
        if (ReadNumber(tokens[at], value)) {
            ++at;
            Take(".");
        } else if (tokens[at] == "." && at + 1 < tokens.size() && ReadNumber("0." + tokens[at + 1], value)) {
            at += 2;
        } else {
            return false;
        }
        Constant(value);
        return true;
    }

    void Named(const std::string& name) {
        if (tokens[at] == "(" && IsName(name)) return Call(name);
        if (tokens[at] == "[" || name == program.name) {
            Indices(name);
            Emit(TableOp::Load);
            return;
        }
        for (auto loop = loops.rbegin(); loop != loops.rend(); ++loop) {
            if (loop->variable != name) continue;
            Emit(TableOp::Variable, 1).operand = loop->slot;
            return;
        }
        if (Lower(name) == "pi") return Constant(tablePi);
        Fail("PreCalc: unknown name '" + name +
                 "' - only numbers, loop variables, math functions and the array being built are allowed",
             Taken());
    }

    // name "(" [expression {"," expression}] ")"
    void Call(const std::string& name) {
        const std::string lowerName = Lower(name);
        const MathFunction* math = FindMath(lowerName);
        if (math == nullptr)
            return Fail(
                "PreCalc: '" + name +
                    "' isn't allowed here - a PreCalc block is compile-time math only (For/Next, numbers, "
                    "and Sin/Cos/Sqrt/...)",
                Taken());
        const TableFunction* function = FindTableFunction(lowerName);
        if (function == nullptr) return Fail("PreCalc: unknown function '" + name + "'", Taken());
        const int expected = math->arguments;
        const std::size_t codeBefore = program.code.size();
        const std::size_t depthBefore = depth;
        const std::size_t begin = at - 1;
        const int count = Arguments(name);
        if (expected == 0 && !failed) {  // whatever stands between the parentheses
            program.code.resize(codeBefore);
            depth = depthBefore;
            return Constant(function->value);
        }
        if (count != expected)
            Fail("PreCalc: '" + name + "' expects " + std::to_string(expected) + " argument(s)",
                 tokens.Slice(begin, at));
        TableInstruction& call = Emit(expected == 1 ? TableOp::CallOne : TableOp::CallTwo, 1 - expected);
        call.one = function->one;
        call.two = function->two;
    }

    int Arguments(const std::string& name) {
        ++at;
        if (Take(")")) return 0;
        int count = 0;
        do {
            Expression();
            ++count;
        } while (Take(","));
        if (!Take(")")) Fail("PreCalc: missing ')' after '" + name + "'");
        return count;
    }
};

}  // namespace

void CompileTable(TableProgram& program, const std::vector<TokenSpan>& body, const std::vector<int>& lines) {
    TableCompiler compiler(program);
    for (std::size_t i = 0; i < body.size(); ++i) {
        const TokenSpan whole = body[i];
        if (settings.verbose) ShowSplit(whole.Text());
        if (whole.SignAt(0) == '/' && whole.SignAt(1) == '/') continue;
        for (std::size_t from = 0; from < whole.size();) {
            std::size_t bar = from;
            while (bar < whole.size() && whole.SignAt(bar) != '|') ++bar;
            if (bar > from) compiler.Statement(whole.Slice(from, bar), lines[i]);
            from = bar + 1;
        }
    }
    compiler.Finish();
}
