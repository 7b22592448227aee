#include "symbols/value_type.h"

#include "fatal.h"
#include "symbols_fixture.h"

namespace {

class ValueTypeTest : public SymbolsTest {
protected:
    void SetUp() override {
        SymbolsTest::SetUp();
        DeclareClass("TFoo", false);
        DeclareClass("TPoint", true);
        DeclareClass("Cell", true);
        DeclareClass("Player", false);
    }
};

TEST_F(ValueTypeTest, MapsAnnotations) {
    const std::pair<const char*, const char*> cases[] = {
        {"Int", "int"},
        {"INT", "int"},
        {"Double", "double"},
        {"STRING", "std::string"},
        {"byte", "uint8_t"},
        {"Short", "short"},
        {"Long", "long"},
        {"Bool", "bool"},
        {"Void*", "void*"},
        {"TFoo", "KVL_TFoo*"},
        {"TPoint", "KVL_TPoint"},
        {"Cell", "KVL_Cell"},
        {"Player", "void"},
        {"Float", "void"},
        {"", "void"},
        {"T", "void"},
        {"Int[]", "std::vector<int>"},
        {"Byte[]", "std::vector<uint8_t>"},
        {"Bool[]", "std::vector<bool>"},
        {"TFoo[]", "std::vector<KVL_TFoo*>"},
        {"TPoint[]", "std::vector<KVL_TPoint*>"},
        {"Player[]", "std::vector<KVL_Player*>"},
    };
    for (const auto& c : cases) EXPECT_EQ(MapType(c.first), c.second) << c.first;
}

TEST_F(ValueTypeTest, RefusesUndefinedTypes) {
    for (const std::string name : {"TBar", "TBar[]", "Bar[]", "Void*[]", "Void[]"}) {
        const std::string bare = name.substr(0, name.find("[]"));
        EXPECT_EQ(FatalMessage([&] { MapType(name); }),
                  "Type '" + bare + "' is not defined. Make sure to declare it with 'Type " + bare +
                      "' before using it.");
    }
}

TEST_F(ValueTypeTest, SpellsEveryUse) {
    struct Case {
        ValueType type;
        const char *variable, *parameter, *result, *korvel;
    };
    const ClassInfo* foo = FindClass("TFoo");
    const ClassInfo* point = FindClass("TPoint");
    const Case cases[] = {
        {ParseType("Int[][]"), "std::vector<std::vector<int>>", "int**", "int**", "Int[][]"},
        {ParseType("Bool[]"), "std::vector<KVBool>", "bool*", "bool*", "Bool[]"},
        {ParseType("TFoo[]"), "std::vector<KVL_TFoo*>", "KVL_TFoo**", "KVL_TFoo**", "TFoo[]"},
        {{Base::Element, false, 1, point},
         "std::vector<KVL_TPoint*>",
         "KVL_TPoint**",
         "KVL_TPoint**",
         "TPoint[]"},
        {{Base::Int, true, 0, nullptr}, "KVSeq<int>", "KVSeq<int>&", "KVSeq<int>", "Sequence Of Int"},
        {{Base::Element, true, 0, point},
         "KVSeq<KVL_TPoint>",
         "KVSeq<KVL_TPoint>&",
         "KVSeq<KVL_TPoint>",
         "Sequence Of TPoint"},
        {Single(Base::Object, foo), "KVL_TFoo*", "KVL_TFoo*", "KVL_TFoo*", "TFoo"},
        {Single(Base::Void), "void", "void", "void", "nothing"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(CppName(c.type), c.variable);
        EXPECT_EQ(ParameterCppName(c.type), c.parameter);
        EXPECT_EQ(ResultCppName(c.type), c.result);
        EXPECT_EQ(KorvelName(c.type), c.korvel);
    }
}

TEST_F(ValueTypeTest, DefaultsFollowTheSpelling) {
    const std::pair<const char*, const char*> cases[] = {
        {"KVSeq<int>", "{}"},
        {"int", "0"},
        {"short", "0"},
        {"long", "0"},
        {"uint8_t", "0"},
        {"unsigned char", "0"},
        {"double", "0.0"},
        {"bool", "false"},
        {"std::string", "\"\""},
        {"KVL_TFoo*", "nullptr"},
        {"KVL_TPoint", "{}"},
        {"std::vector<KVL_TFoo*>", "nullptr"},
        {"KVSeq<KVL_TFoo*>", "{}"},
        {"std::vector<int>", "{}"},
    };
    for (const auto& c : cases) EXPECT_EQ(DefaultValue(c.first), c.second) << c.first;
}

TEST_F(ValueTypeTest, AssignsOnlyWhatConverts) {
    ValueType foo = ParseType("TFoo");
    ValueType point = ParseType("TPoint");
    ValueType text = Single(Base::String);
    ValueType null = Single(Base::Null);
    ValueType integers = ParseType("Int[]");
    ValueType ints = {Base::Int, true, 0, nullptr};
    const ValueType numbers[] = {Single(Base::Int),   Single(Base::Double), Single(Base::Byte),
                                 Single(Base::Short), Single(Base::Long),   Single(Base::Bool)};
    for (const ValueType& to : numbers) {
        for (const ValueType& from : numbers) EXPECT_TRUE(Assignable(to, from));
        EXPECT_FALSE(Assignable(to, text));
        EXPECT_FALSE(Assignable(text, to));
        EXPECT_FALSE(Assignable(to, null));
        EXPECT_FALSE(Assignable(to, integers));
    }
    struct Case {
        ValueType to, from;
        bool fits;
    };
    const Case cases[] = {
        {foo, null, true},
        {foo, foo, true},
        {foo, Single(Base::Object, FindClass("Player")), false},
        {point, null, false},
        {point, point, true},
        {point, ParseType("Cell"), false},
        {text, null, false},
        {text, text, true},
        {text, ValueType(), true},
        {ints, ints, true},
        {ints, integers, false},
        {integers, ParseType("Double[]"), false},
        {integers, ParseType("Int[][]"), false},
        {Single(Base::Pointer), foo, true},
        {text, Single(Base::Void), false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Assignable(c.to, c.from), c.fits) << KorvelName(c.to) << " from " << KorvelName(c.from);
    }
}

TEST_F(ValueTypeTest, KnowsWhatOneItemIs) {
    EXPECT_EQ(ParseType("Int[][]").Item(), ParseType("Int[]"));
    EXPECT_EQ((ValueType{Base::Int, true, 0, nullptr}).Item(), Single(Base::Int));
    EXPECT_EQ(Single(Base::Int).Item(), ValueType());
}

}  // namespace
