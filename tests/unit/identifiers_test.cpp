#include "symbols/identifiers.h"

#include "fatal.h"
#include "symbols_fixture.h"

namespace {

using IdentifiersTest = SymbolsTest;

TEST_F(IdentifiersTest, PrefixesUserNames) {
    symbols.externFunctions.insert("puts");
    symbols.userlibFunctions["Beep"] = "int";
    const std::pair<const char*, const char*> cases[] = {
        {"TPlayer", "KVL_TPlayer"}, {"main", "main"}, {"Main", "KVL_Main"}, {"this", "this"},
        {"This", "KVL_This"},       {"NULL", "NULL"}, {"Null", "KVL_Null"}, {"string", "string"},
        {"puts", "puts"},           {"Beep", "Beep"}, {"beep", "KVL_beep"}, {"union", "KVL_union"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SafeName(c.first), c.second);
        EXPECT_EQ(IsReservedCppName(c.first), std::string(c.first) != c.second) << c.first;
    }
}

TEST_F(IdentifiersTest, HintsAtTheNamingOfTypes) {
    const std::string hint =
        "\nCustom Type names must start with 'T' followed by an uppercase letter (e.g., TPlayer, TEnemy, "
        "TMyType)";
    for (const std::string name : {"Playr", "Float", "_x", "TPlayr", "player", "T"}) {
        const bool hinted = name == "Playr" || name == "Float";
        EXPECT_EQ(FatalMessage([&] { FailUnknownType(name); }),
                  "Unknown type: " + name + (hinted ? hint : ""));
    }
}

TEST_F(IdentifiersTest, KeywordsCountInAnyCaseAndCppWordsAsWritten) {
    EXPECT_TRUE(IsReservedKeyword("PRINT"));
    EXPECT_FALSE(IsReservedKeyword(""));
    EXPECT_TRUE(IsCppWord("namespace"));
    EXPECT_FALSE(IsCppWord("Namespace"));
}

}  // namespace
