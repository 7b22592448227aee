#include "symbols/foreign_words.h"

#include <algorithm>
#include <string_view>

#include "base/run.h"
#include "base/source_reader.h"
#include "base/token_span.h"
#include "lexer/lexer.h"
#include "symbols/foreign_fixes.h"
#include "symbols/foreign_rows.h"
#include "symbols/foreign_signs.h"
#include "symbols/module_names.h"

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
    {"str text char string$", "The type of texts is called String; ToString(n) makes a text of a number"},
    {"val cint int(", "ToInt(s) makes a whole number of a text, ToDouble(s) one with a point"},
    {"try catch except throw raise finally on",
     "There are no exceptions: ask beforehand, or return a value that tells what went wrong"},
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
    {"delete dispose free", "An object goes with Remove p"},
    {"foreach", "Write For p:TPlayer EachIn list, or EachSeq n In s"},
    {"begin {",
     "Blocks begin with their first line and end with a word: If ... EndIf, Function ... EndFunction"},
    {"}", "Blocks end with a word: EndIf, Wend, Next, EndFunction"},
    {"?", "There is no operator '?': use If"},
    {"as", "The type stands behind a colon: Local n:Int"},
    {"pass", "A block may be empty"},
    {"stop quit halt", "End ends the program"},
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

// Where a line begins with them, something behind them is wrong, and one of the words follows, or is meant, if any are
// given.
struct BeginningRow {
    const char *words, *next, *meant;
    const char* hint;
};
const BeginningRow beginnings[] = {
    {"exit", "", "", "Exit stands alone; Return leaves a Function"},
    {"select", "case", "", "Write Select n, without Case"},
    {"case", "", "to is < >", "A Case lists values: Case 1, 2, 3. For a range write If n >= 1 And n <= 5"},
    {"for", "(", "", "Write For Local i = 0 To 9, what to do, and Next"},
    {"' # /", "", "", "A comment begins with ';'"},
};

// Anywhere in a line that is wrong as a whole.
const ForeignRow insideRows[] = {
    {"extends implements inherits",
     "Types do not inherit from one another: give this one a Field of the other, Field base:TOther"},
    {"abstract final virtual override", "Methods and Types are written without such words"},
};

// The file that was asked about last: mistakes come mostly line by line.
struct OpenFile {
    SourceReader reader;
    std::string name;
    bool isOpen = false;
    int lines = 0;  // so many have been taken
    std::string_view last;
};
OpenFile openFile;
const PartOfRun partOfRun(openFile);

bool LineOf(const korvel::Range& range, std::string& line) {
    OpenFile& file = openFile;
    if (file.name != range.file) {
        file.name = range.file;
        file.isOpen = file.reader.Open(file.name);
        file.lines = 0;
    }
    if (file.lines > range.line) {
        file.reader.Rewind();
        file.lines = 0;
    }
    for (; file.lines < range.line; ++file.lines) file.last = file.reader.TakeLine();
    line = file.last;
    return file.isOpen;
}

std::string HintAtModule(const std::string& word) {
    const std::string name = FunctionCalledElsewhere(word);
    if (name.empty()) return {};
    const std::string include = IncludeFor(name);
    return "Here that is called " + name + (include.empty() ? "" : ". It comes with " + include);
}

// Of the word alone; names of other languages may end in a sign for their type.
std::string HintAtWord(const std::string& word, bool isMember) {
    if (isMember) return {};
    static const ForeignWords index = IndexOf(meantRows);
    const char* const hint = Find(index, word);
    return hint == nullptr ? HintAtModule(word) : hint;
}

// Of what the line begins with.
const char* HintAtBeginning(TokenSpan tokens, const std::string& word, std::size_t at) {
    const std::string first = Lower(tokens[0]);
    if (first != word && !first.empty())
        for (const BeginningRow& row : beginnings)
            if (IsAmong(row.words, first) && (*row.next == '\0' || IsAmong(row.next, Lower(tokens[1]))) &&
                (*row.meant == '\0' || IsAmong(row.meant, word)))
                return row.hint;
    if (first == "for" && at == 1 && tokens.SignAt(2) == '=') return "Write For Local i = 1 To 10";
    if (first == word && (IsDigit(word[0]) || (tokens.size() == 2 && tokens.SignAt(1) == ':')))
        return "Lines have no numbers and no labels: use loops, Functions, Exit and Continue";
    if (first != word) return nullptr;
    if (IsAmong("string int double bool byte short long", word))
        return "The type stands behind the name: Local s:String";
    for (const Token token : tokens)
        for (const ForeignRow& row : insideRows)
            if (IsAmong(row.words, Lower(token->text))) return row.text;
    return nullptr;
}

// A mistake's line, its tokens, and of these the one that is meant: its word, and its number, which lies beyond the end
// where it cannot be told (in the hole of a String, say).
struct Meant {
    std::string_view line;
    Tokens tokens;
    std::string word;
    std::size_t at;
};

std::string HintFor(const Meant& meant) {
    if (const char* hint = HintAtQuotes(meant.line, meant.tokens, meant.at)) return hint;
    // Mid$("text", 1)
    const TokenSpan tokens = meant.tokens;
    const bool isKnown = tokens.SignAt(meant.at + 1) == '$' && !HintAtWord(meant.word, false).empty();
    const char* const sign = isKnown ? nullptr : HintAtSign(meant.tokens, meant.at);
    if (sign != nullptr) return sign;
    if (const char* hint = HintAtBeginning(meant.tokens, meant.word, meant.at)) return hint;
    const char before = meant.at > 0 ? tokens.SignAt(meant.at - 1) : '\0';
    return HintAtWord(meant.word, before == '\\' || before == '.');
}

Meant MeantBy(const korvel::Range& mistake, const std::string& line) {
    Meant meant{line, Cut(line), "", 0};
    meant.at = meant.tokens.size();
    const std::string_view words = TextOf(mistake, line);
    const Tokens cut = Cut(words);
    if (cut.empty()) return meant;
    meant.word = Lower(cut[0]->text);
    const std::size_t number = Cut(std::string_view(line).substr(0, words.data() - line.data())).size();
    if (number < meant.tokens.size() && meant.tokens[number]->text == cut[0]->text) meant.at = number;
    return meant;
}

const char* HintAtEncoding(const std::string& path) {
    std::string text;
    if (!ReadFile(path, text) || text.size() < 2) return nullptr;
    const bool isWide = (text[0] == '\xFF' && text[1] == '\xFE') ||
                        (text[0] == '\xFE' && text[1] == '\xFF') || text[0] == '\0' || text[1] == '\0';
    return isWide ? "The file is UTF-16: save it as UTF-8" : nullptr;
}

}  // namespace

std::string FunctionCalledElsewhere(const std::string& word) {
    static const ForeignWords index = IndexOf(moduleRows);
    const char* const name = Find(index, Lower(word));
    return name == nullptr ? "" : name;
}

void HintAtForeignWords(korvel::Diagnostic& mistake) {
    std::string line;
    if (mistake.severity != korvel::Severity::Error || mistake.file.empty()) return;
    if (const char* hint = mistake.line <= 1 ? HintAtEncoding(mistake.file) : nullptr) {
        mistake.hint = hint;
    } else if (LineOf(mistake, line)) {
        const Meant meant = MeantBy(mistake, line);
        JoinWords(mistake, line);
        const std::string hint = HintFor(meant);
        if (hint.empty()) return;
        mistake.hint = hint;
        mistake.fixes.clear();
        FixForeignWord(mistake, line);
    }
}
