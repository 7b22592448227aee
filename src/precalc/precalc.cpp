#include "precalc/precalc.h"

#include <cmath>
#include <cstdlib>

#include "base/report.h"
#include "base/settings.h"
#include "precalc/table_compiler.h"
#include "precalc/table_machine.h"
#include "symbols/identifiers.h"

void FailInBlock(const TableInstruction& at, const Wording& message) {
    settings.currentLine = at.line;
    ReportFatal(message, at.about);
}

namespace {

constexpr long long mostItems = 10000000;  // what a C++ compiler can still take as an initialiser
constexpr std::size_t mostDimensions = 16;

bool IsDoubleType(const std::string& type) {
    return type == "Double" || type == "double" || type == "Float" || type == "float";
}

long long ReadSize(const std::string& token) { return std::strtoll(token.c_str(), nullptr, 10); }

std::vector<long long> ReadSizes(TokenSpan header) {
    std::vector<long long> sizes;
    for (std::size_t i = 4; header[i] == "["; i += 3) sizes.push_back(ReadSize(header[i + 1]));
    return sizes;
}

[[noreturn]] void FailHeader() {
    ReportFatal(
        "PreCalc header must be:  PreCalc <name>:<Int|Double>[<size>]  (add more [size] for extra "
        "dimensions)");
}

void CheckSizes(const std::string& name, const std::vector<long long>& sizes) {
    if (sizes.size() > mostDimensions)
        ReportFatal(
            "PreCalc array '" + name + "' has more than " + std::to_string(mostDimensions) + " dimensions",
            Tokens{name});
    long long count = 1;
    for (const long long size : sizes) {
        if (size > mostItems / count)
            ReportFatal("PreCalc array '" + name + "' is too large: a table holds at most " +
                            std::to_string(mostItems) + " values",
                        Tokens{name});
        count *= size;
    }
}

// A value as an initialiser; infinities and the like have no literal, and "-0" would be a whole number.
std::string DoubleText(double value) {
    if (std::isnan(value)) return "std::numeric_limits<double>::quiet_NaN()";
    if (std::isinf(value))
        return value > 0 ? "std::numeric_limits<double>::infinity()"
                         : "-std::numeric_limits<double>::infinity()";
    if (value == 0.0 && std::signbit(value)) return "-0.0";
    return NumberText(value);
}

std::string IntText(double value) { return std::to_string(std::isnan(value) ? 0 : std::llround(value)); }

// { { 1, 2 }, { 3, 4 } }
void AppendLevel(std::string& text, const TableProgram& program, const TableValues& values,
                 std::size_t dimension, const double*& item) {
    const bool innermost = dimension + 1 == program.sizes.size();
    text += "{ ";
    for (long long i = 0; i < program.sizes[dimension]; ++i) {
        if (i > 0) text += ", ";
        if (!innermost) {
            AppendLevel(text, program, values, dimension + 1, item);
            continue;
        }
        const double value = *item++;
        if (!program.isDouble && !FitsInt(value))
            FailInBlock(*values.wideInt,
                        "PreCalc: the value " + NumberText(value) + " of '" + program.name +
                            "' does not fit an Int (-2147483648 to 2147483647); make the table a Double one");
        text += program.isDouble ? DoubleText(value) : IntText(value);
    }
    text += " }";
}

std::string VariableText(const TableProgram& program) {
    std::string text = (program.isDouble ? "double " : "int ") + SafeName(program.name);
    for (const long long size : program.sizes) text += "[" + std::to_string(size) + "]";
    return text;
}

std::string Definition(const TableProgram& program, const TableValues& values) {
    std::string text = VariableText(program) + " = ";
    const double* item = values.items.data();
    AppendLevel(text, program, values, 0, item);
    return text + ";";
}

}  // namespace

void CheckPreCalcHeader(TokenSpan header, bool topLevel) {
    if (!topLevel) ReportFatal("PreCalc must be at the top level (not inside a Function, Method or Type)");
    if (header.size() < 7 || header[2] != ":" || header[4] != "[") FailHeader();
    std::size_t i = 4;
    for (; header[i] == "["; i += 3) {
        if (ReadSize(header[i + 1]) < 1)
            ReportFatal(
                "PreCalc array size must be a positive whole number" +
                    Hint{IsName(header[i + 1]) ? "No Const is known here yet: write the number itself" : ""},
                header.Slice(i + 1, i + 2));
        if (header[i + 2] != "]") ReportFatal("PreCalc header: missing ']'");
    }
    if (i < header.size()) FailHeader();
    CheckSizes(header[1], ReadSizes(header));
}

PreCalcTable EvaluatePreCalc(TokenSpan header, const std::vector<TokenSpan>& body,
                             const std::vector<int>& bodyLines) {
    TableProgram program;
    program.name = header[1];
    program.isDouble = IsDoubleType(header[3]);
    program.sizes = ReadSizes(header);
    CompileTable(program, body, bodyLines);
    return {program.name, program.isDouble, program.sizes, VariableText(program),
            Definition(program, RunTable(program))};
}
