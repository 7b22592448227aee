#include "symbols/missing_closers.h"

#include <string_view>

#include "base/run.h"
#include "base/source_reader.h"
#include "base/token_span.h"
#include "lexer/lexer.h"

namespace {

// Each reads its file.
constexpr int mostFixes = 100;
int fixes = 0;
const PartOfRun partOfRun(fixes);

constexpr char blanks[] = " \t";

void AddBehind(korvel::Diagnostic& mistake, int line, std::size_t at, const std::string& text) {
    korvel::Fix& fix = mistake.fixes.emplace_back();
    fix.file = mistake.file;
    fix.line = line;
    fix.firstColumn = static_cast<int>(at) + 1;
    fix.lastColumn = static_cast<int>(at);
    fix.replacement = text;
}

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

void PutInPlace(korvel::Diagnostic& mistake, int line, std::size_t begin, std::size_t end,
                const std::string& text) {
    AddBehind(mistake, line, begin, text);
    mistake.fixes.back().lastColumn = static_cast<int>(end);
}

}  // namespace

void FixOpenBlock(korvel::Diagnostic& mistake, int openLine, const std::string& closer) {
    SourceReader reader;
    std::string_view opener;
    if (closer.empty() || !GoTo(reader, mistake, openLine, opener)) return;
    const std::size_t indentation = opener.find_first_not_of(blanks);
    int last = 0;
    std::size_t size = 0;
    for (int number = openLine + 1; !reader.AtEnd(); ++number) {
        const std::string_view line = reader.TakeLine();
        const std::size_t start = line.find_first_not_of(blanks);
        if (start == std::string_view::npos) continue;
        if (start == indentation && IsEndOfTwoWords(line)) {
            mistake.hint = "End ends the program, with whatever word behind it: write " + closer;
            return PutInPlace(mistake, number, start, line.size(), closer);
        }
        if (start <= indentation && !Divides(line)) break;
        last = number;
        size = line.size();
    }
    if (last != 0) AddBehind(mistake, last, size, "\n" + std::string(opener.substr(0, indentation)) + closer);
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
        AddBehind(mistake, mistake.line, end, std::string(1, closer));
}
