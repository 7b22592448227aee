#include "symbols/missing_closers.h"

#include <string_view>

#include "base/edit_distance.h"
#include "base/run.h"
#include "base/source_reader.h"
#include "base/token_span.h"
#include "lexer/lexer.h"
#include "symbols/fixes.h"

namespace {

// Each reads its file.
constexpr int mostFixes = 100;
int fixes = 0;
const PartOfRun partOfRun(fixes);

constexpr char blanks[] = " \t";

bool GoTo(SourceReader& reader, const korvel::Range& range, int line, std::string_view& text) {
    if (++fixes > mostFixes || !reader.Open(range.file)) return false;
    for (int i = 0; i < line; ++i) text = reader.TakeLine();
    return true;
}

// Whether a line that is indented like the opener goes on with the block.
bool Divides(std::string_view line) {
    const Tokens tokens = Cut(line);
    return Has(TokenSpan(tokens).KeywordAt(0), trait::divides);
}

// "End While" ends the program.
bool IsEndOfTwoWords(std::string_view line) {
    const Tokens tokens = Cut(line);
    return tokens.size() == 2 && TokenSpan(tokens).KeywordAt(0) == Keyword::End;
}

// Of "While n < 3", or "Loop Until n = 3", that is meant to end a Repeat: what does.
std::string EndOfRepeat(std::string_view line) {
    const Tokens tokens = Cut(line.substr(0, CommentStart(line)));
    const TokenSpan words = TokenSpan(tokens).From(IsWord(TokenSpan(tokens)[0], "loop") ? 1 : 0);
    if (words.size() < 2) return {};
    const std::size_t at = line.find(words[0]) + words[0].size();
    const std::string_view rest = line.substr(0, CommentStart(line)).substr(at);
    const std::size_t first = rest.find_first_not_of(blanks), last = rest.find_last_not_of(blanks);
    const std::string condition(rest.substr(first, last + 1 - first));
    if (words.KeywordAt(0) == Keyword::Until) return "Until " + condition;
    return words.KeywordAt(0) == Keyword::While ? "Until Not (" + condition + ")" : "";
}

// "EnMethod" for EndMethod
bool IsMisspelt(std::string_view line, const std::string& closer) {
    constexpr std::size_t most = 2;
    const Tokens tokens = Cut(line);
    return closer.size() > 3 && tokens.size() == 1 && tokens[0]->keyword == Keyword::None &&
           EditDistance(Lower(tokens[0]->text), Lower(closer), most) <= most;
}

// A Function that stands in a Type, up to its end, is meant as a Method.
void FixFunctionInType(korvel::Diagnostic& mistake, std::string_view opener) {
    SourceReader reader;
    std::string_view line;
    const Keyword block = TokenSpan(Cut(opener)).KeywordAt(0);
    if (!Has(block, trait::classes) || !GoTo(reader, mistake, mistake.line, line)) return;
    const std::size_t indentation = line.find_first_not_of(blanks);
    if (TokenSpan(Cut(line)).KeywordAt(0) != Keyword::Function) return;
    for (int number = mistake.line + 1; !reader.AtEnd(); ++number) {
        line = reader.TakeLine();
        if (line.find_first_not_of(blanks) != indentation) continue;
        const Tokens tokens = Cut(line);
        const Keyword word = TokenSpan(tokens).KeywordAt(0);
        if (word != Keyword::EndFunction && !tokens.empty()) return;
        if (word != Keyword::EndFunction) continue;
        const auto function = static_cast<std::size_t>(mistake.firstColumn) - 1;
        mistake.hint = "What a Type does stands in Methods: Method ... EndMethod";
        AddFix(mistake, mistake.line, function, function + TextOf(Keyword::Function).size(), "Method");
        return AddFix(mistake, number, indentation, indentation + tokens[0]->text.size(), "EndMethod");
    }
}

}  // namespace

void FixOpenBlock(korvel::Diagnostic& mistake, int openLine, const std::string& closer) {
    SourceReader reader;
    std::string_view opener;
    if (!GoTo(reader, mistake, openLine, opener)) return;
    const bool isRepeat = closer.empty() && TokenSpan(Cut(opener)).KeywordAt(0) == Keyword::Repeat;
    const std::size_t indentation = opener.find_first_not_of(blanks);
    int last = 0;
    std::size_t size = 0;
    for (int number = openLine + 1; !reader.AtEnd(); ++number) {
        const std::string_view line = reader.TakeLine();
        const std::size_t start = line.find_first_not_of(blanks);
        if (start == std::string_view::npos) continue;
        if (start == indentation && IsEndOfTwoWords(line)) {
            mistake.hint = "End ends the program, with whatever word behind it: write " + closer;
            return AddFix(mistake, number, start, line.size(), closer);
        }
        if (start == indentation && IsMisspelt(line, closer)) {
            mistake.hint = "did you mean '" + closer + "' in line " + std::to_string(number) + "?";
            return AddFix(mistake, number, start, line.size(), closer);
        }
        const std::string end = isRepeat && start <= indentation ? EndOfRepeat(line) : std::string();
        if (!end.empty()) {
            mistake.hint = "A Repeat ends with Until and the condition to end, or with Forever: write " + end;
            return AddFix(mistake, number, start, line.size(), end);
        }
        if (start <= indentation && !Divides(line)) break;
        last = number;
        size = line.size();
    }
    // What is wrong inside of the block stays so wherever that ends.
    if (mistake.line > openLine && last >= mistake.line) return FixFunctionInType(mistake, opener);
    if (last != 0 && !closer.empty())
        AddFix(mistake, last, size, size, "\n" + std::string(opener.substr(0, indentation)) + closer);
}

void FixOpenSign(korvel::Diagnostic& mistake) {
    SourceReader reader;
    std::string_view line;
    const auto at = static_cast<std::size_t>(mistake.firstColumn) - 1;
    if (mistake.firstColumn == 0 || !GoTo(reader, mistake, mistake.line, line) || at >= line.size()) return;
    const char sign = line[at];
    const char closer = sign == '(' ? ')' : sign == '[' ? ']' : sign == '"' ? '"' : '\0';
    const std::string_view code = line.substr(0, sign == '"' ? line.size() : CommentStart(line));
    const std::size_t end = code.find_last_not_of(blanks) + 1;
    const bool goesOn = code.find('|', at) != std::string_view::npos || code[end - 1] == '_';
    if (closer != '\0' && (sign == '"' || !goesOn))
        AddFix(mistake, mistake.line, end, end, std::string(1, closer));
}
