#include "precalc/precalc.h"

#include <gtest/gtest.h>

#include <deque>
#include <sstream>

#include "lexer/lexer.h"

namespace {

// The initialiser of a table whose body's lines are separated by line ends.
std::string Table(const std::string& header, const std::string& text) {
    std::deque<Tokens> split;
    std::vector<TokenSpan> body;
    std::vector<int> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        body.emplace_back(split.emplace_back(Split(line)));
        lines.push_back(static_cast<int>(body.size()));
    }
    const std::string definition = EvaluatePreCalc(Split("PreCalc " + header), body, lines).definition;
    return definition.substr(definition.find('{'));
}

std::string Value(const std::string& expression) {
    const std::string text = Table("t:Double[1]", "t[0] = " + expression);
    return text.substr(2, text.size() - 5);
}

TEST(PreCalc, DefinesATable) {
    const auto definition = [](const std::string& header) {
        return EvaluatePreCalc(Split("PreCalc " + header), {}, {}).definition;
    };
    EXPECT_EQ(definition("sq:Int[2]"), "int KVL_sq[2] = { 0, 0 };");
    EXPECT_EQ(definition("g:Double[2][1][2]"), "double KVL_g[2][1][2] = { { { 0, 0 } }, { { 0, 0 } } };");
    for (const char* type : {"Double", "double", "Float", "float"})
        EXPECT_EQ(definition(std::string("t:") + type + "[1]"), "double KVL_t[1] = { 0 };");
    for (const char* type : {"Int", "int", "DOUBLE", "Byte"})
        EXPECT_EQ(definition(std::string("t:") + type + "[1]"), "int KVL_t[1] = { 0 };");
}

TEST(PreCalc, RunsLoopsAndAssignments) {
    struct Case {
        const char *header, *body, *values;
    };
    const Case cases[] = {
        {"t:Int[4]", "For i:Int = 0 To 3\n t[i] = i*i\nNext", "{ 0, 1, 4, 9 };"},
        {"t:Int[4]", "for i = 3 to 0 step -1\n\n; nothing\n// nor this\nt[i] = 3 - i ; here\nnext",
         "{ 3, 2, 1, 0 };"},
        {"t:Int[4]", "For i = 0 To 3 | t[i] = i | Next", "{ 0, 1, 2, 3 };"},
        {"t:Int[1]", "For i = 0 To 1 Step 0.1\n t[0] = t[0] + 1\nNext", "{ 11 };"},
        {"t:Int[1]", "For i = 1 To 0 Step -0.1\n t[0] = t[0] + 1\nNext", "{ 11 };"},
        {"t:Int[1]", "For i = 5 To 1\n t[0] = 1\nNext", "{ 0 };"},
        {"t:Int[1]", "For i = 5 To 1\nFor j = 1 To 2\n t[0] = 1\nNext\nNext\nt[0] = t[0] + 4", "{ 4 };"},
        {"t:Int[1]", "For i = 1 To 5 Step -1\n t[0] = 1\nNext", "{ 0 };"},
        {"t:Int[2][3]", "For y = 0 To 1\nFor x = 0 To 2\n t[y][x] = y * 10 + x\nNext\nNext",
         "{ { 0, 1, 2 }, { 10, 11, 12 } };"},
        {"t:Int[3]", "For i = 0 To 1\nFor i = 2 To 2\n t[i] = 9\nNext\n t[i] = i + 4\nNext", "{ 4, 5, 9 };"},
        {"t:Int[10]", "t[1] = 1\nFor i = 2 To 9\n t[i] = t[i - 1] + t[i - 2]\nNext",
         "{ 0, 1, 1, 2, 3, 5, 8, 13, 21, 34 };"},
        {"t:Int[3]", "For i = 0 To 2\n t[i / 1.2] = i + 1\nNext", "{ 2, 3, 0 };"},  // 0, 0.83, 1.67
        {"t:Int[2]", "t[1 - 0.0000000001] = 7\nt[-0.0000000001] = 6", "{ 6, 7 };"},
        {"t:Int[4]", "t[0] = 0.5\nt[1] = -0.5\nt[2] = 2147483647.4\nt[3] = -2147483648",
         "{ 1, -1, 2147483647, -2147483648 };"},
        {"t:Int[1]", "t[0] = 5000000000\nt[0] = t[0] - 4999999999", "{ 1 };"},
    };
    for (const Case& row : cases) EXPECT_EQ(Table(row.header, row.body), row.values) << row.body;
}

TEST(PreCalc, CalculatesLikeTheLanguage) {
    const std::pair<const char*, const char*> cases[] = {
        {"1 + 2 * 3 - 4 / 8", "6.5"},
        {"10 - 3 - 2", "5"},
        {"-2 * -(3 + +4)", "14"},
        {"7 Mod 4 mod 2", "1"},
        {"-7.5 mod 2", "-1.5"},
        {"7 mod 0", "std::numeric_limits<double>::quiet_NaN()"},
        {".5 + 1. + $FF", "256.5"},
        {"0.1", "0.10000000000000001"},
        {"1e3", "1000"},
        {"10 * 10000000000 * 10000000", "1e+18"},
        {"pi", "3.1415926535897931"},
        {"Pi() - PI(1, 2)", "0"},
        {"Exp(1000)", "std::numeric_limits<double>::infinity()"},
        {"Log(0)", "-std::numeric_limits<double>::infinity()"},
        {"-0", "-0.0"},
        {"Sin(90) + Cos(0) + Tan(0)", "2"},
        {"ASin(1) + ACos(1) + ATan(1)", "135"},
        {"ATan2(1, 1)", "45"},
        {"Sqrt(16) + Cbrt(27) + Pow(2, 10)", "1031"},
        {"Abs(-3) + Floor(-1.5) + Ceil(1.5)", "3"},
        {"Round(2.5) + Round(-2.5) + Trunc(-2.7)", "-2"},
        {"Frac(-2.5)", "-0.5"},
        {"Sgn(-3) + Sgn(0) + Sgn(9) * 10", "9"},
        {"Min(3, -1) + Max(3, -1) * 10", "29"},
        {"Log(Exp(2)) + Log10(1000)", "5"},
        {"DegToRad(180) - pi", "0"},
        {"RadToDeg(pi)", "180"},
    };
    for (const auto& [expression, value] : cases) EXPECT_EQ(Value(expression), value) << expression;
    EXPECT_EQ(Value(std::string(400, '(') + "1" + std::string(400, ')')), "1");
}

TEST(PreCalc, TakesSecondsForTheLongestBlock) {
    // One For, 49 999 999 rounds of two statements and one more assignment: just within the limit.
    EXPECT_EQ(Table("t:Double[1]", "For i = 1 To 49999999\n t[0] = t[0] + i * 2\nNext\nt[0] = t[0] - 1"),
              "{ 2499999949999999 };");
}

}  // namespace
