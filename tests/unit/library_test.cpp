// The library from outside: any number of programs in one process.
#include "library/korvel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <vector>

#include "case_file.h"

namespace fs = std::filesystem;

namespace {

korvel::Request RequestFor(const std::string& source) {
    korvel::Request request;
    request.installation = STAGE_ROOT;
    request.source = source;
    return request;
}

// Every example in every mode.
std::vector<korvel::Request> AllRequests() {
    std::vector<korvel::Request> requests;
    for (const auto& entry : fs::recursive_directory_iterator(SOURCE_ROOT "/examples")) {
        if (entry.path().extension() != ".kvl") continue;
        for (int flags = 0; flags < 32; ++flags) {
            korvel::Request request = RequestFor(entry.path().generic_string());
            request.debug = (flags & 1) != 0;
            request.safe = (flags & 2) != 0;
            request.fast = (flags & 4) != 0;
            request.traced = (flags & 8) != 0;
            request.commented = (flags & 16) != 0;
            if (!request.debug || !request.safe) requests.push_back(request);
        }
    }
    return requests;
}

// All that comes out, as one text.
std::string TextOf(const korvel::Result& result) {
    std::string text;
    for (const korvel::GeneratedFile& file : result.files) text += "== " + file.path + "\n" + file.text;
    for (const korvel::Diagnostic& said : result.diagnostics)
        text += said.file + ":" + std::to_string(said.line) + ": " + said.message + "\n";
    for (const std::string& flag : result.linkerFlags) text += flag + "\n";
    return text;
}

// A mistake in the middle of everything: two files, open blocks, a timer, a loop over a Sequence.
korvel::Result CheckBroken() {
    korvel::Request request = RequestFor("/nowhere/main.kvl");
    request.overlays = {{"/nowhere/lib/../main.kvl",
                         "Include \"lib/used.kvl\"\nGlobal list:Sequence Of Int\nFunction Main\n    Late()\n"
                         "    AutoCall Tick Every 100\n    EachSeq item In list\n        With Create TUsed\n"
                         "            Print its\\Name((((missing))))\n"},
                        {"/nowhere/lib/used.kvl",
                         "Type TUsed\n    Method Name:String(n:Int)\n    EndMethod\nEndType\n"
                         "Function Tick\nEndFunction\nFunction Late(n:Int = none)\nEndFunction\n"}};
    return korvel::Check(request);
}

TEST(Library, TranslatesTheSameWhateverCameBefore) {
    std::vector<korvel::Request> requests = AllRequests();
    ASSERT_FALSE(requests.empty());
    std::map<std::string, std::string> first;
    for (const korvel::Request& request : requests) {
        const korvel::Result result = korvel::Translate(request);
        const bool isWhole =
            fs::path(request.source).parent_path().filename() == "examples";  // no included file
        EXPECT_TRUE(korvel::IsSound(result) || !isWhole) << request.source << "\n" << TextOf(result);
        first[request.source] += TextOf(result);
    }
    std::reverse(requests.begin(), requests.end());
    std::map<std::string, std::string> again;
    for (const korvel::Request& request : requests) {
        EXPECT_FALSE(korvel::IsSound(CheckBroken()));
        again[request.source].insert(0, TextOf(korvel::Translate(request)));
    }
    EXPECT_TRUE(first == again) << "some example comes out differently";
    korvel::Reset();
}

TEST(Library, TellsWhereMistakesAreInTextsFromMemory) {
    const korvel::Result result = CheckBroken();
    EXPECT_EQ(
        TextOf(result),
        "/nowhere/main.kvl:7: With requires a variable that holds an object, not an expression\n"
        "/nowhere/lib/used.kvl:3: Method with return type 'String' must have a Return statement\n"
        "/nowhere/lib/used.kvl:7: The default value of parameter 'n' must be a number, a text, True, False, "
        "Null or a Const\n");
    EXPECT_EQ(result.sources, (std::vector<std::string>{"/nowhere/main.kvl", "/nowhere/lib/used.kvl"}));
}

// In each program what its mistake is about stands between the signs # and #, which it is checked without.
TEST(Library, TellsWhatAMistakeIsAbout) {
    const char* const programs[] = {
        "Type TA\n    Field hp:Int\n    Field name:#Strin#\nEndType\nFunction Main\nEndFunction\n",
        "Function Foo:Int(a:Int, b:String)\n    Return #a & b#\nEndFunction\nFunction Main\nEndFunction\n",
        "Type TA\n    Method Hit(n:Int)\n    EndMethod\nEndType\nFunction Main\n    Local t:TA = Create TA\n"
        "\tPrint 1 | t\\Hit(#\"x\"#) ; Hit\nEndFunction\n",
        "Type TA\nEndType\nFunction Main\n    Local Hut:TA = Create TA\n    Hut\\#Hut#(1)\nEndFunction\n",
        "Function Main\n    Print \"gr\xC3\xB6\xC3\x9F\x65r {%  #no# } {%1}\"\nEndFunction\n",
        "Function F:Int(a:Int)\n    Return a\nEndFunction\nFunction Main\n    Local q:Int = 3 + _ ; no\n"
        "        F(1) + _\n   #F#(1, 2)\nEndFunction\n",
        "Function Main\n    Local q:Int = 3 + ~~\n  1~ + #no# + ~\n 7\nEndFunction\n",
        "Function Main\n    If 1 = 1 Then Print Abs(#\"x\" & 2#)\nEndFunction\n",
        "Function Main\n    If #\"x\" & 1# Then Print 1\nEndFunction\n",
        "Function Main\n    Local n:Int = 1 | Local #n#:Int = 2\nEndFunction\n",
        "Function Main\n    Print 1 | #Next# | Print 2\nEndFunction\n",
    };
    for (const std::string marked : programs) {
        const std::size_t open = marked.find('#'), close = marked.find('#', open + 1);
        const std::size_t lineStart = marked.rfind('\n', open) + 1;
        korvel::Request request = RequestFor("/nowhere/main.kvl");
        const std::string meant = marked.substr(open + 1, close - open - 1);
        request.overlays = {{request.source, marked.substr(0, open) + meant + marked.substr(close + 1)}};
        const korvel::Result result = korvel::Check(request);
        ASSERT_EQ(result.diagnostics.size(), 1U) << TextOf(result);
        const korvel::Diagnostic& said = result.diagnostics[0];
        EXPECT_EQ(said.line, 1 + std::count(marked.begin(), marked.begin() + static_cast<long>(open), '\n'));
        EXPECT_EQ(said.firstColumn, static_cast<int>(open - lineStart) + 1) << marked;
        EXPECT_EQ(said.lastColumn, said.firstColumn + static_cast<int>(meant.size()) - 1) << marked;
    }
}

// One word alone may be meant to close the loop, unless it is nearly the name of something else.
TEST(Library, TellsOfOpenLoopsBesideOtherMistakes) {
    korvel::Request request = RequestFor("/nowhere/main.kvl");
    for (const auto& [word, isTold] : {std::pair("Drawn", true), std::pair("Wendd", false)}) {
        request.overlays = {
            {request.source, "Function Draw\nEndFunction\nFunction Main\n    Local n:Int = \"x\"\n    " +
                                 std::string(word) + "\n    While n = 1\nEndFunction\n"}};
        const std::string told = TextOf(korvel::Check(request));
        EXPECT_EQ(told.find(":6: While loop starting at line 6 is missing 'Wend'") != std::string::npos,
                  isTold)
            << told;
        EXPECT_NE(told.find(":4: Type mismatch"), std::string::npos) << told;
    }
}

// The last change first, so that the places of the others stay.
static std::string Fixed(std::string text, const std::vector<korvel::Fix>& fixes) {
    for (auto fix = fixes.rbegin(); fix != fixes.rend(); ++fix) {
        std::size_t line = 0;
        for (int i = 1; i < fix->line; ++i) line = text.find('\n', line) + 1;
        text.replace(line + static_cast<std::size_t>(fix->firstColumn) - 1,
                     static_cast<std::size_t>(fix->lastColumn - fix->firstColumn + 1), fix->replacement);
    }
    return text;
}

// Mistakes, the lines and columns of what is declared or opened elsewhere, hints and what is to be written instead.
TEST(Library, GivesAdvice) {
    korvel::Request request = RequestFor("/nowhere/main.kvl");
    request.overlays = {
        {request.source,
         "Const Limit = 3\nType TPlayer\n    Field score:Int\n    Method Hit(n:Int)\n"
         "        scores = n\n        Hit() | Hit(\"a\")\n    EndMethod\nEndType\nGlobal Limit:Int\n"
         "Function Square:Int(n:Int)\n    Return N\nEndFunction\nFunction Main\n"
         "    Prnit 1 | Local p:TPlayr = Null\n    Local q:TPlayer = Create TPlayer\n"
         "    Print \"{%Squre(q\\Score)}\" + Sqt(2)\n    If True Then\n        Local gone = 1\n"
         "    EndIf\n    Print gone\n    Print nosuch\n    Local q = 1\n    Repeat | If gone\n"
         "    Until True\n    EndIf\nEndFunction\nFunction Wrong(a:Int, b:TPlyer)\n    Print a\n"
         "EndFunction\nFunction Right(a:Int)\n    Print \"{%a}{$a}\"\nEndFunction\n"}};
    std::string told;
    for (const korvel::Diagnostic& said : korvel::Inspect(request).result.diagnostics) {
        const auto placeOf = [](const korvel::Range& range) {
            return std::to_string(range.line) + ":" + std::to_string(range.firstColumn);
        };
        std::cout << said.message << "\n" << said.hint << "\n";
        told += placeOf(said) + " " + said.hint;
        for (const korvel::Related& other : said.related)
            told += " < " + placeOf(other) + " " + other.message;
        for (const korvel::Fix& fix : said.fixes) told += " > " + placeOf(fix) + " " + fix.replacement;
        told += "\n";
    }
    EXPECT_EQ(
        told,
        "5:9 did you mean 'score'? > 5:9 score\n6:9  < 4:12 declared here\n6:21 Use ToInt(...) to turn the "
        "String into a number.\n9:8  < 1:7 declared here\n"
        "11:12 names are case-sensitive; did you mean 'n'? > 11:12 n\n14:5 did you mean 'Print'? > 14:5 "
        "Print\n"
        "14:23 did you mean 'TPlayer'? > 14:23 TPlayer\n16:14 did you mean 'Square'? > 16:14 Square\n"
        "20:11 'gone' was declared in a block that has ended; declare it before the block\n"
        "21:11 nothing that is visible here is called 'nosuch'; Local, Global and Const declare variables\n"
        "22:11  < 15:11 declared here\n24:5  < 23:5 opened here\n27:25 did you mean 'TPlayer'? > 27:25 "
        "TPlayer\n31:16 Write {%a} > 31:16 {%a}\n");
}

// A line for what is wrong, the lines that the fix makes of it, and nothing is wrong with them.
TEST(Library, FixesMistakes) {
    const char* const table[][2] = {
        {"Let n = 3|set a[1] = 2", "n = 3|a[1] = 2"},
        {"// text", "; text"},
        {"Local x:Integer = 3|Local f:float = 3", "Local x:Int = 3|Local f:Double = 3"},
        {"Dim x As Int = 3|Dim y As TA|y\\size = x", "Local x:Int = 3|Local y:TA|y\\size = x"},
        {"Println n div 2|delete p", "Print n / 2|Remove p"},
        {"If p is Nil Then Print 0xFF", "If p = Null Then Print $FF"},
        {"If n = 1\n    n = 2\nElse If n = 2\nEnd If", "If n = 1\n    n = 2\nElseIf n = 2\nEndIf"},
        {"While True\n    break\nEndWhile", "While True\n    Exit\nWend"},
        {"Select Case n\n    Case 1\n        Print 1\nEndSelect",
         "Select n\n    Case 1\n        Print 1\nEndSelect"},
        {"n := 4 /* four */\n/* text */", "n = 4 ; four\n; text"},
        {"int k = 3, b[2]|k = b[0]\nString t", "Local k:Int = 3, b:Int[2]|k = b[0]\nLocal t:String"},
        {"Print \"a\" : Print n", "Print \"a\" | Print n"},
        {"If n = 1:\n    n = 2\nElse:\n    Local b[2][3]:Int\nEndIf",
         "If n = 1\n    n = 2\nElse\n    Local b:Int[2][3]\nEndIf"},
        {"If n = 1: Print n|Print \"{%n: {%n}\"", "If n = 1 Then Print n|Print \"{%n}: {%n}\""},
        {"Print Str(n) + Str$(n)|n = int(\"3\")|Print Chr$(n)",
         "Print ToString(n) + ToString(n)|n = ToInt(\"3\")|Print Chr(n)"},
        {"p->size = 3|Print p->size|p->size++", "p\\size = 3|Print p\\size|p\\size = p\\size + 1"},
        {"a[n - 1] -= n + 1|--n|If n = 1 Then n *= 2",
         "a[n - 1] = a[n - 1] - (n + 1)|n = n - 1|If n = 1 Then n = n * 2"},
        {"If n = 1 Print 'a' + 'b' // two", "If n = 1 Then Print \"a\" + \"b\" ; two"},
        {"For i = 1 To 3|Print i|Next", "For Local i = 1 To 3|Print i|Next"},
        {"EndFunction\nType TB\n    Function A()\n        Print 1\n    EndFunction\nEndType\nFunction B()",
         "EndFunction\nType TB\n    Method A()\n        Print 1\n    EndMethod\nEndType\nFunction B()"},
        {"Print \xE2\x80\x9C"
         "a\xE2\x80\x9D",
         "Print \"a\""},
        {"Print \"say \\\"hi\\\"\"", "Print \"say ~qhi~q\""},
        {"Print (3 + a[n] ; text", "Print (3 + a[n]) ; text"},
        {"Print \"x", "Print \"x\""},
        {"Print \"{n} {$n} {%n\"|Print p\\siz", "Print \"{%n} {%n} {%n}\"|Print p\\size"},
        {"If n = 1\n    n = 2\nElse\n    n = 3\n\nPrint n",
         "If n = 1\n    n = 2\nElse\n    n = 3\nEndIf\n\nPrint n"},
        {"Repeat\n    While n < 3\n        n = 3\nUntil n",
         "Repeat\n    While n < 3\n        n = 3\n    Wend\nUntil n"},
        {"EndFunction\nFunction A()\n    Print 1\nFunction B()",
         "EndFunction\nFunction A()\n    Print 1\nEndFunction\nFunction B()"},
        {"EndFunction\nType TB\n    Method A()\n        Print 1\nEndType\nFunction B()",
         "EndFunction\nType TB\n    Method A()\n        Print 1\n    EndMethod\nEndType\nFunction B()"}};
    const std::string head =
        "Type TA\nField size:Int\nEndType\nFunction Main\nLocal n = 1, p:TA = Create TA, a:Int[3]\n";
    for (const auto& [wrong, right] : table) {
        korvel::Request request = RequestFor("/nowhere/main.kvl");
        request.warnings = false;
        request.overlays = {{request.source, head + wrong + "\nEndFunction\n"}};
        std::string& text = request.overlays[0].text;
        for (int i = 0; i < 9; ++i) {
            const std::vector<korvel::Diagnostic> mistakes = korvel::Check(request).diagnostics;
            if (mistakes.empty()) break;
            std::cout << mistakes[0].hint << "\n";
            text = Fixed(text, mistakes[0].fixes);
        }
        EXPECT_EQ(text, head + right + "\nEndFunction\n");
        EXPECT_TRUE(korvel::Check(request).diagnostics.empty()) << text;
    }
}

// What is written in other languages, one line each, and a part of what is said to write here instead.
TEST(Library, AdvisesOnOtherLanguages) {
    const struct {
        std::string line, hint;
    } rows[] = {
        {"Dim i", "Local in a Function"},
        {"Let n = 2", "needs no word in front"},
        {"Constant x = 1", "Write Const MAX"},
        {"Rem x", "begins with ';'"},
        {"# comment", "begins with ';'"},
        {"// comment", "begins with ';'"},
        {"Print 3 // comment", "begins with ';'"},
        {"Print 3 ' comment", "begins with ';'"},
        {"Do", "Loops are Repeat"},
        {"Do While n < 3", "Loops are Repeat"},
        {"EndWhile", "ends with Wend"},
        {"EndFor", "ends with Next"},
        {"Break", "Exit leaves"},
        {"Goto top", "no jumps"},
        {"Sub Foo", "Write Function Name"},
        {"EndSub", "ends with EndFunction"},
        {"Enum Color", "a Const for each"},
        {"Self.x = 1", "is called this"},
        {"Local i:Integer", "called Int"},
        {"Local f:Float", "called Double"},
        {"Local b:Boolean", "called Bool"},
        {"Local s:Text", "called String"},
        {"Local list:List", "A list that grows"},
        {"Print Str$(3)", "called String"},
        {"n = Val(\"3\")", "ToInt(s)"},
        {"Try", "no exceptions"},
        {"ReDim a", "keeps its size"},
        {"Switch n", "Write Select n, Case 1"},
        {"Elif n = 1", "Write ElseIf"},
        {"Class Foo", "Write Type TName"},
        {"Print Nil", "called Null"},
        {"If n Is Null Then Print 1", "Compare with ="},
        {"Println n", "Write Print"},
        {"Call Foo()", "Function's name alone"},
        {"Delete n", "goes with Remove"},
        {"Foreach x In a", "For p:TPlayer EachIn"},
        {"If n = 1 {", "Blocks begin"},
        {"n = n ? 1 : 2", "no operator '?'"},
        {"Local i As Int", "stands behind a colon"},
        {"Local t$ = \"a\"", "stands behind a colon"},
        {"pass", "may be empty"},
        {"Data 1, 2", "into an array"},
        {"Option Explicit", "leave the line out"},
        {"using std", "for other files"},
        {"Print nosuch", "nothing that is visible"},
        {"Print Undefined()", "Function ... EndFunction declares"},
        {"Select Case n", "without Case"},
        {"Input n", "Write Input"},
        {"Print \"say \\\"hi\\\"\"", "~qhi~q"},
        {"Print \"say \"hi\"\"", "~qhi~q"},
        {"Print 'a'", "double quotes"},
        {"n := 3", "'=' alone"},
        {"n = ToInt(\"3\") = 3", "Put a comparison in parentheses"},
        {"Print 1: Print 2", "apart by '|'"},
        {"Print n, n", "joins with '&'"},
        {"Print “a”", "straight quotes"},
        {"Type TFoo Extends TBar", "do not inherit"},
        {"n = n Xor 2", "a BitXor b"},
        {"String s = \"a\"", "behind the name"},
        {"Print 0xFF", "begin with '$'"},
        {"Print 5. + 1", "A number is made of digits"},
        {"n = 1 +\n    2", "in the next one if"},
        {"Print \"a\" & ; more", "in the next one if"},
        {"Repeat\n    While n < 3", "write Until Not (n < 3)"},
        {"If n = 1 Then Print 1\n    EndIf", "ends with its line"},
        {"#define A", "Write Const MAX"},
        {"n = math.sqrt(4)", "called alone here: Sqrt"},
        {"n = random.randint(1, 2)", "called RandomInt"},
        {"n = 2 if n = 1 else 3", "a statement of its own"},
        {"n = n | 2", "BitOr"},
        {"try:", "no exceptions"},
        {"Print \"%d\" % 3", "in holes of the text"},
        {"Print 1)", "one too many"},
        {"EndFunction\nElement Point\n    Field x:Int\nFunction B", "ends with EndElement"},
        {"Local i:Int == 3", "with one '='"},
        {"--n", "n = n - 1"},
        {"/* comment */", "ends with its line"},
        {"Exit 2", "Exit leaves a loop"},
        {"For n = 1 To 3\n        Exit For\n    Next", "Exit stands alone"},
        {"For n = 1 To 3\n        Continue For\n    Next", "Continue stands alone"},
        {"Print Using \"##\"; n", "Format(x, 2)"},
        {"While n = 1 Do\n    Wend", "Nothing stands behind"},
        {"Local s:std::string", "called String"},
        {"await Draw()", "AutoCall Tick"},
        {"Program Test", "between Function Main"},
        {"EndFunction\nFunction A(Optional n:Int = 1)", "may be left out"},
        {"Local lien = 1 | Print line", "mean 'lien'?"},
        {"Repeat\n    Utnil n = 1", "A Repeat ends"},
        {"EndFunction\nType TA\n    Method A\n    EnMethod\nEndType\nFunction B", "'EndMethod' in line"},
        {"Local = 3", "A name stands in front"},
        {"EndFunction\nType TA\n    Feld x:Int\nEndType\nFunction B", "mean 'Field'?"},
        {"Print \"{}\"", "written ~{"},
        {"Local e[3]:Int", "behind the type"},
        {"Local a:Int[2] | a = 3", "with its number"},
        {"Local q:Sequence Of Int | q = 3", "SeqAdd s, 3"},
        {"Local p:TPlayer", "Type ... EndType declares"},
        {"EndFunction\nType TA\nField x:Int\nEndType\nFunction B\nLocal p:TA\np:x = 3", "stand behind '\\'"},
        {"If n = 1 Print 2", "stands Then"},
        {"abstract Foo", "without such words"},
        {"n = 1 << 2", "a Shl b"},
        {"n = 1 >> 2", "a Shr b"},
        {"n = 2 ** 3", "Pow(a, b)"},
        {"If n => 2 Then Print n", "Write >="},
        {"If n =< 2 Then Print n", "Write <="},
        {"n->x = 3", "p\\hp"},
        {"n->x()", "p\\hp"},
        {"Print \"{%n:3}\"", "PadLeft and Format"},
        {"Local a(10)", "size in brackets"},
        {"Local a:Int[3] = [1, 2]", "one by one"},
        {"Print Chr$(65)", "no '$' at their end"},
        {"n = 7 Div 2", "7 / 2 is 3"},
        {"Inc n", "the assignment out"},
        {"Swap n, n", "Local old = a"},
        {"n = Iif(n = 1, 2, 3)", "Write If a"},
        {"n = Lambda", "Function of its own"},
        {"ByRef n", "Globals are seen"},
        {"For (i = 0; i < 3; i++)", "For Local i = 0"},
        {"For i = 1 To 3", "For Local i = 1"},
        {"Select n\n        Case 1 To 5\n    EndSelect", "For a range"},
        {"Print Len(\"a\")", "called Length. It comes with Include \"std/text.kvl\""},
        {"Print Mid$(\"a\", 1)", "Mid comes with"},
        {"Print Rnd(5)", "called RandomDouble. It"},
        {"Cls", "called TerminalClear. It"},
        {"Open \"file\"", "called FileOpen. It"},
        {"Print SeqLen(n)", "called SeqLength"},
        {"DrawShow", "'DrawShow' comes with Include \"std/draw.kvl\""},
        {"Local m:TCountMap", "'TCountMap' comes with"},
        {"Print Lenght(\"a\")", "did you mean 'Length'? It comes with"},
        {"Local a:Int[3] | a(1) = 5", "brackets: a[0]"},
        {"Local q:Sequence Of Int | Print q(1)", "SeqGet(q, index)"},
        {"Local q:Sequence Of Int | q.Add(1)", "begins with Seq"},
        {"Local a:Int[3] | Print a.Length", "An array has no members"},
        {"Local s:String | Print s.length", "Length(s). It comes"},
        {"Local s:String | Print s[1]", "CharAt(s, 0)"},
        {"Local a:Int[3] | a[\"x\"] = 1", "TStringMap"},
        {"Print 5 \\ 2", "divided with '/'"},
        {"Print Min(1 2)", "comma or an operator"},
        {"Print n 3", "comma or an operator"},
        {"Print \"abc", "ends with '\"'"},
        {"Print (1 + 2", "in the same statement"},
        {"Local a:Int[3", "in the same statement"},
        {"Local b:Bool = \"yes\"", "A Bool takes"},
        {"For Local p EachIn list", "without Local"},
        {"For k, v EachIn list", "For n EachIn"},
        {"For c EachIn \"text\"", "CharAt(s, i)"},
        {"For i EachIn n", "To n - 1"},
        {"If n = 1: Print n", "without ':'"},
        {"Local q:Sequence Of Int | SeqAdd 3, q", "stands first"},
        {"Local a:Int[3] | Print SeqLength(a)", "A Sequence grows"},
        {"Local q:Sequence Of Int, a:Int[2] = q", "It is a Sequence"},
        {"Local a:Int[2], q:Sequence Of Int = a", "SeqFromArray s, a"},
        {"EndFunction\nType TA\n    Method M\n        this\\y = 3\n    EndMethod\nEndType", "has M"},
        {"Local string = 1", "in any letter case"},
        {"Local NULL = 1", "in any letter case"},
        {"Local class = 1", "keeps this name"},
        {"Print f\"{n}\"", "holes as it stands"},
        {"While n = 1\n    End While", "write Wend"},
        {"Select n\n        Case n\n    EndSelect", "literals and Consts"},
        {"Local a:Int[3][3] | a[1, 2] = 5", "table[1][2]"},
        {"n = Ubound(a)", "into a Const"},
        {"Print \"-\" * 20", "Repeated(text, 3)"},
        {"Local s:String = \"a\" & \"b\"", "joined with '+'"},
        {"top:", "no labels"},
        {"10 Print n", "no labels"},
        {"If n In a Then Print 1", "SeqContains"},
        {"Local d = {}", "TStringMap"},
        {".x = 1", "called its"},
        {"Stop", "ends the program"},
        {"Static x = 1", "Local in a Function"},
        {"Local x Int", "behind a colon: x:Int"},
        {"Local my name = 1", "one word"},
        {"Local a, b = 1", "a:Int, or a = 1"},
        {"Global x = 1", "of their own is a Local"},
        {"AutoCall Main() Every 5", "Tick Every 1000"},
        {"EndFunction | Local x = 1", "is a Global"},
        {"EndFunction\nType TA\n    x As Int\nEndType", "Field x:Int"},
        {"EndFunction\nType TA\n    Field x:Int\nEndType\nFunction A\n    Print TA()", "Create TA"},
        {"EndFunction\nType TA\n    Field x:Int\nEndType\nFunction A\n    Print (First TA)\\z", "TA has x"},
        {"EndFunction\nType TA\nEndType\nFunction A\n    Local a:TA = New TA(3)", "small letters"},
        {"EndFunction\nFunction A(int x)", "behind the name: n:Int"},
        {"EndFunction\nFunction A(ByRef x:Int)", "Globals are seen"},
        {"EndFunction\nFunction A(x:Int) -> Int", "stands behind its name"},
        {"EndFunction\nPreCalc t:Int[N]", "the number itself"},
        {"EndFunction | Import \"std/text.kvl\"", "come with Include"},
        {"EndFunction | EndFunction", "No Function is open"},
        {"EndFunction\nType TA\n    EndFunction\nEndType\nFunction B", "A Type ends"},
        {"EndFunction\nType TA\nMethod A\nEndFunction\nEndMethod\nEndType\nFunction B", "A Method ends"},
        {"}", "Blocks end with a word"},
        {"Function Inner", "outside of one another"},
        {"Print &HFF", "begin with '$'"},
        {"Select n\nCase 1:", "end without"},
        {"Local a:Int[2] | Print a", "one by one"},
        {"n &= 1", "Write the assignment"},
        {"Local a:TList", "is a Sequence"},
        {"SeqRemove n, 1", "takes a value out"},
        {"If Not \"a\" = \"b\" Then n = 1", "right behind it"},
        {"With nobody", "nothing that is visible"},
        {"n = %101", "Write FromBinary"},
        {"Return 1, 2", "gives one value"},
        {"n, m = 1, 2", "at a time"},
        {"n = (1, 2)", "Brackets hold one"},
        {"n = (int)3.5", "stands in the brackets"},
        {"Print \"{%n:02}\"", "A hole shows"},
        {"Print Length(\"a\")", "Length comes with"},
        {"Include \"std/text.kvl\"", "Move this line"},
        {"EndFunction\nint Add(int a, int b)\nFunction B", "Function Add:Int"},
        {"Include util.kvl | Foo()", "without quotes"},
        {"EndFunction\nPreCalc t:Int[3]\nIf i > 1\nEndIf\nEndPreCalc\nFunction B", "What takes more"},
        {"EndFunction\nType TA\n    Method A\n    Method B\n    EndMethod\nEndType", "Methods stand"}};
    for (const auto& row : rows) {
        korvel::Request request = RequestFor("/nowhere/main.kvl");
        request.overlays = {
            {request.source, "Function Main\n    Local n = 1\n    " + row.line + "\nEndFunction\n"}};
        request.warnings = false;
        const korvel::Result result = korvel::Check(request);
        ASSERT_FALSE(result.diagnostics.empty()) << row.line;
        const korvel::Diagnostic& said = result.diagnostics[0];
        std::cout << said.message << "\n" << said.hint << "\n";  // counts as provoked
        const std::string advice = said.related.empty() ? said.hint : said.hint + said.related[0].message;
        EXPECT_NE(advice.find(row.hint), std::string::npos) << row.line << ": " << said.message << advice;
        EXPECT_GT(said.firstColumn, 0) << row.line;
    }
}

// In a program that is being edited: another file, shadowed names, holes, joined lines, With, a mistake.
TEST(Library, TellsWhatNamesMean) {
    korvel::Request request = RequestFor("/nowhere/main.kvl");
    request.overlays = {{request.source,
                         "Include \"part.kvl\"\nGlobal score:Int, best:Double = size\nFunction Main\n"
                         "    Local count = size + 1, list:TA[size + 1]\n    For Local score = 1 To count\n"
                         "        Print \"{%score} {%Add(score)}\" + wrong\n"
                         "        Print \"{%score}{%Add(score, size)}\" + _\n"
                         "            list[size]\\Name(\"\")\n    Next\n    With list[0]\n"
                         "        its\\name = \"{$its\\name}\" + its\\Name(its\\next\\name)\n    EndWith\n"
                         "    Print score\nEndFunction\nFunction Add:Int(score:Int, _\n    b:Int = size)\n"
                         "    Return score + b\nEndFunction\n"},
                        {"/nowhere/part.kvl",
                         "Const size = 3\nType TA\n    Method Name:String(name:String = \"\")\n"
                         "        name = this\\name | Other(name)\n        Return name\n    EndMethod\n"
                         "    Field name:String, next:TA\n    Method Other(n:String)\n        Name(name)\n"
                         "    EndMethod\nEndType\n"}};
    request.warnings = false;
    const korvel::Inspection inspection = korvel::Inspect(request);
    EXPECT_EQ(inspection.result.diagnostics.size(), 1U) << TextOf(inspection.result);
    std::string told;
    for (const korvel::Use& use : inspection.uses) {
        const korvel::Symbol& symbol = inspection.symbols[use.symbol];
        const auto placeOf = [](const korvel::Range& range) {
            return range.file.substr(9, 1) + std::to_string(range.line) + ":" +
                   std::to_string(range.firstColumn);
        };
        const std::string type = korvel::TypeAt(inspection, use.file, use.line, use.firstColumn);
        if (use.declares)
            told +=
                "\n" + placeOf(use) + " " + symbol.owner + " " + symbol.name + " " + type + symbol.parameters;
        else
            told += " " + placeOf(use) + "=" + placeOf(symbol) + (symbol.type == type ? "" : "!" + type);
    }
    EXPECT_EQ(
        told,
        " m1:9=p1:0\nm2:8  score Int\nm2:19  best Double m2:33=p1:7\nm3:10  Main Int()\n"
        "m4:11 Main count Int m4:19=p1:7\nm4:29 Main list TA[] m4:34=p2:6 m4:37=p1:7\n"
        "m5:15 Main score Int m5:28=m4:11 m6:18=m5:15 m6:27=m15:10 m6:31=m5:15 m7:18=m5:15 m7:26=m15:10 "
        "m7:30=m5:15 m7:37=p1:7 m8:13=m4:29 m8:18=p1:7 m8:24=p3:12 m10:10=m4:29 m11:9=m4:29!TA "
        "m11:13=p7:11 m11:23=m4:29 m11:27=p7:11 m11:36=m4:29!TA m11:40=p3:12 m11:45=m4:29!TA m11:49=p7:24 "
        "m11:54=p7:11 m13:11=m2:8\n"
        "m15:10  Add Int(score:Int, b:Int = size)\nm15:18 Add score Int\n"
        "m16:5 Add b Int m16:13=p1:7 m17:12=m15:18 m17:20=m16:5\np1:7  size Int\np2:6  TA \n"
        "p3:12 TA Name String(name:String = \"\")\np3:24 TA\\Name name String p4:9=p3:24 p4:21=p7:11 "
        "p4:28=p8:12 p4:34=p3:24 p5:16=p3:24\np7:11 TA name String\np7:24 TA next TA p7:29=p2:6\n"
        "p8:12 TA Other (n:String)\np8:18 TA\\Other n String p9:9=p3:12 p9:14=p7:11");
    EXPECT_EQ(korvel::TypeAt(inspection, request.source, 8, 23), "TA");  // of what stands before the "\"
}

korvel::Result CheckCase(const Case& test) {
    korvel::Request request = RequestFor("/nowhere/" + test.mainFile);
    for (const auto& [path, text] : test.files) request.overlays.push_back({"/nowhere/" + path, text});
    const auto has = [&test](const char* flag) {
        return std::find(test.flags.begin(), test.flags.end(), flag) != test.flags.end();
    };
    request.safe = has("-safe");
    request.debug = has("-d");
    request.fast = has("-fast");
    return korvel::Inspect(request).result;
}

// Cases quote a mistake as kvt does.
bool SaysTheSame(const korvel::Diagnostic& said, const Case& test) {
    std::string wanted = test.error;
    const bool sumsUp =
        wanted.rfind("Transpilation failed: ", 0) == 0;  // open blocks, each told where it starts
    if (sumsUp) return said.message.find(" is missing '") != std::string::npos;
    if (said.line != test.errorLine) return false;
    if (wanted.rfind("ERROR: ", 0) == 0) wanted.erase(0, 7);
    const std::size_t hole = wanted.find("{main}");
    if (hole != std::string::npos) wanted.replace(hole, 6, "/nowhere/" + test.mainFile);
    const std::string& quoted = said.quoted.empty() ? said.message : said.quoted;
    return quoted == wanted || quoted + "\nDid you mean '" == wanted.substr(0, quoted.size() + 15);
}

// Programs with one mistake in the cases: what follows from it must not be told.
TEST(Library, TellsOneMistakeOnce) {
    int cases = 0, once = 0, missed = 0, placed = 0;
    for (const auto& entry : fs::recursive_directory_iterator(SOURCE_ROOT "/tests/cases")) {
        if (entry.path().extension() != ".kvl") continue;
        for (const Case& test : ReadCases(entry.path().string())) {
            if (!test.wantsError || !test.command.empty() || test.errorLine < 0) continue;
            korvel::Result result = CheckCase(test);
            std::vector<korvel::Diagnostic>& said = result.diagnostics;
            said.erase(std::remove_if(said.begin(), said.end(),
                                      [](const auto& d) { return d.severity != korvel::Severity::Error; }),
                       said.end());
            const bool found = std::any_of(said.begin(), said.end(),
                                           [&test](const auto& d) { return SaysTheSame(d, test); });
            ++cases;
            placed += said.empty() || said[0].firstColumn == 0 ? 0 : 1;
            if (found && said.size() == 1)
                ++once;
            else
                std::cout << test.place << " wants " << test.errorLine << ": " << test.error << "\n"
                          << TextOf(result) << "\n";
            missed += found ? 0 : 1;
        }
    }
    RecordProperty("percent", once * 100 / cases);
    std::cout << once << " of " << cases << " programs with a mistake give exactly that one; " << missed
              << " do not give it; " << placed << " tell what they are about\n";
    EXPECT_GE(once * 100, cases * 95);
    EXPECT_EQ(missed, 0);
    EXPECT_GE(placed * 100, cases * 99);
}

}  // namespace
