#include <cstdlib>

#include "base/run.h"
#include "base/settings.h"
#include "collect/userlib_reader.h"
#include "linking/deploy.h"
#include "linking/runtime_code.h"
#include "scratch_folder.h"
#include "symbols/identifiers.h"
#include "symbols/symbols.h"

namespace {

class Userlib : public testing::Test {
protected:
    void SetUp() override {
        Declare("TPlayer", false);
        Declare("TVec", true);
        wordLists.reservedCppWords = {"class", "int", "std"};
        wordLists.reservedKeywords = {"print"};
    }
    void TearDown() override { RenewRun(); }

    static void Declare(const std::string& name, bool isElement) {
        ClassInfo& cls = symbols.classes.emplace_back();
        cls.name = name;
        cls.cppName = "KVL_" + name;
        cls.isElement = isElement;
        symbols.classIndex[name] = &cls;
    }
    static void Import(const std::string& text) {
        ScratchFolder::Write("userlibs/x.decls", text);
        ImportUserlib({"userlibs/x.decls"});
    }
    // name -> symbol: result (type name, ...), with Korvel types.
    static std::string Shown(const UserlibFunction& f) {
        std::string text = f.name + " -> " + f.symbol + ": " + f.korvelReturn + " (";
        for (const UserlibParameter& p : f.parameters) text += " " + p.korvelType + " " + p.name;
        return text + " )";
    }

    ScratchFolder scratch;
};

TEST_F(Userlib, ReadsFunctionLines) {
    const struct {
        const char *line, *shown;
    } rows[] = {
        {"Beep%(freq%, duration%):\"Beep\"", "Beep -> Beep: Int ( Int freq Int duration )"},
        {"MessageBox%(hwnd*, text$, caption$, flags%):\"MessageBoxA\"",
         "MessageBox -> MessageBoxA: Int ( void* hwnd String text String caption Int flags )"},
        {"Tick()", "Tick -> Tick: void ( )"},
        {"  \tHalf#(x#, y!)", "Half -> Half: Double ( Double x Double y )"},
        {"Third!(x)", "Third -> Third: Double ( Int x )"},
        {"Name$(who:TPlayer, mode:Byte) : Alias", "Name -> Alias: String ( TPlayer who Byte mode )"},
        {"Find:TPlayer(name$)", "Find -> Find: TPlayer ( String name )"},
        {"Open:void*(name$):\"_open@4\"", "Open -> _open@4: void* ( String name )"},
        {"Start:\"_start\"", "Start -> _start: void ( )"},
        {"Count:Int", "Count -> Count: Int ( )"},
        {"Count:Int:\"cnt\"", "Count -> cnt: Int ( )"},
        {"Count%:\"cnt\"", "Count -> cnt: Int ( )"},
        {"Left%(a%, b", "Left -> Left: Int ( Int a Int b )"},
        {"Swap(a%, b%) ; exchanges", "Swap -> Swap: void ( Int a Int b )"},
        {"Void:void()", "Void -> Void: void ( )"},
    };
    for (const auto& row : rows) {
        symbols.userlibDLLs.clear();
        Import(std::string(".lib \"a.dll\"\r\n") + row.line + "\r\n");
        ASSERT_EQ(symbols.userlibDLLs[0].functions.size(), 1U) << row.line;
        EXPECT_EQ(Shown(symbols.userlibDLLs[0].functions[0]), row.shown) << row.line;
    }
}

TEST_F(Userlib, SkipsWhatIsNoDeclaration) {
    Import(
        "Early%(a%)\n"
        ".lib missing quotes\n"
        ".LIB \"capitals.dll\"\n"
        "Early2%(a%)\n"
        "  .lib \"first.dll\" ; the \"real\" one\n"
        "\n;Beep%(f%)\n'Beep%(f%)\nLonely\n%(a%)\nMk*():\"mk\"\n.lib\n"
        "One()\n"
        ".lib \"second.dll\"\n"
        "Two()");
    ASSERT_EQ(symbols.userlibDLLs.size(), 2U);
    EXPECT_EQ(symbols.userlibDLLs[0].name, "first.dll\" ; the \"real");
    ASSERT_EQ(symbols.userlibDLLs[0].functions.size(), 1U);
    EXPECT_EQ(symbols.userlibDLLs[1].functions[0].name, "Two");
    EXPECT_EQ(symbols.userlibDLLs[1].functions[0].line, 15);
}

TEST_F(Userlib, EscapesLiterals) {
    EXPECT_EQ(CppLiteral("a\\b\"c\t\x7F?"), "\"a\\\\b\\\"c\\011\\177?\"");
    EXPECT_EQ(CppLiteral("what?"
                         "?/"),
              "\"what?\\?/\"");
    EXPECT_EQ(CppLiteral("\xC3\xA4"), "\"\xC3\xA4\"");
}

// Whatever a declaration says, the block compiles: awkward names, quotes, backslashes, every type.
TEST_F(Userlib, TheBlockCompiles) {
    Import(
        ".lib \"odd\\\"name\\\"\n"
        "abs%(n%)\nclose%(fd%)\nputs%(s$)\nBeep%(f%, d%)\nMessageBox%(h*, t$, c$, f%):\"Message\"Box\"\n"
        "main%()\nerrno%()\narray%(a%)\nstdout*(p*)\nAll(a:Byte, b:Short, c:Long, d:Bool, e*, f:TPlayer, g$, "
        "h#)\n"
        "Twice:TPlayer(p:TPlayer):\"tw\\ice\"\nTwice#(std#, std%, std_$)\nvector%(Twice_ptr%, "
        "vector_ptr%)\n");
    ScratchFolder::Write(
        "block.cpp",
        "#include <iostream>\n#include <string>\n#include <vector>\n#include <algorithm>\n"
        "#include <cstdlib>\n#include <functional>\n#include <cmath>\n#include <array>\n"
        "#include <unistd.h>\nusing namespace std;\nclass KVL_TPlayer;\n" +
            GenerateUserlibCode() +
            "int main() { InitUserlibs(); return kvl_abs(-3) + kvl_close(99) + kvl_puts(\"x\") + "
            "kvl_main() + kvl_errno() + kvl_array(1); }\n");
    EXPECT_EQ(
        std::system("g++ -std=c++11 -Wall -Wextra -Wno-unused-parameter -Werror -fsyntax-only block.cpp"), 0);
}

}  // namespace
