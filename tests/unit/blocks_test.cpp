#include "statements/blocks.h"

#include "fatal.h"
#include "lexer/cpp_lines.h"
#include "statements/constant_value.h"
#include "statements/state.h"
#include "symbols_fixture.h"

namespace {

// By their words the innermost of their kind, in C++ the innermost braces.
TEST(Blocks, Cross) {
    State state;
    state.place.line = 3;
    OpenNewBlock(state, BlockKind::Loop, "For", "i");
    state.place.line = 4;
    OpenNewBlock(state, BlockKind::If);
    OpenNewBlock(state, BlockKind::Loop, "For", "j");
    EXPECT_EQ(CloseBlock(state, BlockKind::Loop, "Next")->opener.variable, "j");
    const std::optional<Block> crossing = CloseBlock(state, BlockKind::Loop, "Next");
    EXPECT_EQ(crossing->opener.variable, "i");
    EXPECT_EQ(crossing->braces.kind, BlockKind::If);
    EXPECT_TRUE(InnermostIs(state, BlockKind::Loop));
    CheckClosers(state);
    OpenNewBlock(state, BlockKind::Repeat);
    EXPECT_TRUE(CloseBlock(state, BlockKind::If, "EndIf"));
    EXPECT_FATAL(CheckClosers(state),
                 "'EndIf' closes the If block of line 4 while the Repeat loop of line 4 is still open "
                 "(missing 'Until')");
    EXPECT_FALSE(CloseBlock(state, BlockKind::Loop, "Wend"));
    EXPECT_TRUE(CloseBlock(state, BlockKind::Repeat, "Forever"));
    EXPECT_FATAL(CloseBlock(state, BlockKind::Loop, "Wend"), "'Wend' without an open loop");
}

// Those of code, not of literals, comments and macros; of the branches of an #if one counts.
TEST(Blocks, BracesOfInlineCpp) {
    const struct {
        std::vector<std::string> lines;
        int opened;
    } rows[] = {
        {{"if (a) { for (;;) {", "}"}, 1},
        {{"} else {"}, 0},
        {{"f(\"{\\\"{\", '{', '\\'', \"\"); // {", "/* {", "{ */ }"}, -1},
        {{"auto a = u8R\"x({)\"{", "{ )x\"; {"}, 1},
        {{"#define OPEN { \\", "{ {", "#if A", "if (a) {", "#else", "if (b) {", "#endif"}, 1},
    };
    for (const auto& row : rows) {
        CppLines cpp;
        int opened = 0;
        for (const std::string& line : row.lines) {
            cpp.Read(line);
            opened += cpp.Braces();
        }
        EXPECT_EQ(opened, row.opened) << row.lines[0];
    }
}

using ConstantValues = SymbolsTest;

TEST_F(ConstantValues, OfExpressions) {
    Variable& seven = symbols.constants["SEVEN"];
    seven.name = "SEVEN";
    seven.isConst = true;
    seven.type = Single(Base::Int);
    seven.initialiser = {"14", "/", "2"};
    struct Case {
        const char* text;
        const char* value;  // null for no constant
    };
    const Case cases[] = {
        {"1 + 2 * 3", "7"},      {"-(4 - 10) / 4", "1"},
        {"17 Mod 5", "2"},       {"$ff", "255"},
        {"7 / 2.0", "3.500000"}, {".5 + .25", "0.750000"},
        {"True", "1"},           {"\"a\" + \"b\"", "ab"},
        {"SEVEN * 2", "14"},     {"2147483648 * 2", "4294967296"},
        {"9 / 0", nullptr},      {"x", nullptr},
        {"1 +", nullptr},        {"", nullptr},
        {"1 2", nullptr},        {"\"a\" + 1", nullptr},
        {"(1", nullptr},         {"1.5 Mod 2", nullptr},
        {"1x", nullptr},
    };
    for (const Case& test : cases) {
        std::optional<ConstantValue> value = EvaluateConstant(Split(test.text));
        ASSERT_EQ(value.has_value(), test.value != nullptr) << test.text;
        if (!value) continue;
        std::string shown = value->text;
        if (value->kind == ConstantValue::Kind::Integer) shown = std::to_string(value->integer);
        if (value->kind == ConstantValue::Kind::Real) shown = std::to_string(value->real);
        EXPECT_EQ(shown, test.value) << test.text;
    }
}

}  // namespace
