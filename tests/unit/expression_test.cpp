#include "expressions/expression.h"

#include "driver/settings.h"
#include "fatal.h"
#include "symbols_fixture.h"

namespace {

class ExpressionTest : public SymbolsTest {
protected:
    void SetUp() override {
        SymbolsTest::SetUp();
        settings = Settings();
        settings.currentFile = "game.kvl";
        settings.currentLine = 7;
        lenient = false;
        PushRoutineScope();  // the program's own level
        PushRoutineScope();
        PushBlock();
        DeclareVariables();
        DeclareClasses();
        DeclareFunctions();
    }
    void TearDown() override { settings = Settings(); }

    static Variable& Declare(const std::string& name, const ValueType& type) {
        Variable& variable = AddVarToScopeList(name);
        variable.type = type;
        if (type.IsArray()) variable.form = ArrayForm::Vector;
        return variable;
    }

    static Parameter Typed(const std::string& name, const ValueType& type) {
        Parameter parameter;
        parameter.name = name;
        parameter.type = type;
        return parameter;
    }

private:
    static void DeclareVariables() {
        for (const char* name : {"i", "n", "count"}) Declare(name, Single(Base::Int));
        Declare("d", Single(Base::Double));
        Declare("s", Single(Base::String));
        Declare("t", Single(Base::String));
        Declare("b", Single(Base::Bool));
        Declare("y", Single(Base::Byte));
        Declare("arr", {Base::Int, false, 1, nullptr}).sizes = {"10"};
        Declare("m", {Base::Double, false, 2, nullptr}).sizes = {"3", "MAX"};
        Declare("list", {Base::Int, true, 0, nullptr});
        PushBlock();
        Declare("gone", Single(Base::Int));
        PopBlock();
        Variable limit;
        limit.name = "LIMIT";
        limit.cppName = "KVL_LIMIT";
        limit.type = Single(Base::Int);
        limit.isConst = limit.typed = true;
        symbols.constants["LIMIT"] = limit;
    }

    static void AddField(ClassInfo& cls, const std::string& name, const ValueType& type,
                         bool isPrivate = false) {
        Variable field;
        field.name = name;
        field.cppName = "KVL_" + name;
        field.type = type;
        field.isPrivate = isPrivate;
        cls.members[name] = field;
    }

    static void DeclareClasses() {
        ClassInfo& point = DeclareClass("TPoint", true);
        AddField(point, "x", Single(Base::Int));
        ClassInfo& actor = DeclareClass("TActor", false);
        ClassInfo& other = DeclareClass("TOther", false);
        AddField(actor, "hp", Single(Base::Int));
        AddField(actor, "key", Single(Base::Int), true);
        AddField(actor, "name", Single(Base::String));
        AddField(actor, "next", Single(Base::Object, &actor));
        AddField(actor, "at", Single(Base::Element, &point));
        AddField(actor, "items", {Base::Int, false, 1, nullptr});
        Routine hit;
        hit.name = "Hit";
        hit.cppName = "KVL_Hit";
        hit.owner = &actor;
        hit.result = Single(Base::Object, &actor);
        hit.parameters = {Typed("damage", Single(Base::Int))};
        actor.routines["Hit"] = hit;
        Declare("p", Single(Base::Object, &actor));
        Declare("q", Single(Base::Object, &actor));
        Declare("o", Single(Base::Object, &other));
        Declare("e", Single(Base::Element, &point));
        Declare("f", Single(Base::Element, &point));
        Declare("pts", {Base::Element, false, 1, &point}).sizes = {"4"};
        Declare("slot", Single(Base::Element, &point)).slot = true;
    }

    static Routine& AddFunction(const std::string& name, const ValueType& result,
                                std::vector<Parameter> parameters) {
        Routine& function = symbols.functions[name];
        function.name = name;
        function.cppName = "KVL_" + name;
        function.result = result;
        function.parameters = std::move(parameters);
        return function;
    }

    static void DeclareFunctions() {
        const ValueType number = Single(Base::Int);
        AddFunction("Twice", number, {Typed("a", number)});
        AddFunction("Tick", Single(Base::Void), {});
        Routine& draw = AddFunction("Draw", Single(Base::Void),
                                    {Typed("a", number), Typed("text", Single(Base::String))});
        draw.parameters[1].hasDefault = true;
        draw.parameters[1].defaultValue = {"\"*\""};
        AddFunction("Find", Single(Base::Object, FindClass("TActor")), {Typed("a", number)});
        AddFunction("Make", {Base::Int, false, 1, nullptr}, {});
        AddFunction("Sum", number, {Typed("a", {Base::Int, false, 1, nullptr})});
        AddFunction("Total", number, {Typed("a", {Base::Int, true, 0, nullptr})});
        AddFunction("Fresh", {Base::Int, true, 0, nullptr}, {});
    }
};

struct TextCase {
    const char* source;
    const char* text;
    const char* type;
};

// The text and the type of an expression, in which "=" compares.
void ExpectTexts(const std::vector<TextCase>& cases) {
    for (const TextCase& c : cases) {
        const Tokens tokens = Split(c.source);
        const Expr expr = TranslateExpression(tokens, ExprMode::Condition);
        EXPECT_EQ(ValueText(expr), c.text) << c.source;
        EXPECT_EQ(CppName(expr.type), c.type) << c.source;
    }
}

struct MessageCase {
    const char* source;
    const char* message;
};

void ExpectMessages(const std::vector<MessageCase>& cases, ExprMode mode) {
    for (const MessageCase& c : cases) {
        const Tokens tokens = Split(c.source);
        EXPECT_EQ(FatalMessage([&] { TranslateExpression(tokens, mode); }), c.message) << c.source;
    }
}

TEST_F(ExpressionTest, Operators) {
    ExpectTexts({
        {"i + n * 2", "KVL_i + KVL_n * 2", "int"},
        {"(i + 1) * - - n", "( KVL_i + 1 ) * - - KVL_n", "int"},
        {"i + d", "KVL_i + KVL_d", "double"},
        {"i = 1", "KVL_i == 1", "bool"},
        {"i == 1", "KVL_i == 1", "bool"},
        {"i <> 1 and n < = 2 or not b", "KVL_i != 1 && KVL_n <= 2 || ! KVL_b", "bool"},
        {"i != 1", "KVL_i != 1", "bool"},
        {"i >= n", "KVL_i >= KVL_n", "bool"},
        {"i MOD 3 Shl 2 BitAnd BitNot n", "KVL_i % 3 << 2 & ~ KVL_n", "int"},
        {"d mod 2", "std::fmod(KVL_d, 2)", "double"},
        {"y + y", "KVL_y + KVL_y", "int"},
        {"p = Null", "KVL_p == nullptr", "bool"},
        {"e = f", "KVL_e == KVL_f", "bool"},
        {"e <> f", "! ( KVL_e == KVL_f )", "bool"},
    });
}

TEST_F(ExpressionTest, Literals) {
    ExpectTexts({
        {".5", "0.5", "double"},
        {"1.5e-3", "1.5e-3", "double"},
        {"$FF", "0xFF", "int"},
        {"010", "10", "int"},
        {"3000000000", "3000000000", "long"},
        {"True", "true", "bool"},
        {"\"a\\b~q~n~x?"
         "?/\"",
         R"("a\\b\"\n~x?\?/")", "std::string"},
        {"\"~{no~}\"", "\"{no}\"", "std::string"},
        {"\"n: {%n} d: {!d}{$s}\"",
         "(std::string(\"n: \") + std::to_string(KVL_n) + \" d: \" + std::to_string(KVL_d) + (KVL_s))",
         "std::string"},
        {"\"{%count + 1}\"", "(std::string(std::to_string(KVL_count + 1)))", "std::string"},
    });
}

TEST_F(ExpressionTest, StringsAndNumbersJoin) {
    ExpectTexts({
        {"\"a\" + \"b\"", "std::string(\"a\") + \"b\"", "std::string"},
        {"\"a\" + n", "\"a\" + std::to_string(KVL_n)", "std::string"},
        {"1 + n + \"a\"", "std::to_string(1 + KVL_n) + \"a\"", "std::string"},
        {"s + t + 1", "KVL_s + KVL_t + std::to_string(1)", "std::string"},
        {"\"a\" < \"b\"", "std::string(\"a\") < \"b\"", "bool"},
        {"s = \"b\"", "KVL_s == \"b\"", "bool"},
    });
}

TEST_F(ExpressionTest, BuiltIns) {
    ExpectTexts({
        {"chr(65)", "std::string(1, static_cast<char>(65))", "std::string"},
        {"Asc(s)", "(static_cast<int>(std::string(KVL_s).length() > 0 ? std::string(KVL_s)[0] : 0))", "int"},
        {"ToInt(s)", "std::stoi(KVL_s)", "int"},
        {"ToInt(d)", "static_cast<int>(KVL_d)", "int"},
        {"ToDouble(n)", "static_cast<double>(KVL_n)", "double"},
        {"ToString(n + 1)", "std::to_string(KVL_n + 1)", "std::string"},
        {"Max(n, Sin(90))", "std::fmax((double)(KVL_n),(double)(std::sin((90)*0.017453292519943295)))",
         "double"},
        {"Sgn(n)", "((KVL_n)>0?1:((KVL_n)<0?-1:0))", "int"},
        {"SeqGet(list, i)", "KVL_list.Get(KVL_i)", "int"},
        {"SEQCONTAINS(list, Twice(n))", "KVL_list.Contains(KVL_Twice ( KVL_n ))", "int"},
        {"SeqToArray(list)", "__kvFresh(KVL_list.ToArray())", "std::vector<int>"},
    });
}

TEST_F(ExpressionTest, CallsAndMembers) {
    ExpectTexts({
        {"Twice(Twice(3)) + 1", "KVL_Twice ( KVL_Twice ( 3 ) ) + 1", "int"},
        {"Make()", "KVL_Make ( )", "std::vector<int>"},
        {"Sum(arr)", "KVL_Sum ( KVL_arr.data() )", "int"},
        {"Total(list)", "KVL_Total ( KVL_list )", "int"},
        {"Find(1)\\hp", "KVL_Find ( 1 ) -> KVL_hp", "int"},
        {"p\\next\\next\\at\\x", "KVL_p -> KVL_next -> KVL_next -> KVL_at . KVL_x", "int"},
        {"p\\Hit(3)\\items[n - 1]", "KVL_p -> KVL_Hit ( 3 ) -> KVL_items[KVL_n - 1]", "int"},
        {"pts[0]\\x", "KVL_pts[0] -> KVL_x", "int"},
        {"pts[0]", "(*KVL_pts[0])", "KVL_TPoint"},
        {"slot", "(*KVL_slot)", "KVL_TPoint"},
        {"e\\x", "KVL_e . KVL_x", "int"},
        {"m[i][1]", "KVL_m[KVL_i][1]", "double"},
        {"First TActor", "KVL_TActor::First()", "KVL_TActor*"},
        {"After p\\hp", "KVL_p->After() -> KVL_hp", "int"},
        {"New TActor", "new KVL_TActor()", "KVL_TActor*"},
        {"Create TPoint", "KVL_TPoint()", "KVL_TPoint"},
    });
    currentClass = FindClass("TActor");
    ExpectTexts({{"this\\hp + hp", "this-> KVL_hp + KVL_hp", "int"},
                 {"Hit(1)\\key", "KVL_Hit ( 1 ) -> KVL_key", "int"}});
}

TEST_F(ExpressionTest, Statements) {
    const std::pair<const char*, const char*> assignments[] = {
        {"i = n = 0", "KVL_i = KVL_n = 0"},
        {"b = (i = 1)", "KVL_b = ( KVL_i == 1 )"},
        {"arr[i] = Twice(n = 1)", "KVL_arr[KVL_i] = KVL_Twice ( KVL_n == 1 )"},
        {"pts[1] = e", "(*KVL_pts[1]) = KVL_e"},
        {"p\\at\\x = 3", "KVL_p -> KVL_at . KVL_x = 3"},
    };
    for (const auto& [source, text] : assignments) {
        EXPECT_EQ(TranslateExpression(Split(source), ExprMode::Statement).text, text) << source;
    }
    const std::pair<const char*, const char*> calls[] = {
        {"Tick", "KVL_Tick ( )"},
        {"Draw 1", "KVL_Draw ( 1 , \"*\" )"},
        {"Draw(1, s)", "KVL_Draw ( 1 , KVL_s )"},
        {"Draw (i) + 1, s", "KVL_Draw ( ( KVL_i ) + 1 , KVL_s )"},
        {"p\\Hit 2", "KVL_p -> KVL_Hit ( 2 )"},
        {"Insert p Before q", "KVL_p->InsertBefore(KVL_q)"},
        {"Make", "__kvTakeArray(KVL_Make ( ))"},
    };
    for (const auto& [source, expected] : calls) {
        std::string text;
        EXPECT_TRUE(TranslateCallStatement(Split(source), text)) << source;
        EXPECT_EQ(text, expected) << source;
    }
    std::string text;
    EXPECT_FALSE(TranslateCallStatement(Split("i + 1"), text));
}

TEST_F(ExpressionTest, SafeMode) {
    settings.safeMode = true;
    ExpectTexts({
        {"i * n / count", "KVL_SafeDiv(KVL_i * KVL_n, KVL_count)", "int"},
        {"i / n / 2 - 1", "KVL_SafeDiv(KVL_SafeDiv(KVL_i, KVL_n), 2) - 1", "int"},
        {"i / d", "KVL_SafeDiv(static_cast<double>(KVL_i), KVL_d)", "double"},
        {"- i / (n + 1)", "KVL_SafeDiv(- KVL_i, ( KVL_n + 1 ))", "int"},
        {"p\\hp mod Twice(2)", "__kvInOrder<int>{KVL_p -> KVL_hp, KVL_Twice ( 2 )}.Remainder()", "int"},
        {"s + \"a/b\"", "KVL_s + \"a/b\"", "std::string"},
        {"arr[i]",
         "([&]() -> decltype(KVL_arr[KVL_i]) { if ((KVL_i) < 0 || (KVL_i) >= KVL_arr_size_0) { std::cerr << "
         "\"Array bounds error: arr[\" << (KVL_i) << \"] dimension 0 out of range [0, \" << "
         "(KVL_arr_size_0-1) << "
         "\"]\" << std::endl; exit(1); } return KVL_arr[KVL_i]; })()",
         "int"},
        {"arr[Twice(i)]", "__kvAt(\"arr\", KVL_arr, KVL_Twice ( KVL_i ), KVL_arr_size_0)", "int"},
        {"p\\items[i]", "__kvPick(\"items\", KVL_p -> KVL_items, KVL_i)", "int"},
    });
    settings.debugMode = true;
    ExpectTexts({{"arr[i] / n", "KVL_arr[KVL_i] / KVL_n", "int"}});
}

TEST_F(ExpressionTest, RefusesUnknownNames) {
    const char* wherever = "Variable 'gone' used out of scope (line 7 in game.kvl)";
    ExpectMessages(
        {{"missing + 1", "Identifier not found - missing"},
         {"gone", wherever},
         {"missing\\hp", "Variable 'missing' is not defined"},
         {"i\\hp", "Variable 'i' is type int, not a Type/object. Cannot use field accessor '\\'"},
         {"p\\missing", "Field or method 'missing' does not exist in class 'TActor'"},
         {"p\\key", "'key' is private in 'TActor' and cannot be used outside of it"},
         {"Missing(1)", "Identifier not found - Missing"},
         {"i(1)", "'i' is not a Function and cannot be called"},
         {"TActor", "'TActor' is a Type and cannot be used as a value"},
         {"this", "'this' can only be used inside a Method"},
         {"New TMissing", "Type 'TMissing' is not defined. Cannot create instance of non-existent Type"}},
        ExprMode::Condition);
    ExpectMessages(
        {{"missing", "Variable 'missing' used out of scope in Print statement (line 7 in game.kvl)"}},
        ExprMode::Print);
    lenient = true;
    ExpectTexts({{"missing\\hp + Missing(1)", "KVL_missing -> KVL_hp + KVL_Missing ( 1 )", "unknown"}});
}

TEST_F(ExpressionTest, RefusesWhatCannotWork) {
    ExpectMessages(
        {{"i +", "Missing operand after '+'"},
         {"i + * 2", "Unexpected '*' in an expression"},
         {"i 2", "Unexpected '2' in an expression"},
         {"x2 = ", "Identifier not found - x2"},
         {"12ab", "Invalid number '12ab'"},
         {"99999999999999999999", "Number too large: 99999999999999999999"},
         {"\"a\" - 1",
          "Operator '-' cannot be used between String and Int\nUse ToInt(...) to turn the String into a "
          "number."},
         {"s = 1",
          "Operator '=' cannot be used between String and Int\nUse ToInt(...) to turn the String into a "
          "number."},
         {"not s", "Operator 'Not' cannot be used with String"},
         {"p = o", "Operator '=' cannot be used between TActor and TOther"},
         {"e + 1", "Operator '+' cannot be used between TPoint and Int"},
         {"d BitAnd 1", "Operator 'BitAnd' cannot be used between Double and Int"},
         {"Tick() + 1", "A call without a result cannot be used as a value"},
         {"Twice", "Function 'Twice' is called with parentheses: Twice(...)"},
         {"Twice()", "Function 'Twice' expects 1 parameter(s) but 0 provided"},
         {"Twice(s)", "Function 'Twice' parameter 1 expects type int but got std::string"},
         {"p\\Hit(s)", "Method 'TActor::Hit' parameter 1 expects type int but got std::string"},
         {"GetKey(1)", "GetKey() takes no parameters"},
         {"Int(d)", "'Int' is a type keyword and cannot be used as a function. Did you mean 'ToInt()'?"},
         {"Min(1)", "'Min' expects 2 argument(s), got 1"},
         {"Sin(s)", "'Sin' expects a number but got String"},
         {"Asc(1)", "'Asc' expects a String but got Int"},
         {"SeqGet()", "'SeqGet' requires a Sequence argument"},
         {"SeqGet(list)", "SeqGet expects: SeqGet(seq, index)"},
         {"SeqLength(arr)", "'SeqLength' requires a Sequence argument, got Int[]"},
         {"list[0]", "'list' is a Sequence. Its items are read with SeqGet(list, index)"},
         {"n[0]", "'n' is Int, not an array, and cannot be indexed"},
         {"arr[d]", "Array index must be an integer type, got double"},
         {"m[1]", "Array 'm' was declared with 2 dimension(s) but is being accessed with 1 index/indices"},
         {"arr[10]",
          "Array index out of bounds: arr dimension 0 accessed with index [10] but size is [10] (valid "
          "range: 0 to 9)"},
         {"\"{n}\"", "String interpolation hole must start with a type tag: {$str}, {%int} or {!double}"},
         {"\"{%}\"", "Empty string interpolation hole '{%}'"},
         {"\"{%n\"", "Unterminated string interpolation hole - missing '}'"},
         {"\"{\"", "Unterminated string interpolation hole '{'"},
         {"\"{%d}\"", "Interpolation tag '%' (Int) does not match 'd' which is double"},
         {"\"{$n}\"", "Interpolation tag '$' (String) does not match 'n' which is int - use {%n} or {!n}"}},
        ExprMode::Condition);
    ExpectMessages({{"i = s",
                     "Type mismatch: Cannot assign std::string to int variable 'i'\nUse ToInt(...) to turn "
                     "the String into a number."},
                    {"LIMIT = 1", "Cannot assign to const variable 'LIMIT'"},
                    {"i + 1 = 2", "What stands before '=' cannot be assigned to"},
                    {"i += 1", "There is no operator '+='. Write the assignment out, as in 'x = x + 1'"}},
                   ExprMode::Statement);
    EXPECT_EQ(FatalMessage([] { TranslateExpression(Tokens(100000, "("), ExprMode::Condition); }),
              "Expression too deeply nested");
}

}  // namespace
