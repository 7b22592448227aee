#include "symbols/scopes.h"

#include <vector>

#include "fatal.h"
#include "symbols_fixture.h"

namespace {

class ScopesTest : public SymbolsTest {
protected:
    void SetUp() override {
        SymbolsTest::SetUp();
        PushRoutineScope();  // the program's own level
        PushRoutineScope();
    }
};

// Runs a script of declarations: "{" and "}" open and close blocks, other words declare a variable.
void Declare(const std::vector<std::string>& script) {
    for (const std::string& step : script) {
        if (step == "{")
            PushBlock();
        else if (step == "}")
            PopBlock();
        else
            AddVarToScopeList(step);
    }
}

TEST_F(ScopesTest, RefusesNamesInOrderOfTheChecks) {
    symbols.constants["LIMIT"].isConst = true;
    symbols.constants["int"].isConst = true;
    struct Case {
        std::vector<std::string> script;
        const char* message;
    };
    const Case cases[] = {
        {{"int"}, "This is a reserved C++ identifier 'int', use another identifier"},
        {{"While"}, "This is a reserved Korvel keyword 'While', use another identifier"},
        {{"LIMIT"},
         "Syntax error: Variable 'LIMIT' conflicts with an already-declared Const (first come first served)"},
        {{"limit"}, "no error"},
        {{"5x"},
         "'5x' is not a valid name: names consist of letters, digits and '_' and do not begin with a digit"},
        {{"a", "a"}, "Syntax error: Variable 'a' is already declared in this scope"},
        {{"a", "A"}, "no error"},
        {{"a", "{", "a"}, "no error"},
        {{"a", "{", "a", "a"}, "Syntax error: Variable 'a' is already declared in this scope"},
        {{"{", "a", "}", "{", "a", "}", "a"}, "no error"},
        {{"a", "{", "a", "}", "a"}, "Syntax error: Variable 'a' is already declared in this scope"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(FatalMessage([&] { Declare(c.script); }), c.message) << c.script.back();
    }
}

TEST_F(ScopesTest, RecordsAShadowedNameOnce) {
    Declare({"a", "b", "{", "a", "c"});
    ASSERT_EQ(localDefList.back().leaves.size(), 2u);
    EXPECT_EQ(localDefList.back().leaves[0].names, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(localDefList.back().leaves[1].names, (std::vector<std::string>{"c"}));
}

TEST_F(ScopesTest, FindsTheInnermostVariable) {
    AddVarToScopeList("a").type = Single(Base::Int);
    PushBlock();
    AddVarToScopeList("a").type = Single(Base::String);
    EXPECT_EQ(FindLocal("a")->type, Single(Base::String));
    PopBlock();
    EXPECT_EQ(FindLocal("a")->type, Single(Base::Int));
    EXPECT_FALSE(FindLocal("b"));
}

TEST_F(ScopesTest, RemembersNamesOfEndedBlocksOfTheRoutineOnly) {
    Declare({"{", "a", "}"});
    EXPECT_FALSE(FindLocal("a"));
    EXPECT_TRUE(WasInEndedBlock("a"));
    PopRoutineScope();
    PushRoutineScope();
    EXPECT_FALSE(WasInEndedBlock("a"));
}

TEST_F(ScopesTest, KeepsTheOutermostBlock) {
    Declare({"a", "}"});
    EXPECT_EQ(BlockCount(), 1u);
    EXPECT_TRUE(FindLocal("a"));
}

TEST_F(ScopesTest, LooksUpGlobalsConstsAndEveryLevel) {
    symbols.globals["typed"].typed = true;
    symbols.globals["untyped"].typed = false;
    symbols.globals["table"].isPreCalc = true;
    symbols.constants["limit"].isConst = true;
    AddOwnName("kvl_Beep");
    PushRoutineScope();
    AddVarToScopeList("local");
    const std::pair<const char*, bool> cases[] = {{"typed", true}, {"untyped", false}, {"table", true},
                                                  {"limit", true}, {"local", true},    {"Local", false},
                                                  {"Beep", true},  {"kvl_Beep", true}, {"other", false}};
    for (const auto& c : cases) EXPECT_EQ(IsVariableInScope(c.first), c.second) << c.first;
}

TEST_F(ScopesTest, AddressesOutliveLaterLevels) {
    Variable& first = AddVarToScopeList("first");
    for (int i = 0; i < 100; ++i) PushRoutineScope();
    for (int i = 0; i < 100; ++i) PopRoutineScope();
    EXPECT_EQ(FindLocal("first"), &first);
}

}  // namespace
