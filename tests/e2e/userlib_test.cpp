// Userlibs against real shared libraries: an installation of its own whose userlibs folder holds them.
#include <gtest/gtest.h>

#include <filesystem>

#include "toolchain.h"

namespace fs = std::filesystem;

namespace {

const char* const library = R"(
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int add(int a, int b) { return a + b; }
double half(double x) { return x / 2; }
long total(unsigned char a, short b, long c) { return a + b + c; }
const char* greet(const char* name) {
    static char text[100];
    snprintf(text, sizeof text, "Hello, %s!", name);
    return text;
}
const char* nothing(void) { return NULL; }
int length(const char* text) { return (int)strlen(text); }
void* open_counter(int start) {
    int* counter = malloc(sizeof *counter);
    *counter = start;
    return counter;
}
int next_number(void* counter) { return ++*(int*)counter; }
void close_counter(void* counter) { free(counter); }
int is_null(void* pointer) { return pointer == NULL; }
void* same(void* object) { return object; }
int fake_sleep(int n) { return n * 10; }
int class_of(int class, int result) { return class * 100 + result; }
)";

const char* const declarations =
    "; what counter.so offers\r\n"
    ".lib \"counter.so\"\r\n"
    "Add%(a%, b%):\"wrong\"\r\n"
    "Add%(a%, b%):\"add\"\r\n"
    "Add_ptr%(n%):\"fake_sleep\"\r\n"
    "Half#(x#):\"half\"\r\n"
    "Add_TYPE#(x#):\"half\"\r\n"
    "Total:Long(a:Byte, b:Short, c:Long):\"total\"\r\n"
    "Greet$(name$):\"greet\"\r\n"
    "Nothing$():\"nothing\"\r\n"
    "length%(text$)\r\n"
    "OpenCounter:void*(start%):\"open_counter\"\r\n"
    "NextNumber%(counter*):\"next_number\"\r\n"
    "CloseCounter(counter*):\"close_counter\"\r\n"
    "IsNull%(p:TPlayer):\"is_null\"\r\n"
    "Same:TPlayer(p:TPlayer):\"same\"\r\n"
    "sleep%(n%):\"fake_sleep\"\r\n"
    "exception%(n%):\"fake_sleep\"\r\n"
    "ClassOf%(class%, result%):\"class_of\"\r\n"
    "Missing%(n%)\r\n"
    "  .lib \"not there.so\"\r\n"
    "Absent#(x#)\r\n"
    "AbsentText$()";

const char* const program = R"(Import "counter.decls"
Import "counter.decls"
Include "lib/more.kvl"

Type TPlayer
    Field name:String
EndType

Global early:Int = Add(20, 1)
Global twice:Int = FromInclude() * early
Global made:TMade = Create TMade, sum:Int = made\Sum(2), outer:Outer, spots:Spot[2]
Global text:String = "{%Add(3, 4)}/{%outer\spot\x}", list:Sequence Of Int = MakeList()

Type TMade
    Field a:Int = Add(5, 5)
    Method constructor()
        a = a + Deeper()
    EndMethod
    Method Sum:Int(b:Int)
        Return Add(a, b)
    EndMethod
EndType
Element Outer
    Field spot:Spot
EndElement
Element Spot
    Field x:Int = Add(8, 9)
EndElement
Function Deeper:Int()
    Return ToInt("{%Add(10, 10)}")
EndFunction
Function MakeList:Sequence Of Int()
    Local s:Sequence Of Int
    SeqAdd s, Add(1, 1)
    Return s
EndFunction

Function Main
    Print early
    Print twice
    Print made\a & " " & sum & " " & spots[1]\x & " " & text & " " & SeqGet(list, 0) & inIncluded\x
    Local text:String = "wide"
    Print Add(2, 3) + Add(Add(1, 1), 1)
    Print Half(5.0) + Add_ptr(3) + Add_TYPE(3)
    Print Half(3)
    Print Total(250, 300, 70000)
    Print Greet("Ada")
    Print Greet(text + "r")
    Print "[" & Nothing() & "]"
    Print length("four") + length(text)
    Local counter = OpenCounter(40)
    NextNumber(counter)
    Print NextNumber(counter)
    CloseCounter counter
    Local p:TPlayer = Create TPlayer
    p\name = "Bob"
    Local q:TPlayer = Same(p)
    Print q\name & IsNull(p) & IsNull(Null)
    Print sleep(exception(1) - 3)
    Print ClassOf(4, 2)
    If Add(1, 1) = 2 And length("ab") > 1 Then Print "condition"
    Print Missing(1)
    Print Absent(1.5)
    Print "[" & AbsentText() & "]"
    Print FromInclude()
EndFunction
)";

const char* const included = R"(Import "counter.decls"
Global inIncluded:Spot
Function FromInclude:Int()
    Return Add(40, 2)
EndFunction
)";

const char* const output =
    "21\n882\n30 32 17 7/17 217\n8\n34\n1.5\n70550\nHello, Ada!\nHello, "
    "wider!\n[]\n8\n42\nBob01\n70\n402\ncondition\n0\n0\n[]\n42\n";

class Userlib : public testing::Test {
protected:
    void SetUp() override {
        folder = FreshFolder(std::string("userlib.") +
                             testing::UnitTest::GetInstance()->current_test_info()->name());
        root = folder + "/root";
        fs::create_directories(root + "/bin");
        fs::create_directories(folder + "/out");
        fs::copy_file(GetPlaces().stage + "/bin/kvt", root + "/bin/kvt");
        fs::copy(GetPlaces().stage + "/config", root + "/config");
        WriteFile(folder + "/counter.c", library);
        WriteFile(root + "/userlibs/counter.decls", declarations);
        Write("main.kvl", program);
        Write("lib/more.kvl", included);
    }

    void BuildLibrary() {
        const ProcessResult built = RunProcess(
            {"gcc", "-shared", "-fPIC", "-o", root + "/userlibs/counter.so", folder + "/counter.c"}, folder,
            "", 60);
        ASSERT_EQ(built.exitStatus, 0) << built.err;
    }
    void Write(const std::string& file, const std::string& text) { WriteFile(folder + "/" + file, text); }

    ProcessResult Translate(std::vector<std::string> flags = {}) {
        std::vector<std::string> command{root + "/bin/kvt", "-s", folder + "/main.kvl", "-o",
                                         folder + "/out"};
        command.insert(command.end(), flags.begin(), flags.end());
        ProcessResult kvt = RunProcess(command, folder, "", 20);
        LogMessages(kvt);
        return kvt;
    }
    // Translates a main source and expects the report for a line of it.
    void ExpectError(const std::string& source, const std::string& message, int line) {
        Write("main.kvl", source);
        const ProcessResult kvt = Translate();
        EXPECT_EQ(kvt.exitStatus, 1);
        const std::string report =
            "Error: " + message + "\nFile: " + folder + "/main.kvl\nLine: " + std::to_string(line) + "\n\n";
        EXPECT_NE(kvt.out.find(report), std::string::npos) << kvt.out;
    }

    std::string folder, root;
};

TEST_F(Userlib, RunsAgainstARealLibrary) {
    BuildLibrary();
    for (const std::vector<std::string>& flags : {std::vector<std::string>{}, {"-safe"}}) {
        const ProcessResult kvt = Translate(flags);
        ASSERT_EQ(kvt.exitStatus, 0) << kvt.out << kvt.err;
        EXPECT_NE(kvt.out.find("\n  Warning: DLL not found in userlibs/: not there.so\n"), std::string::npos);
        EXPECT_EQ(CheckGenerated(folder + "/out"), "");
        if (GetPlaces().translateOnly) return;
        CompileOptions options;
        options.linkerFlags = "-ldl";
        const ProcessResult compiled = CompileProgram(folder + "/out/main.cpp", folder + "/out", options);
        ASSERT_EQ(compiled.exitStatus, 0) << compiled.err;
        const ProcessResult run = RunProcess({folder + "/out/program"}, folder, "", 10);
        LogMessages(run);
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_EQ(run.out, output);
        const char* const errors[] = {
            "ERROR: Failed to load function Missing as 'Missing' from counter.so - ",
            "ERROR: Failed to load not there.so: ",
            "ERROR: Missing not loaded!\n",
            "ERROR: Absent not loaded!\n",
            "ERROR: AbsentText not loaded!\n",
        };
        for (const char* error : errors)
            EXPECT_NE(run.err.find(error), std::string::npos) << error << run.err;
    }
}

TEST_F(Userlib, TellsInVerboseMode) {
    BuildLibrary();
    const std::string said = Translate({"-v"}).out;
    const char* const lines[] = {
        "  - Importing userlib: counter.decls\n    DLL: counter.so\n",
        "      Function: Half -> half (returns double)\n",
        "      Function: Greet -> greet (returns std::string)\n",
        "  - Skipping duplicate import: counter.decls\n",
        "\n\nCopying userlib DLLs to output directory...\n  Copied: counter.so -> ",
    };
    for (const char* line : lines) EXPECT_NE(said.find(line), std::string::npos) << line;
}

TEST_F(Userlib, KeepsItsBlockInTheMainFile) {
    Translate();
    const std::string main = ReadFile(folder + "/out/main.cpp");
    EXPECT_EQ(main.rfind("#include \"main.h\"\n\n\n// ===== Userlib Runtime Linking =====\n", 0), 0U);
    EXPECT_NE(main.find("int main()\n{\n\tInitUserlibs(); // Initialize runtime-linked DLLs\n"),
              std::string::npos);
    EXPECT_EQ(ReadFile(folder + "/out/lib/more.cpp").find("Userlib"), std::string::npos);
}

TEST_F(Userlib, ChecksCallsAndNames) {
    const std::string open = "Import \"counter.decls\"\nType TPlayer\nEndType\nFunction Main\n";
    const std::string close = "\nEndFunction\n";
    ExpectError(open + "Print Add(1)" + close, "Userlib function 'Add' expects 2 parameter(s) but 1 provided",
                5);
    ExpectError(open + "Print Add(1, Greet(\"a\"))" + close,
                "Userlib function 'Add' parameter 2 expects type int but got std::string", 5);
    ExpectError(open + "Greet(\"a\", 2)" + close,
                "Userlib function 'Greet' expects 1 parameter(s) but 2 provided", 5);
    ExpectError("Import \"gone.decls\"\n", "Cannot open userlib declaration file: userlibs/gone.decls", 1);
    WriteFile(root + "/userlibs/bad.decls", "\n.lib \"a.dll\"\nTake(v:TVec)\n");
    ExpectError(
        "Element TVec\nEndElement\nImport \"bad.decls\"\n",
        "userlibs/bad.decls, line 3: in the declaration of 'Take', 'TVec' is an Element, and Elements "
        "cannot be passed to a DLL or returned from it",
        3);
    WriteFile(root + "/userlibs/bad.decls", ".lib \"a.dll\"\nPrint(n%)\n");
    ExpectError("\nImport \"bad.decls\"\n",
                "This is a reserved Korvel keyword 'Print', use another identifier", 2);
}

TEST_F(Userlib, RefusesAnOutputFolderThatCannotTakeTheLibrary) {
    BuildLibrary();
    fs::create_directories(folder + "/out/counter.so");
    const ProcessResult kvt = Translate();
    EXPECT_EQ(kvt.exitStatus, 1);
    EXPECT_NE(
        kvt.out.find("Error: Cannot write DLL to output directory: " + folder + "/out/counter.so\nFile: "),
        std::string::npos)
        << kvt.out;
}

}  // namespace
