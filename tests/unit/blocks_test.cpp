#include "statements/blocks.h"

#include "expect_fatal.h"
#include "statements/constant_value.h"
#include "statements/state.h"
#include "symbols_fixture.h"

namespace {

TEST(Blocks, NestOnlySoDeep) {
    State state;
    for (int i = 0; i < 1000; ++i) OpenNewBlock(state, BlockKind::If);
    EXPECT_FATAL(OpenNewBlock(state, BlockKind::Loop), "Blocks are nested too deeply");
}

TEST(Blocks, CloseTheInnermostOfTheirKind) {
    State state;
    state.currentLine = 3;
    OpenNewBlock(state, BlockKind::Loop).variable = "i";
    state.currentLine = 4;
    OpenNewBlock(state, BlockKind::If);
    OpenNewBlock(state, BlockKind::Loop).variable = "j";
    EXPECT_EQ(CloseBlock(state, BlockKind::Loop, "Next").variable, "j");
    CheckCrossedBlocks(state);
    EXPECT_EQ(CloseBlock(state, BlockKind::Loop, "Next").variable, "i");
    EXPECT_TRUE(InnermostBlockIs(state, BlockKind::If));
    EXPECT_FATAL(CheckCrossedBlocks(state),
                 "'Next' closes the loop of line 3 while the If block of line 4 is still open "
                 "(missing 'EndIf')");
    EXPECT_FATAL(CloseBlock(state, BlockKind::Loop, "Wend"), "'Wend' without an open loop");
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
