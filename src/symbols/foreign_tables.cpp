#include "symbols/foreign_tables.h"

#include <algorithm>

#include "lexer/lexer.h"
#include "symbols/foreign_rows.h"
#include "symbols/foreign_words.h"
#include "symbols/identifiers.h"
#include "symbols/module_names.h"
#include "symbols/name_characters.h"
#include "symbols/type_reader.h"

namespace {

// Of the words that a mistake is about.
const ForeignRow meantRows[] = {
    {"dim var static auto",
     "A variable is declared with Local in a Function, with Global outside: Local n:Int"},
    {"let set", "An assignment needs no word in front: n = 3"},
    {"const constant define #define", "Write Const MAX = 10, outside of Functions"},
    {"rem #", "A comment begins with ';'"},
    {"do loop", "Loops are Repeat ... Until, Repeat ... Forever, While ... Wend and For ... Next"},
    {"endwhile endloop", "A While ends with Wend, a Repeat with Until or Forever"},
    {"endfor nextfor", "A For ends with Next"},
    {"break leave", "Exit leaves the innermost loop or Select"},
    {"goto gosub", "There are no jumps: use loops, Functions, Exit and Continue"},
    {"sub proc procedure def func fn void",
     "Write Function Name(n:Int) ... EndFunction, with :Type behind the name for a result"},
    {"endsub endproc enddef", "A Function ends with EndFunction"},
    {"enum", "Write a Const for each value: Const RED = 0, GREEN = 1"},
    {"self me", "In a Method the object is called this: this\\hp"},
    {"integer uint int32 int64 unsigned", "The type of whole numbers is called Int, of larger ones Long"},
    {"float single real decimal number", "The type of numbers with a point is called Double"},
    {"boolean logical", "The type of True and False is called Bool"},
    {"str text char string$ string(",
     "The type of texts is called String; ToString(n) makes a text of a number"},
    {"val cint int( integer( cdbl float( double(",
     "ToInt(s) makes a whole number of a text, ToDouble(s) one with a point"},
    {"try catch except throw raise finally on endtry",
     "There are no exceptions: ask beforehand, or return a value that tells what went wrong"},
    {"tlist list arraylist vector seq sequence", "A list that grows is a Sequence: Local s:Sequence Of Int"},
    {"array", "An array has its size in brackets: Local a:Int[10]"},
    {"seqremove seqremoveat seqerase",
     "SeqDelete s, 3 takes a value out, SeqDeleteAt s, 0 the item of a number, SeqRemoveFirst(s) the first "
     "one"},
    {"seqprepend seqinsertfirst seqaddbegin", "Write SeqAddFirst s, 3"},
    {"redim resize append",
     "An array keeps its size. A Sequence grows: Local s:Sequence Of Int, and SeqAdd s, 3"},
    {"switch", "Write Select n, Case 1, what to do, Exit, and EndSelect at the end"},
    {"elif elsif", "Write ElseIf"},
    {"class struct record union",
     "Write Type TName ... EndType for objects, Element TName ... EndElement for values"},
    {"nil none nothing nullptr", "No object is called Null"},
    {"is isnot", "Compare with = and <>"},
    {"xor", "Write a BitXor b between numbers, a <> b between conditions"},
    {"div", "Between whole numbers '/' gives a whole number: 7 / 2 is 3"},
    {"inc incr dec decr", "Write the assignment out: n = n + 1"},
    {"swap", "Write the assignments out: Local old = a | a = b | b = old"},
    {"iif", "Write If a = b Then n = 1 Else n = 2"},
    {"lambda", "Write a Function of its own, and call it by its name"},
    {"shared byval byref",
     "Globals are seen everywhere; objects, arrays and Sequences are handed over themselves, the rest as "
     "copies"},
    {"println printf echo write writeln puts cout console system", "Write Print \"n is \" & n"},
    {"input line", "Write Input \"Name? \", name"},
    {"call", "Write the Function's name alone: Draw()"},
    {"delete dispose free del", "An object goes with Remove p"},
    {"foreach", "Write For p:TPlayer EachIn list, or EachSeq n In s"},
    {"begin {",
     "Blocks begin with their first line and end with a word: If ... EndIf, Function ... EndFunction"},
    {"}", "Blocks end with a word: EndIf, Wend, Next, EndFunction"},
    {"?", "There is no operator '?': use If"},
    {"as", "The type stands behind a colon: Local n:Int"},
    {"pass", "A block may be empty"},
    {"stop quit halt", "End ends the program"},
    {"exit",
     "Exit leaves a loop or Select, Return leaves a Function, End the program; ExitProgram 1 gives a status. "
     "It "
     "comes with Include \"std/system.kvl\""},
    {"async await yield thread every",
     "A call runs to its end. AutoCall Tick Every 1000 calls a Function again and again"},
    {"program", "What the program does stands between Function Main and EndFunction"},
    {"optional", "A parameter with a value may be left out: Function Add:Int(a:Int, b:Int = 1)"},
    {"ubound lbound sizeof", "An array keeps the size that it was declared with: put that into a Const"},
    {"in", "SeqContains(s, 3) tells whether a Sequence has a value"},
    {"data read restore", "Put the values into an array or a Sequence, or compute them in a PreCalc block"},
    {"option strict", "All names have to be declared anyway; leave the line out"},
    {"using namespace package module from", "Write Include \"file.kvl\" for other files"},
    {"#include", "Write Include \"file.kvl\" for other files"},
};

// What Functions and Types of the modules are called elsewhere.
const ForeignRow moduleRows[] = {
    {"len strlen length size", "Length"},
    {"seqlen seqcount seqsize", "SeqLength"},
    {"ucase toupper touppercase uppercase upper", "Upper"},
    {"lcase tolower tolowercase lowercase lower", "Lower"},
    {"left leftstr", "Left"},
    {"right rightstr", "Right"},
    {"mid substr substring midstr", "Mid"},
    {"instr indexof strpos", "Find"},
    {"instrrev lastindexof", "FindLast"},
    {"trim strip", "Trim"},
    {"ltrim lstrip", "TrimLeft"},
    {"rtrim rstrip", "TrimRight"},
    {"lset", "PadRight"},
    {"rset", "PadLeft"},
    {"replace", "Replace"},
    {"split explode", "Split"},
    {"join implode", "Join"},
    {"space repeatstring repeat", "Repeated"},
    {"formatnumber strformat", "Format"},
    {"strftime formatdate", "TimeFormat"},
    {"hex", "ToHex"},
    {"bin", "ToBinary"},
    {"isnumeric", "IsNumber"},
    {"rnd", "RandomDouble"},
    {"rand random randint", "RandomInt"},
    {"randomize srand", "RandomSeed"},
    {"shuffle", "ShuffleInts"},
    {"choice randomchoice", "PickString"},
    {"cls clrscr clearscreen", "TerminalClear"},
    {"locate gotoxy", "TerminalAt"},
    {"color colour", "TerminalColour"},
    {"inkey getch readkey getkey", "WaitKey"},
    {"open fopen openfile", "FileOpen"},
    {"close fclose closefile", "FileClose"},
    {"readfile readall readalltext filereadall", "FileRead"},
    {"readlines readalllines", "FileReadLines"},
    {"writefile", "FileWrite"},
    {"eof", "FileAtEnd"},
    {"kill deletefile", "FileDelete"},
    {"mkdir", "FolderMake"},
    {"timer ticks millisecs millis gettickcount", "Milliseconds"},
    {"time date now", "TimeNow"},
    {"sleep wait delay pause", "Sleep"},
    {"arg args argv command commandline", "Argument"},
    {"getenv environ", "Environment"},
    {"shell exec", "RunCommand"},
    {"graphics screen", "DrawOpen"},
    {"flip", "DrawShow"},
    {"plot pset putpixel", "DrawPixel"},
    {"circle oval", "DrawCircle"},
    {"rect rectangle box", "DrawBox"},
    {"loadimage", "ImageLoad"},
    {"drawimage", "ImageDraw"},
    {"keydown keyhit", "KeyIsDown"},
    {"assert", "Check"},
    {"seqpush seqappend seqinsertlast", "SeqAdd"},
    {"sqr", "Sqrt"},
    {"ceiling", "Ceil"},
    {"fix", "Trunc"},
    {"ln", "Log"},
    {"atn arctan", "ATan"},
    {"ord", "Asc"},
    {"checkequal assertequal assertequals", "CheckInt"},
    {"map hashmap dict dictionary", "TStringMap"},
};

// Where a line begins with them (with whatever, if none are given), something behind them is wrong, and one of the words
// follows, or is meant, if any are given.
struct BeginningRow {
    const char *words, *next, *meant;
    const char* hint;
};
const BeginningRow beginnings[] = {
    {"exit", "", "", "Exit stands alone; Return leaves a Function"},
    {"select", "case", "", "Write Select n, without Case"},
    {"case", "", "to is < >", "A Case lists values: Case 1, 2, 3. For a range write If n >= 1 And n <= 5"},
    {"for", "(", "", "Write For Local i = 0 To 9, what to do, and Next"},
    {"return", "", ",", "A Function gives one value; several fit into a Type, an Element or an array"},
    {"print", "using", "", "Write Format(x, 2). It comes with Include \"std/text.kvl\""},
    {"continue", "", "", "Continue stands alone: it goes on with the next round of the innermost loop"},
    {"for", "", "by", "Write For Local i = 1 To 10 Step 2"},
    {"for while", "", "do then", "Nothing stands behind it: what is repeated follows in lines of its own"},
    {"' # /", "", "", "A comment begins with ';'"},
    {"", "", "if unless", "If is a statement of its own: If a > 0 Then n = 1 Else n = 2"},
};

// Anywhere in a line that is wrong as a whole.
const ForeignRow insideRows[] = {
    {"extends implements inherits",
     "Types do not inherit from one another: give this one a Field of the other, Field base:TOther"},
    {"downto", "Write For Local i = 10 To 1 Step -1"},
    {"abstract final virtual override", "Methods and Types are written without such words"},
};

// Words that begin blocks elsewhere, and those that divide or end such.
constexpr std::string_view openers = "switch match foreach do try unless";
constexpr std::string_view closers =
    "catch except finally endtry endswitch endmatch endforeach endfor endwhile loop endloop endunless";

const ForeignWords& MeantWords() {
    static const ForeignWords index = IndexOf(meantRows);
    return index;
}

std::string HintAtModule(const std::string& word) {
    const std::string name = FunctionCalledElsewhere(word);
    if (name.empty()) return {};
    const std::string include = IncludeFor(name);
    if (!include.empty() && Lower(name) == word) return name + " comes with " + include;
    return "Here that is called " + name + (include.empty() ? "" : ". It comes with " + include);
}

}  // namespace

std::string FunctionCalledElsewhere(const std::string& word) {
    static const ForeignWords index = IndexOf(moduleRows);
    const char* const name = Find(index, Lower(word));
    return name == nullptr ? "" : name;
}

static bool IsBlockElsewhere(const std::string& word) {
    return IsAmong(openers, word) || IsAmong(closers, word);
}

bool OpensElsewhere(const std::string& word) { return IsAmong(openers, Lower(word)); }
bool ClosesElsewhere(const std::string& word) { return IsAmong(closers, Lower(word)); }
bool DeclaresElsewhere(const std::string& word) { return IsAmong("dim var auto", Lower(word)); }

std::string HintAtWord(const std::string& word) {
    const char* const hint = Find(MeantWords(), word);
    return hint == nullptr ? HintAtModule(word) : hint;
}

std::string HintAtMember(const std::string& word) {
    const std::string hint = HintAtWord(word);
    if (!hint.empty()) return hint;
    const auto isSame = [&word](const auto& entry) { return Lower(entry.first) == word; };
    const auto& modules = ModuleNames();
    const auto found = std::find_if(modules.begin(), modules.end(), isSame);
    if (found != modules.end()) return found->first + " comes with " + IncludeFor(found->first);
    for (const std::string& name : wordLists.spellings)
        if (Lower(name) == word)
            return IsBasicType(name) ? "The type is called " + name
                                     : "It is called alone here: " + name + "(...)";
    return {};
}

bool IsForeignWord(const std::string& word) { return Find(MeantWords(), word) != nullptr; }

const char* HintAtBeginning(TokenSpan tokens, const std::string& word, std::size_t at) {
    const std::string first = Lower(tokens[0]);
    if (first != word && !first.empty())
        for (const BeginningRow& row : beginnings)
            if ((*row.words == '\0' || IsAmong(row.words, first)) &&
                (*row.next == '\0' || IsAmong(row.next, Lower(tokens[1]))) &&
                (*row.meant == '\0' || IsAmong(row.meant, word)))
                return row.hint;
    if (first == "for" && at == 1 && tokens.SignAt(2) == '=') return "Write For Local i = 1 To 10";
    if (at > 0 && tokens.SignAt(at - 1) == '|' && !IsNameText(word))
        return "Behind '|' another statement begins. Write a BitOr b between numbers, a Or b between "
               "conditions";
    const bool isLabel = tokens.size() == 2 && tokens.SignAt(1) == ':' && !IsBlockElsewhere(word);
    if (first == word && ((IsDigit(word[0]) && IsNameText(tokens[1])) || isLabel))
        return "Lines have no numbers and no labels: use loops, Functions, Exit and Continue";
    if (first != word) return nullptr;
    if (IsAmong("string int double bool byte short long", word))
        return tokens.SignAt(2) == '(' ? "The type stands behind the name: Function Add:Int(a:Int, b:Int)"
                                       : "The type stands behind the name: Local s:String, or Global "
                                         "s:String outside of Functions";
    for (const Token token : tokens)
        for (const ForeignRow& row : insideRows)
            if (IsAmong(row.words, Lower(token->text))) return row.text;
    return nullptr;
}
