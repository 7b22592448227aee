#include "warnings/table.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "base/report.h"
#include "warnings/slips.h"

namespace {

const WarningRow rows[] = {
    // statements
    {"assign-twice", "This line assigns to '{}' as well", "To compare, write it in brackets: a = (b = c)",
     AssignsTwice},
    {"compared-value", "'{}' compares here and assigns nothing",
     "Only the first '=' of a declaration gives a value. Where a comparison is meant: Local same:Bool = a = "
     "b",
     ComparesInstead},
    {"assign-itself", "'{}' changes nothing",
     "In a Method a parameter hides a Field of its name: write This\\name for the Field", AssignsToItself},
    {"number-size", "'{}' does not fit the type",
     "Use a type that holds it: Int or Long, or Double for a fraction", DefaultExceedsType, nullptr, nullptr,
     ExceedsType},
    {"bare-file", "The file name '{}' stands without quotes", "Write Include \"file.kvl\"", NamesFileBare},
    {"table-type", "The items of this table are Ints, whatever '{}' says",
     "A PreCalc table holds Int or Double, written like this", NamesOtherItems},
    {"type-again", "'{}' is declared once before; this declaration does not count", "Give it another name",
     DeclaresTypeAgain},
    {"constructor-name", "'{}' is a Method like others, which Create does not call",
     "Create calls the one that is named constructor, in small letters", NamesConstructor},
    {"case-runs-on", "The Case before this line runs on into it",
     "Write 'Exit' at the end of the Case before, as nothing else ends it", RunsIntoLabel},
    {"end-of-block", "'{}' ends the whole program",
     "Blocks end with one word: EndWhile is Wend, EndSub is EndFunction", EndsWithWord},
    {"loop-never", "This loop never runs",
     "A While needs a condition that can hold; a For counts down with Step -1", CountsNothing},
    {"loop-forever", "This loop cannot end", "Nothing in it changes what its end depends on", CountsForever},
    {"beyond-end", "There is no item '{}' in the Sequence",
     "The first item has the number 0, the last one SeqLength(s) - 1", GetsBeyondEnd},
    {"print-shl", "'{}' stands between two items here, as '&' does", "Write it in brackets: Print (a Shl b)",
     PrintsShifted},
    {"backslash", "A backslash in a text means itself", "A new line is written ~n, a tab ~t, a quote ~q",
     EscapesByBackslash},
    // operators
    {"not-compared", "'{}' negates only what stands before the comparison", "Write Not (a = b), or a <> b",
     nullptr, NegatesOperand},
    {"power", "'^' is BitXor, no power", "Write Pow(a, b) for a power, or BitXor", nullptr, IsPower},
    {"compared-twice", "'{}' compares True or False with the next value", "Write a < b And b < c", nullptr,
     ComparesComparison},
    {"number-as-truth", "'{}' is a number, which always counts as True or always as False",
     "Write a = 3 Or a = 4", nullptr, JoinsNumber},
    {"bits-compared", "'{}' compares before it looks at bits", "Write (a BitAnd b) = c", nullptr,
     ComparesInBits},
    {"text-order", "'{}' orders letters, where \"10\" comes before \"9\"",
     "Write ToInt(a) to compare numbers", nullptr, OrdersNumberTexts},
    // items of arrays
    {"beyond-array", "There is no item '{}' in the array",
     "The first item has the number 0, the last one the size less 1", nullptr, nullptr, IndexesBeyondSize},
    // calls
    {"lost-result", "'{}' only gives a value, which is lost", "Put it to use: s = Upper(s), Print Upper(s)",
     nullptr, nullptr, nullptr, nullptr, LosesResult},
    // more than one statement (routine_watch)
    {"unreachable", "This line is never reached", "What stands before it always leaves"},
    {"lost-change", "'{}' changes a copy of the item, which nothing uses",
     "To change the items themselves write EachSeq item In s, or count through an array: a[i] = 3"},
    {"unused-variable", "'{}' is never used", "Remove it"},
    {"unused-function", "Nothing calls '{}'", "Remove it, or call it"},
    // source lines (comments)
    {"print-semicolon", "Behind ';' everything is a comment",
     "Print joins with '&': Print a & b. Lines end without ';'"},
    // said where they are met
    {"stop-call", "", "Write its name as in its declaration, or All"},
    {"before-case", "", "Move it before the Select, or behind a Case"},
    {"crossing", "", "Close blocks in the reverse order of their openers"},
};

bool IsOperator(const Word& word) {
    return Has(word.keyword, trait::operation) ||
           (word.sign != '\0' && std::strchr("=<>+-*^&", word.sign) != nullptr);
}

// The words as most people would write them.
std::string Written(TokenSpan words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool apart = i > 0 && (words.SignAt(i) == '\0' || IsOperator(words.At(i))) &&
                           (words.SignAt(i - 1) == '\0' || IsOperator(words.At(i - 1))) &&
                           !(i == 1 && words.SignAt(0) == '-');
        text += (apart ? " " : "") + words[i];
    }
    return text;
}

std::string Filled(std::string text, TokenSpan about) {
    const std::size_t hole = text.find("{}");
    return hole == std::string::npos ? text : text.replace(hole, 2, Written(about));
}

}  // namespace

WarningRows AllWarnings() { return {std::begin(rows), std::end(rows)}; }

void WarnOf(const WarningRow& row, const Stop::Subject& about) {
    Warn(row.name, Filled(row.text, about.tokens), about);
}

void WarnOf(const char* name, const Stop::Subject& about) {
    for (const WarningRow& row : rows)
        if (std::string_view(row.name) == name) WarnOf(row, about);
}
