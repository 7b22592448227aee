#include "symbols/foreign_words.h"

#include <algorithm>
#include <string_view>

#include "base/run.h"
#include "base/source_reader.h"
#include "base/token_span.h"
#include "lexer/lexer.h"
#include "symbols/foreign_fixes.h"
#include "symbols/foreign_signs.h"
#include "symbols/foreign_tables.h"

namespace {

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

// Where the line ends, comment and blanks aside.
std::size_t CodeEnd(std::string_view line) {
    return line.substr(0, CommentStart(line)).find_last_not_of(" \t") + 1;
}

// A mistake's line, its tokens, and of these the one that is meant: its word, and its number, which lies beyond the end
// where it cannot be told (in the hole of a String, say).
struct Meant {
    std::string_view line;
    Tokens tokens;
    std::string word;
    std::size_t at;
};

// Of "math.sqrt" or "std::sqrt", where its first word stands at the number.
std::string MemberOf(TokenSpan tokens, std::size_t at) {
    if (tokens.SignAt(at + 1) == '.') return Lower(tokens[at + 2]);
    const bool isScoped = tokens.SignAt(at + 1) == ':' && tokens.SignAt(at + 2) == ':';
    return isScoped ? Lower(tokens[at + 3]) : "";
}

std::string HintFor(const Meant& meant) {
    if (const char* hint = HintAtQuotes(meant.line, meant.tokens, meant.at)) return hint;
    const bool isInHole = meant.at == meant.tokens.size() && meant.line.find("{%") != std::string_view::npos;
    if (isInHole && meant.word == ":")
        return "A hole shows a value as it is; PadLeft and Format make texts of some width. They come with "
               "Include \"std/text.kvl\"";
    // Mid$("text", 1)
    const TokenSpan tokens = meant.tokens;
    if (meant.word.size() > 1 && meant.word[0] == '#') return HintAtWord(meant.word);
    const bool isKnown = tokens.SignAt(meant.at + 1) == '$' && !HintAtWord(meant.word).empty();
    const std::string called = tokens.SignAt(meant.at + 1) == '(' ? HintAtWord(meant.word + "(") : "";
    if (!called.empty()) return called;
    const char* const sign = isKnown ? nullptr : HintAtSign(meant.tokens, meant.at);
    if (sign != nullptr) return sign;
    if (const char* hint = HintAtBeginning(meant.tokens, meant.word, meant.at)) return hint;
    const char before = meant.at > 0 ? tokens.SignAt(meant.at - 1) : '\0';
    if (before == '\\' || before == '.') return {};
    const std::string member = MemberOf(tokens, meant.at);
    const std::string hint =
        member.empty() || IsForeignWord(meant.word) ? std::string() : HintAtMember(member);
    return hint.empty() ? HintAtWord(meant.word) : hint;
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
    const std::string directive = "#" + Lower(TokenSpan(meant.tokens)[meant.at + 1]);
    if (meant.word == "#" && IsForeignWord(directive)) meant.word = directive;
    return meant;
}

// The line is wrong up to an operator or comma at its end.
bool ReachesOpenEnd(const korvel::Diagnostic& mistake, const Meant& meant) {
    const auto end = static_cast<std::size_t>(mistake.lastColumn);
    return EndsOpen(meant.tokens) && end > 0 && end == CodeEnd(meant.line);
}

void PointToEnd(korvel::Diagnostic& mistake, const std::string& line, TokenSpan tokens) {
    mistake.lastColumn = static_cast<int>(CodeEnd(line));
    mistake.firstColumn = mistake.lastColumn + 1 - static_cast<int>(tokens[tokens.size() - 1].size());
    mistake.hint = "A line goes on in the next one if it ends in '_' behind a blank";
    mistake.fixes.clear();
}

const char* HintAtEncoding(const std::string& path) {
    std::string text;
    if (!ReadFile(path, text) || text.size() < 2) return nullptr;
    const bool isWide = (text[0] == '\xFF' && text[1] == '\xFE') ||
                        (text[0] == '\xFE' && text[1] == '\xFF') || text[0] == '\0' || text[1] == '\0';
    return isWide ? "The file is UTF-16: save it as UTF-8" : nullptr;
}

}  // namespace

std::string HintAtForeignWord(const std::string& word) { return HintAtWord(Lower(word)); }

void HintAtForeignWords(korvel::Diagnostic& mistake) {
    std::string line;
    if (mistake.severity != korvel::Severity::Error || mistake.file.empty()) return;
    if (const char* hint = mistake.line <= 1 ? HintAtEncoding(mistake.file) : nullptr) {
        mistake.hint = hint;
    } else if (LineOf(mistake, line)) {
        const Meant meant = MeantBy(mistake, line);
        if (ReachesOpenEnd(mistake, meant)) return PointToEnd(mistake, line, meant.tokens);
        JoinWords(mistake, line);
        const std::string hint = HintFor(meant);
        const WrongLine wrong = {line, meant.tokens, meant.at};
        if (!hint.empty()) {
            mistake.hint = hint;
            mistake.fixes.clear();
            FixForeignWord(mistake, wrong);
        }
        if (mistake.fixes.empty()) FixStatement(mistake, wrong);
    }
}
