#include "symbols/foreign_words.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <unordered_map>

#include "base/run.h"
#include "base/source_reader.h"
#include "base/token_span.h"
#include "lexer/lexer.h"
#include "symbols/name_characters.h"
#include "symbols/scopes.h"

namespace {

// Words in lower case, and signs.
struct ForeignRow {
    const char* words;
    const char* hint;  // or what stands in their place
};

// Of the words that a mistake is about.
const ForeignRow meantRows[] = {
    {"dim var static auto",
     "A variable is declared with Local in a Function, with Global outside: Local n:Int"},
    {"let set", "An assignment needs no word in front: n = 3"},
    {"const constant define #define", "Write Const MAX = 10, outside of Functions"},
    {"rem ' # //", "A comment begins with ';'"},
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
    {"nil none nothing nullptr undefined", "No object is called Null"},
    {"is isnot", "Compare with = and <>"},
    {"xor", "Write a BitXor b between numbers, a <> b between conditions"},
    {"div", "Between whole numbers '/' gives a whole number: 7 / 2 is 3"},
    {"inc incr dec decr swap", "Write the assignments out: n = n + 1"},
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
    {"data read restore", "Put the values into an array or a Sequence, or compute them in a PreCalc block"},
    {"option strict", "All names have to be declared anyway; leave the line out"},
    {"using namespace package module from", "Write Include \"file.kvl\" for other files"},
    {"#include", "Write Include \"file.kvl\" for other files"},
    {"cls locate color inkey$ getkey",
     "Functions for the terminal come with Include \"std/terminal.kvl\": TerminalClear, TerminalAt, "
     "TerminalColour, WaitKey ..."},
    {"len length strlen left right mid substr substring instr ucase lcase upper lower trim ltrim rtrim "
     "replace split",
     "Functions for texts come with Include \"std/text.kvl\": Length, Left, Mid, Find, Upper, Split ..."},
    {"rnd rand random randint randomize", "Random numbers come with Include \"std/random.kvl\""},
    {"open close eof", "Functions for files come with Include \"std/files.kvl\""},
    {"timer time$ date$ ticks sleep wait delay",
     "Functions for time come with Include \"std/time.kvl\": Milliseconds, TimeNow, TimeFormat, Sleep ..."},
};

// Where a line begins with them, something behind them is wrong, and one of the words follows, if any are given.
struct BeginningRow {
    const char* words;
    const char* next;
    const char* hint;
};
const BeginningRow beginnings[] = {
    {"exit", "", "Exit stands alone; Return leaves a Function"},
    {"select", "case", "Write Select n, without Case"},
    {"for", "(", "Write For Local i = 0 To 9, what to do, and Next"},
    {"' # / //", "", "A comment begins with ';'"},
};

// Anywhere in a line that is wrong as a whole.
const ForeignRow insideRows[] = {
    {"extends implements inherits",
     "Types do not inherit from one another: give this one a Field of the other, Field base:TOther"},
    {"abstract final static virtual override", "Methods and Types are written without such words"},
};

// Words in whose place others stand here, if nothing else is wrong with them.
const ForeignRow sameRows[] = {
    {"let set call case", ""},
    {"constant", "Const"},
    {"rem ' #", ";"},
    {"endwhile", "Wend"},
    {"endfor nextfor", "Next"},
    {"break leave", "Exit"},
    {"sub proc procedure def func fn", "Function"},
    {"endsub endproc enddef", "EndFunction"},
    {"self me", "this"},
    {"integer int32", "Int"},
    {"float single real decimal", "Double"},
    {"boolean logical", "Bool"},
    {"str text", "String"},
    {"elif elsif", "ElseIf"},
    {"nil none nothing nullptr undefined", "Null"},
    {"is", "="},
    {"isnot", "<>"},
    {"div", "/"},
    {"println echo write writeln puts", "Print"},
    {"delete dispose free", "Remove"},
    {"switch", "Select"},
    {"as", ":"},
    {"#include", "Include"},
};

using WordIndex = std::unordered_map<std::string_view, const char*>;

template <class Rows>
WordIndex IndexOf(const Rows& rows) {
    WordIndex words;
    for (const ForeignRow& row : rows) {
        const std::string_view all = row.words;
        for (std::size_t at = 0, end = 0; at < all.size(); at = end + 1) {
            end = std::min(all.find(' ', at), all.size());
            words.emplace(all.substr(at, end - at), row.hint);
        }
    }
    return words;
}

const char* Find(const WordIndex& words, const std::string& word) {
    const auto found = words.find(word);
    return found == words.end() ? nullptr : found->second;
}

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

bool IsAmong(std::string_view words, std::string_view word) {
    const std::size_t at = (" " + std::string(words) + " ").find(" " + std::string(word) + " ");
    return !word.empty() && at != std::string::npos;
}

// "..." in the quotes of word processors, and ' of other languages
const char* HintAtQuotes(std::string_view line, std::string_view meant) {
    if (line.find("\xE2\x80\x9C") != std::string_view::npos ||
        line.find("\xE2\x80\x9D") != std::string_view::npos ||
        line.find("\xE2\x80\x98") != std::string_view::npos ||
        line.find("\xE2\x80\x99") != std::string_view::npos)
        return "Texts stand between straight quotes: \"text\"";
    if (line.find("\\\"") != std::string_view::npos) return "A quote in a text is written ~q: \"say ~qhi~q\"";
    return (meant == "'" || meant.substr(0, 1) == "`") && line.find_first_not_of(" \t") != line.find('\'')
               ? "Texts stand between double quotes: \"text\""
               : nullptr;
}

// A sign that is wrong where it stands: Print "a": Print "b", n$ = "x", n := 3
const char* HintAtSign(TokenSpan tokens, std::string_view meant) {
    std::size_t at = 0;
    while (at < tokens.size() && tokens[at] != meant) ++at;
    if (meant == "/" && at == 0 && tokens.SignAt(1) == '/') return "A comment begins with ';'";
    if (meant == ":" && tokens.SignAt(at + 1) == '=') return "An assignment is written with '=' alone: n = 3";
    if (meant == ":") return "Statements in one line stand apart by '|'";
    if (meant.size() == 1 && tokens.SignAt(at + 1) == meant[0]) {
        if (meant == "*") return "Write Pow(a, b) for a power";
        if (meant == "<" || meant == ">") return "Write a Shl b and a Shr b";
    }
    if (Has(tokens.KeywordAt(0), trait::variables)) {
        if (meant == "(" && at < tokens.FindEquals())
            return "An array has its size in brackets: Local a:Int[10]";
        if (meant == "[" || meant == "{") return "An array gets its values one by one: a[0] = 3";
    }
    if (tokens.SignAt(at + 1) == '$' && IsNameText(meant)) return "Names have no '$' at their end: Chr(65)";
    if (meant.substr(0, 2) == "0x" || meant.substr(0, 2) == "0X")
        return "Hexadecimal numbers begin with '$': $FF";
    if (meant == "," && tokens.KeywordAt(0) == Keyword::Print)
        return "Print joins with '&': Print a & \" \" & b";
    const bool isSuffix = meant.size() == 1 && std::string_view("$#%!").find(meant) != std::string_view::npos;
    return isSuffix && at > 0 && at < 3 ? "The type of a variable stands behind a colon: Local name:String"
                                        : nullptr;
}

const char* HintFor(std::string_view line, std::string_view meant) {
    const Tokens tokens = Cut(line);
    const std::string word = Lower(meant);
    if (const char* hint = HintAtQuotes(line, meant)) return hint;
    if (const char* hint = HintAtSign(tokens, meant)) return hint;
    const std::string first = tokens.empty() ? "" : Lower(tokens[0]->text);
    if (first != word && !first.empty())
        for (const BeginningRow& row : beginnings)
            if (IsAmong(row.words, first) &&
                (*row.next == '\0' || IsAmong(row.next, Lower(TokenSpan(tokens)[1]))))
                return row.hint;
    if (first == word && IsAmong("string int double bool byte short long", word))
        return "The type stands behind the name: Local s:String";
    if (first == word)
        for (const Token token : tokens)
            for (const ForeignRow& row : insideRows)
                if (IsAmong(row.words, Lower(token->text))) return row.hint;
    static const WordIndex index = IndexOf(meantRows);
    return Find(index, word);
}

// Adds the change that puts the text in place of a part of the mistake's line.
void AddFix(korvel::Diagnostic& mistake, std::size_t at, std::size_t size, const std::string& text) {
    korvel::Fix& fix = mistake.fixes.emplace_back();
    fix.file = mistake.file;
    fix.line = mistake.line;
    fix.firstColumn = static_cast<int>(at) + 1;
    fix.lastColumn = static_cast<int>(at + size);
    fix.replacement = text;
}

// Puts the text in place of each of the others, wherever it stands.
void ReplaceAll(korvel::Diagnostic& mistake, const std::string& line,
                std::initializer_list<std::string_view> others, const std::string& text) {
    for (const std::string_view other : others)
        for (std::size_t at = line.find(other); at != std::string::npos; at = line.find(other, at + 1))
            AddFix(mistake, at, other.size(), text);
}

// Which word stands here for one that is so called elsewhere; null without one.
const char* SameWord(const std::string& word) {
    static const WordIndex index = IndexOf(sameRows);
    if (IsAmong("dim var auto", word)) return localDefList.size() > 1 ? "Local" : "Global";
    return Find(index, word);
}

void FixSign(korvel::Diagnostic& mistake, const std::string& line, std::size_t at, std::string_view meant) {
    if (meant == "/") return AddFix(mistake, at, 2, ";");
    if (meant == ":") return line[at + 1] == '=' ? AddFix(mistake, at, 2, "=") : AddFix(mistake, at, 1, "|");
    if (meant.substr(0, 2) == "0x" || meant.substr(0, 2) == "0X") return AddFix(mistake, at, 2, "$");
}

// "End If" is one word.
void JoinWords(korvel::Diagnostic& mistake, const std::string& line, std::size_t at, TokenSpan tokens) {
    if (tokens.size() < 2) return;
    const std::size_t second = line.find_first_not_of(" \t", at + tokens[0].size());
    const Keyword joined = FindKeyword(tokens[0] + tokens[1]);
    const bool isApart = second != std::string::npos && second > at + tokens[0].size();
    if (isApart && (Has(joined, trait::divides) || BlockOf(joined) != Keyword::None))
        AddFix(mistake, at, second + tokens[1].size() - at, tokens[0] + tokens[1]);
}

// What to write in place of the foreign word at the place, where that can be told.
void FixForeignWord(korvel::Diagnostic& mistake, const std::string& line, std::size_t at,
                    const std::string& meant) {
    ReplaceAll(mistake, line, {"\xE2\x80\x9C", "\xE2\x80\x9D"}, "\"");
    ReplaceAll(mistake, line, {"\\\""}, "~q");
    if (!mistake.fixes.empty() || meant.empty()) return;
    const char* const word = SameWord(Lower(meant));
    if (word == nullptr) return FixSign(mistake, line, at, meant);
    std::size_t end = at + meant.size();
    if (*word == '\0') end = std::min(line.find_first_not_of(" \t", end), line.size());
    AddFix(mistake, at, end - at, word);
}

const char* HintAtEncoding(const std::string& path) {
    std::string text;
    if (!ReadFile(path, text) || text.size() < 2) return nullptr;
    const bool isWide = (text[0] == '\xFF' && text[1] == '\xFE') ||
                        (text[0] == '\xFE' && text[1] == '\xFF') || text[0] == '\0' || text[1] == '\0';
    return isWide ? "The file is UTF-16: save it as UTF-8" : nullptr;
}

}  // namespace

void HintAtForeignWords(korvel::Diagnostic& mistake) {
    std::string line, word;
    if (mistake.severity != korvel::Severity::Error || mistake.file.empty()) return;
    const auto first = static_cast<std::size_t>(mistake.firstColumn),
               last = static_cast<std::size_t>(mistake.lastColumn);
    const char* hint = mistake.line <= 1 ? HintAtEncoding(mistake.file) : nullptr;
    if (hint == nullptr && LineOf(mistake, line)) {
        const bool isKnown = first > 0 && first <= last && last <= line.size();
        const Tokens tokens = Cut(isKnown ? line.substr(first - 1, last - first + 1) : "");
        if (!tokens.empty()) word = tokens[0]->text;
        JoinWords(mistake, line, first - 1, tokens);
        hint = HintFor(line, word);
    }
    if (hint == nullptr) return;
    mistake.hint = hint;
    mistake.fixes.clear();
    FixForeignWord(mistake, line, first - 1, word);
}
