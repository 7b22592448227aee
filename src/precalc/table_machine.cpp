#include "precalc/table_machine.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

constexpr long long stepLimit = 100000000;
constexpr double tolerance = 0.000000001;  // lets steps such as 0.1 reach their end

// Whether a loop, of which its variable, end and step are kept, has another round.
bool HasRound(const double* loop) {
    return loop[2] >= 0 ? loop[0] <= loop[1] + tolerance : loop[0] >= loop[1] - tolerance;
}

inline double Calculated(const TableInstruction& at, double a, double b) {
    switch (at.op) {
        case TableOp::Add:
            return a + b;
        case TableOp::Subtract:
            return a - b;
        case TableOp::Multiply:
            return a * b;
        case TableOp::Modulo:
            return std::fmod(a, b);
        default:
            if (b == 0.0) FailInBlock(at, "PreCalc: division by zero");
            return a / b;
    }
}

// The whole number an index stands for: what is left of the point, after making up for rounding.
double WholeIndex(double index) { return std::trunc(index < 0 ? index - tolerance : index + tolerance); }

[[noreturn]] void FailIndex(const TableInstruction& at, double index, long long size, std::size_t dimension) {
    FailInBlock(at, "PreCalc: index " + NumberText(index) + " out of range 0.." + std::to_string(size - 1) +
                        " (dimension " + std::to_string(dimension) + ")");
}

// The position of the item whose indices begin at `indices`.
double Position(const TableProgram& program, const TableInstruction& at, const double* indices) {
    double position = 0;
    for (std::size_t k = 0; k < program.sizes.size(); ++k) {
        const double index = WholeIndex(indices[k]);
        const auto size = static_cast<double>(program.sizes[k]);
        if (!(index >= 0 && index < size)) FailIndex(at, index, program.sizes[k], k);
        position = position * size + index;
    }
    return position;
}

std::size_t ItemCount(const TableProgram& program) {
    std::size_t count = 1;
    for (const long long size : program.sizes) count *= static_cast<std::size_t>(size);
    return count;
}

void CountStep(long long& steps, const TableInstruction& at) {
    if (++steps > stepLimit) FailInBlock(at, "PreCalc: too many iterations (possible infinite loop)");
}

}  // namespace

bool FitsInt(double value) {
    if (std::isnan(value)) return true;
    const double rounded = std::round(value);
    return rounded >= std::numeric_limits<int>::min() && rounded <= std::numeric_limits<int>::max();
}

std::string NumberText(double value) {
    if (std::isnan(value)) return "nan";  // whose sign depends on the machine
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 17);
    return {text, end.ptr};
}

TableValues RunTable(const TableProgram& program) {
    TableValues values;
    values.items.resize(ItemCount(program));

    std::vector<double> stack(program.stackSize + 1);
    std::vector<double> variables(program.variableCount);
    const std::size_t dimensions = program.sizes.size();
    long long steps = 0;
    double* top = stack.data();  // behind the topmost value
    const TableInstruction* const code = program.code.data();
    for (const TableInstruction* at = code;; ++at) {
        switch (at->op) {
            case TableOp::Constant:
                *top++ = at->value;
                break;
            case TableOp::Variable:
                *top++ = variables[at->operand];
                break;
            case TableOp::Address:
                top -= dimensions;
                *top = Position(program, *at, top);
                ++top;
                break;
            case TableOp::Load:
                top[-1] = values.items[static_cast<std::size_t>(top[-1])];
                break;
            case TableOp::Store:
                top -= 2;
                values.items[static_cast<std::size_t>(top[0])] = top[1];
                if (!program.isDouble && !FitsInt(top[1])) values.wideInt = at;
                CountStep(steps, *at);
                break;
            case TableOp::Add:
            case TableOp::Subtract:
            case TableOp::Multiply:
            case TableOp::Divide:
            case TableOp::Modulo:
                --top;
                top[-1] = Calculated(*at, top[-1], top[0]);
                break;
            case TableOp::Negate:
                top[-1] = -top[-1];
                break;
            case TableOp::CallOne:
                top[-1] = at->one(top[-1]);
                break;
            case TableOp::CallTwo:
                --top;
                top[-1] = at->two(top[-1], top[0]);
                break;
            case TableOp::Enter:
                top -= 3;
                std::copy(top, top + 3, &variables[at->operand]);
                CountStep(steps, *at);
                if (!HasRound(&variables[at->operand])) at = code + at->target - 1;
                break;
            case TableOp::Next:
                variables[at->operand] += variables[at->operand + 2];
                CountStep(steps, *at);
                if (HasRound(&variables[at->operand])) at = code + at->target - 1;
                break;
            case TableOp::Fail:
                FailInBlock(*at, program.messages[at->operand]);
            case TableOp::End:
                return values;
        }
    }
}
