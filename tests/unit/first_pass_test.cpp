#include "symbols/first_pass.h"

#include <filesystem>
#include <fstream>

#include "driver/settings.h"
#include "fatal.h"
#include "symbols/name_scan.h"
#include "symbols/parameters.h"
#include "symbols/prepopulate.h"
#include "symbols_fixture.h"

namespace {

namespace fs = std::filesystem;

class FirstPassTest : public SymbolsTest {
protected:
    std::string folder;

    void SetUp() override {
        SymbolsTest::SetUp();
        folder = (fs::temp_directory_path() / ("kvt-first-pass-" + std::to_string(getpid()))).string();
        fs::create_directories(folder);
        settings = Settings();
        settings.sourceFolder = folder;
        settings.mainSource = folder + "/main.kvl";
    }
    void TearDown() override {
        fs::remove_all(folder);
        settings = Settings();
    }

    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(folder + "/" + name) << text;
    }

    Declarations Read(const std::string& text) {
        Write("main.kvl", text);
        CollectNames(settings.mainSource);
        return ReadAgain();
    }

    Declarations ReadAgain() const {
        Declarations found;
        CollectDeclarations(settings.mainSource, found);
        Prepopulate(found);
        return found;
    }
};

TEST_F(FirstPassTest, WritesPrototypesAsDefinitionsWillRead) {
    const std::pair<const char*, const char*> cases[] = {
        {"Function F", "void KVL_F();"},
        {"Function F()", "void KVL_F();"},
        {"function F:Int(a, c As String, b:Double = -1.5)",
         "int KVL_F(int KVL_a, std::string KVL_c, double KVL_b);"},
        {"Function F(a:Int):Double", "double KVL_F(int KVL_a);"},
        {"Function F:Int[][](m:Double[][], f:Bool[])", "int** KVL_F(double** KVL_m, bool* KVL_f);"},
        {"Function F:Void(a = 2.5, b = \"x\", c = True, d = LIMIT, e = $FF)",
         "void KVL_F(double KVL_a, std::string KVL_b, bool KVL_c, int KVL_d, int KVL_e);"},
        {"Function F:TFoo(p:TFoo = Null, e:TPoint, f:TFoo[])", nullptr},
        {"Function F:TFoo(e:TPoint, f:TFoo[], p:TFoo = Null)",
         "KVL_TFoo* KVL_F(KVL_TPoint KVL_e, KVL_TFoo** KVL_f, KVL_TFoo* KVL_p);"},
        {"Function F:Sequence Of TPoint(s:Sequence Of Int)", "KVSeq<KVL_TPoint> KVL_F(KVSeq<int>& KVL_s);"},
        {"Extern | Function puts:Int(s:void*) | EndExtern",
         "int __kvExtern_puts(void* KVL_s) __asm__(KV_C_NAME(\"puts\"));"},
    };
    for (const auto& c : cases) {
        SymbolsTest::SetUp();
        const std::string text =
            std::string(c.first) + "\nConst LIMIT:Int = 3\nType TFoo\nEndType\nElement TPoint\nEndElement";
        if (!c.second) {
            EXPECT_EQ(FatalMessage([&] { Read(text); }),
                      "Parameter 'e' needs a default value, because 'p' before it has one");
            continue;
        }
        const Declarations found = Read(text);
        ASSERT_EQ(found.functions.size(), 1u) << c.first;
        EXPECT_EQ(found.functions[0].text, c.second);
    }
}

TEST_F(FirstPassTest, MainHasNoPrototype) {
    const Declarations found = Read("Function Main:String()\nEndFunction");
    EXPECT_TRUE(found.functions.empty());
    EXPECT_EQ(found.functionCount, 1u);
    EXPECT_TRUE(HasMainFunction());
    EXPECT_EQ(FindFunction("Main")->result, Single(Base::Int));
}

TEST_F(FirstPassTest, RegistersTypesWithTheirMembers) {
    Read(
        "Type TFoo ; first\n"
        "    Field hp : Int = 5, name : String\n"
        "    Field grid : Double[3][N + 1], next:TFoo, at:TPoint\n"
        "    private\n"
        "    Field secret:Sequence Of Int | Field flag = True\n"
        "    Method Hit:Int(damage:Int, times = 1)\n"
        "    EndMethod\n"
        "    public\n"
        "    Method constructor(n:Int) | EndMethod\n"
        "EndType\n"
        "Element TPoint\n"
        "    Field x:Int\n"
        "EndElement\n");
    const ClassInfo& foo = *FindClass("TFoo");
    EXPECT_EQ(foo.fields, (std::vector<std::string>{"hp", "name", "grid", "next", "at", "secret", "flag"}));
    EXPECT_EQ(foo.methods, (std::vector<std::string>{"Hit", "constructor"}));
    EXPECT_EQ(foo.fieldTypes.at("grid"), "double[3][N + 1]");
    EXPECT_EQ(foo.fieldTypes.at("next"), "KVL_TFoo*");
    EXPECT_EQ(foo.fieldTypes.at("at"), "KVL_TPoint");
    EXPECT_EQ(foo.fieldTypes.count("flag"), 0u);
    EXPECT_EQ(foo.members.at("hp").initialiser, (Tokens{"5"}));
    EXPECT_TRUE(foo.members.at("secret").isPrivate);
    EXPECT_TRUE(foo.routines.at("Hit").isPrivate);
    EXPECT_FALSE(foo.routines.at("constructor").isPrivate);
    EXPECT_EQ(foo.routines.at("constructor").cppName, "KVL_TFoo");
    EXPECT_EQ(foo.routines.at("Hit").owner, &foo);
    EXPECT_EQ(foo.routines.at("Hit").parameters[1].type, Single(Base::Int));
    EXPECT_EQ(symbols.classList.size(), 2u);
    EXPECT_EQ(FindClass("TPoint")->line, 11);
}

TEST_F(FirstPassTest, CollectsGlobalsConstsAndTables) {
    const Declarations found = Read(
        "Global a:Int = Max(1, 2), b = \"x\", m:Bool[2][N]\n"
        "Const N = 3, PI2:Double = 6.28\n"
        "PreCalc sq:Float[4][5]\nEndPreCalc\n");
    EXPECT_EQ(found.globalNames, (std::vector<std::string>{"a", "b", "m", "sq"}));
    EXPECT_EQ(found.constNames, (std::vector<std::string>{"N", "PI2"}));
    EXPECT_EQ(found.typedGlobals[1].second, "std::vector<std::vector<KVBool>>");
    EXPECT_EQ(symbols.globals.at("a").initialiser, (Tokens{"Max", "(", "1", ",", "2", ")"}));
    EXPECT_EQ(symbols.globals.at("m").sizes, (std::vector<std::string>{"2", "N"}));
    EXPECT_EQ(symbols.globals.at("sq").sizes, (std::vector<std::string>{"4", "5"}));
    EXPECT_EQ(symbols.globals.at("sq").type, ParseType("Double[][]"));
    EXPECT_TRUE(symbols.constants.at("PI2").isConst);
    EXPECT_FALSE(symbols.constants.at("N").typed);
}

TEST_F(FirstPassTest, SeesContinuedAndJoinedLinesButNoInlineCpp) {
    const Declarations found = Read(
        "Global a:Int, _ ; more\n"
        "    b:Int, _\n"
        "    c:Int\n"
        "Global d:~ ~\nInt\n"
        "InlineCpp\nGlobal no:Int\nint x = '\"';\nEndInlineCpp ; done\n"
        "InlineCpp\nType TNo\nEndInlineCpp\n"
        "Global e:Int | Global f:Int ; | Global g:Int\n"
        "If x Then | Global h:Int\n");
    EXPECT_EQ(found.globalNames, (std::vector<std::string>{"a", "b", "c", "d", "e", "f"}));
    EXPECT_FALSE(IsClass("TNo"));
    EXPECT_EQ(symbols.globals.at("c").line, 1);
    EXPECT_EQ(symbols.globals.at("e").line, 13);
}

TEST_F(FirstPassTest, FindsItsDeclarationsAgain) {
    const Declarations first = Read(
        "Global a:Int, b = 1\nConst C = 2\nFunction F(x = C)\nEndFunction\n"
        "Function Main()\nEndFunction\nType TFoo\nField x:Int\nEndType\n"
        "PreCalc t:Int[2]\nEndPreCalc\n");
    const Variable* global = &symbols.globals.at("a");
    const Declarations second = ReadAgain();
    EXPECT_EQ(second.globalNames, first.globalNames);
    EXPECT_EQ(second.functions[0].text, first.functions[0].text);
    EXPECT_EQ(symbols.classList.size(), 1u);
    EXPECT_EQ(&symbols.globals.at("a"), global);
}

TEST_F(FirstPassTest, RefusesWhatItCannotRegister) {
    const std::string undefined =
        "Type 'TBar' is not defined. Make sure to declare it with 'Type TBar' before using it.";
    const std::string hint =
        "\nCustom Type names must start with 'T' followed by an uppercase letter (e.g., TPlayer, TEnemy, "
        "TMyType)";
    const std::pair<std::string, std::string> cases[] = {
        {"End Type", "Syntax error: Use 'EndType' instead of 'End Type'"},
        {"end method", "Syntax error: Use 'EndMethod' instead of 'End Method'"},
        {"End Select", "Syntax error: Use 'EndSelect' instead of 'End Select'"},
        {"Field x:Int", "Syntax error: 'Field' can only be declared inside a Type"},
        {"Method M()", "Syntax error: 'Method' can only be declared inside a Type"},
        {"Type TFoo\nField a:Int, a:Int", "Syntax error: Duplicate field 'a' in Type TFoo"},
        {"Type TFoo\nMethod M()\nMethod M()", "Syntax error: Duplicate method 'M' in Type TFoo"},
        {"Type TFoo\nField M:Int\nMethod M()", "Identifier 'M' is already defined."},
        {"Type TFoo\nMethod TFoo()", "Identifier 'TFoo' is already defined."},
        {"Type TFoo\nField int:Int", "This is a reserved C++ identifier 'int', use another identifier"},
        {"Type TFoo\nField x:Float\nEndType", "Unknown type: Float" + hint},
        {"Global x:Float", "Unknown type: Float" + hint},
        {"Global x:Float[3]", "Unknown type: Float" + hint},
        {"Const x:number = 1", "Unknown type: number"},
        {"Global x:TBar", undefined},
        {"Global x:Void", "Unknown type: Void" + hint},
        {"Global x:", "Type annotation incomplete - expected type after ':'"},
        {"Global x:Sequence Int", "Expected 'Of <Type>' after 'Sequence' (e.g. Local x:Sequence Of Int)"},
        {"Type TFoo\nEndType\nGlobal x:Sequence Of TFoo",
         "A Sequence cannot hold a Type. 'TFoo' is a Type - Types have their own list (use EachIn / First / "
         "Last), or "
         "declare 'TFoo' as an Element to store it in a Sequence."},
        {"Global x:Sequence Of Float",
         "A Sequence holds basic data types (Int, Double, String, ...) or Elements. Unknown element type: "
         "Float"},
        {"Function F:Float()", "Unknown type: Float" + hint},
        {"Function F(x:TBar)", undefined},
        {"Function F(x Int)", "Unexpected token in parameter list."},
        {"Function F(x,)", "Unexpected token in parameter list."},
        {"Function F x:Int", "Unexpected token in parameter list."},
        {"Function F(x:Int) y", "Unexpected token in parameter list."},
        {"Function F(x = y + 1)",
         "The default value of parameter 'x' must be a number, a text, True, False, Null or a Const"},
        {"Function F(x:Int = \"a\")",
         "Type mismatch: Cannot assign std::string to int variable 'x'\nUse ToInt(...) to turn the String "
         "into a number."},
        {"Function F(x = Null)", "Parameter 'x' = Null requires a type annotation (:Type)"},
        {"Function int()", "This is a reserved C++ identifier 'int', use another identifier"},
        {"Function WHILE()", "This is a reserved Korvel keyword 'WHILE', use another identifier"},
        {"Function F()\nFunction F()", "Identifier 'F' is already defined."},
        {"Function Main()\nFunction main()", "Identifier 'main' is already defined."},
        {"Element F\nEndElement\nFunction F()", "Identifier 'F' is already defined."},
        {"Function F()\nGlobal F:Int", "Identifier 'F' is already defined."},
        {"Global F:Int\nFunction F()", "Identifier 'F' is already defined."},
        {"Global a:Int, a:Int", "Identifier 'a' is already defined."},
        {"Const a = 1\nGlobal a:Int", "Identifier 'a' is already defined."},
        {"Global a:Int\nPreCalc a:Int[2]", "Identifier 'a' is already defined."},
        {"Element A\nField b:TB\nEndElement\nElement TB\nField a:A\nEndElement",
         "An Element cannot contain itself: A -> TB -> A. Use a Type or a Sequence for the Field "
         "'a'"},
        {"Include \"main.kvl\"", "Include circle: main.kvl -> main.kvl"},
        {"Include \"./main.kvl\"", "Include circle: main.kvl -> ./main.kvl"},
        {"Include \"b.kvl\"", "Include circle: main.kvl -> b.kvl -> main.kvl"},
    };
    Write("b.kvl", "; Include \"no.kvl\"\nPrint 1 | Include \"main.kvl\"\n");
    for (const auto& c : cases) {
        EXPECT_EQ(FatalMessage([&] { Read(c.first); }), c.second) << c.first;
    }
}

TEST_F(FirstPassTest, FirstDeclarationWinsBetweenFieldsAndGlobals) {
    const std::string cases[][2] = {
        {"Global x:Int\nType TFoo\nField x:Int",
         "ERROR: Field 'x' in Type TFoo conflicts with already-declared Global variable 'x'\n"
         "  First come first served - the Global was declared first.\n"},
        {"Const x = 1\nType TFoo\nField x:Int",
         "ERROR: Field 'x' in Type TFoo conflicts with already-declared Const 'x'\n"
         "  First come first served - the Const was declared first.\n"},
        {"Type TFoo\nField x:Int\nEndType\nGlobal x:Int",
         "ERROR: Global variable 'x' conflicts with already-declared Field 'x' in Type TFoo\n"
         "  First come first served - the Field was declared first.\n"},
        {"Type TFoo\nField x:Int\nEndType\nConst x = 1",
         "ERROR: Const 'x' conflicts with already-declared Field 'x' in Type TFoo\n"
         "  First come first served - the Field was declared first.\n"},
        {"Type TFoo\nField x:Int\nEndType\nGlobal X:Int", "no error"},
    };
    for (const auto& c : cases) EXPECT_EQ(FatalText([&] { Read(c[0]); }), c[1]);
}

TEST_F(FirstPassTest, KnowsWhichLoopsMayCreate) {
    Read(
        "Type TA\n Field n:Int\n Method Split()\n  Spawn 1\n EndMethod\nEndType\n"  // 1-6
        "Type TB\nEndType\n"                                                        // 7-8
        "Function Spawn(n:Int)\n Local a:TA = Create TA\nEndFunction\n"             // 9-11
        "Function Look()\nEndFunction\n"                                            // 12-13
        "Function Main()\n"
        " For a:TA EachIn TA\n  Look\n Next\n"      // 15: creates nothing
        " For Each a In TA\n  a\\Split()\n Next\n"  // 18: TA through a Method
        " For a EachIn TA\n  For i = 1 To 3\n   Look\n  Next\n  Local b:TB = New TB\n Next\n"  // 21: TB
        " For a EachIn TA\n  Insert a After x\n Next\n"  // 27: re-orders
        " For a EachIn TA\n"                             // 30: inline C++
        "InlineCpp\nEndInlineCpp\n Next\n"
        "EndFunction\n");
    const ClassInfo& a = *FindClass("TA");
    const ClassInfo& b = *FindClass("TB");
    struct Case {
        int line;
        bool mayCreateA, mayCreateB;
    };
    for (const Case& c : {Case{15, false, false}, Case{18, true, false}, Case{21, false, true},
                          Case{27, true, true}, Case{30, true, true}, Case{99, true, true}}) {
        EXPECT_EQ(LoopMayCreate(settings.mainSource, c.line, a), c.mayCreateA) << c.line;
        EXPECT_EQ(LoopMayCreate(settings.mainSource, c.line, b), c.mayCreateB) << c.line;
    }
}

TEST_F(FirstPassTest, TimersRunWithinEveryLoop) {
    Read(
        "Type TA\nEndType\n"
        "Function Tick()\n Local a:TA = Create TA\nEndFunction\n"
        "Function Main()\n AutoCall 10, Tick\n For a EachIn TA\n Next\nEndFunction\n");
    EXPECT_TRUE(LoopMayCreate(settings.mainSource, 8, *FindClass("TA")));
}

TEST_F(FirstPassTest, SettlesUntypedGlobalsFromTheirInitialiser) {
    Read("Global a = b, b = c\nConst c = 1.5\n");
    EXPECT_EQ(FindGlobal("a")->type, Single(Base::Double));
}

}  // namespace
