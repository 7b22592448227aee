#include "lexer/lexer.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "base/report.h"
#include "base/settings.h"
#include "base/token_span.h"

namespace {

constexpr char delimiterCharacters[] = "!@#$%^&*()-+={}[]|\\:\"'<>,.?/~";

enum class CharClass : unsigned char {
    Word,  // part of an identifier or number; every character that is not listed below
    Digit,
    Blank,
    Delimiter,
    OpenParen,
    CloseParen,
    OpenBracket,
    CloseBracket,
    Dollar,
    Point,
    Quote,
    Comment,
};

std::array<CharClass, 256> MakeClassTable() {
    std::array<CharClass, 256> table{};
    const auto set = [&table](char c, CharClass cls) { table[static_cast<unsigned char>(c)] = cls; };
    for (const char* c = delimiterCharacters; *c; ++c) set(*c, CharClass::Delimiter);
    for (char c = '0'; c <= '9'; ++c) set(c, CharClass::Digit);
    set(' ', CharClass::Blank);
    set('\t', CharClass::Blank);
    set('(', CharClass::OpenParen);
    set(')', CharClass::CloseParen);
    set('[', CharClass::OpenBracket);
    set(']', CharClass::CloseBracket);
    set('$', CharClass::Dollar);
    set('.', CharClass::Point);
    set('"', CharClass::Quote);
    set(';', CharClass::Comment);
    return table;
}

const std::array<CharClass, 256> classTable = MakeClassTable();

CharClass ClassOf(char c) { return classTable[static_cast<unsigned char>(c)]; }

// What a scan found besides the tokens.
struct ScanResult {
    bool openString = false;
    bool hasBar = false;
    int parenDepth = 0;
    int bracketDepth = 0;
    char unmatched = '\0';  // the first closer without an opener
};

// One scan over a line. Every token is a contiguous piece of the line, so a start position is all that
// the current token needs.
class Scanner {
public:
    Scanner(std::string_view text, Tokens& out) : line(text), tokens(out) {}

    const ScanResult& Run() {
        while (at < line.size() && !inComment) Step();
        Flush();
        return result;
    }

private:
    std::string_view line;
    Tokens& tokens;
    ScanResult result;
    std::size_t at = 0;
    std::size_t start = 0;
    bool inToken = false;
    bool inComment = false;
    bool onlyDigits = false;  // the current token so far

    void Step() {
        switch (ClassOf(line[at])) {
            case CharClass::Word:
            case CharClass::Digit:
                Word();
                break;
            case CharClass::Blank:
                Flush();
                ++at;
                break;
            case CharClass::Delimiter:
                Delimiter();
                break;
            case CharClass::OpenParen:
                ++result.parenDepth;
                Delimiter();
                break;
            case CharClass::CloseParen:
                Close(result.parenDepth);
                break;
            case CharClass::OpenBracket:
                ++result.bracketDepth;
                Delimiter();
                break;
            case CharClass::CloseBracket:
                Close(result.bracketDepth);
                break;
            case CharClass::Dollar:
                Dollar();
                break;
            case CharClass::Point:
                Point();
                break;
            case CharClass::Quote:
                String();
                break;
            case CharClass::Comment:
                inComment = true;
                break;
        }
    }

    bool NextIs(bool (*test)(char)) const { return at + 1 < line.size() && test(line[at + 1]); }

    void BeginToken() {
        if (inToken) return;
        inToken = true;
        start = at;
        onlyDigits = true;
    }

    void Word() {
        BeginToken();
        std::size_t end = at;
        bool letters = false;
        for (; end < line.size(); ++end) {
            const CharClass cls = ClassOf(line[end]);
            if (cls > CharClass::Digit) break;
            letters = letters || cls == CharClass::Word;
        }
        at = end;
        onlyDigits = onlyDigits && !letters;
    }

    void Add(std::size_t begin, std::size_t end) { tokens.emplace_back(line.substr(begin, end - begin)); }

    void Flush() {
        if (inToken) Add(start, at);
        inToken = false;
    }

    void Delimiter() {
        Flush();
        result.hasBar = result.hasBar || line[at] == '|';
        tokens.emplace_back(WordOf(line[at]));
        ++at;
    }

    void Close(int& depth) {
        if (--depth < 0 && result.unmatched == '\0') result.unmatched = line[at];
        Delimiter();
    }

    // "$" begins a hexadecimal literal; the digits stay the current token, so what follows without a
    // blank is part of it.
    void Dollar() {
        if (inToken || !NextIs(IsHexDigit)) return Delimiter();
        BeginToken();
        onlyDigits = false;
        do ++at;
        while (at < line.size() && IsHexDigit(line[at]));
    }

    void Point() {
        if (!inToken || !onlyDigits || !NextIs(IsDigit)) return Delimiter();
        onlyDigits = false;
        ++at;
    }

    // A string runs to the next quote; there is no escape character.
    void String() {
        Flush();
        const std::size_t close = line.find('"', at + 1);
        result.openString = close == std::string_view::npos;
        const std::size_t end = result.openString ? line.size() : close + 1;
        Add(at, end);
        at = end;
    }
};

constexpr char unclosedString[] = "Unclosed string literal";

const char* BoolText(bool value) { return value ? "true" : "false"; }

LexTrouble ProblemOf(const ScanResult& found, bool continues) {
    const int open = found.parenDepth;
    if (found.unmatched == ')') return {"Unmatched closing parenthesis ')'", open, ')'};
    if (found.unmatched == ']') return {"Unmatched closing bracket ']'", open, ']'};
    if (continues) return {nullptr, open};
    if (found.openString) return {unclosedString, open, '"'};
    if (open > 0) return {unclosedParenthesis, open, '('};
    return found.bracketDepth > 0 ? LexTrouble{unclosedBracket, open, '['} : LexTrouble{nullptr, open};
}

bool IsContinued(TokenSpan tokens) {
    const std::size_t count = tokens.size();
    return (count > 0 && Is(tokens[count - 1], "_")) ||
           (count > 1 && tokens.SignAt(count - 1) == '~' && tokens.SignAt(count - 2) == '~');
}

std::size_t IndentOf(std::string_view line) {
    std::size_t indent = 0;
    while (indent < line.size() && (line[indent] == ' ' || line[indent] == '\t')) ++indent;
    return indent;
}

}  // namespace

void ShowLine(std::int32_t number, bool skipValidation, std::string_view line) {
    if (!settings.verbose) return;
    std::string text = "DEBUG LexLine: line=" + std::to_string(number) +
                       " skipValidation=" + BoolText(skipValidation) + " content=\"";
    text += line.substr(0, 50);
    if (line.size() > 50) text += "...";
    text += "\"\n";
    SayLines(text, true);
}

void ShowTrouble(const LexTrouble& trouble) {
    if (!settings.verbose || trouble.message != unclosedParenthesis) return;
    SayLines(
        "DEBUG: Triggering unclosed paren error - parenDepth=" + std::to_string(trouble.openParentheses) +
            " skipValidation=false hasLineContinuation=false\n",
        true);
}

Lexer::Lexer() {
    for (const char* c = delimiterCharacters; *c; ++c) delimiters.emplace_back(1, *c);
}

LexTrouble Lexer::Cut(std::string_view line) {
    tokens.clear();
    indent = static_cast<std::uint32_t>(IndentOf(line));
    Scanner scanner(line.substr(indent), tokens);
    const ScanResult& found = scanner.Run();
    hasBar = found.hasBar;
    return ProblemOf(found, IsContinued(tokens));
}

std::int32_t Lexer::LexLine(std::string_view line, bool keepComment, bool countLine, bool skipValidation) {
    ShowLine(lineNumber + (countLine ? 1 : 0), skipValidation, line);
    if (countLine) {
        ++lineNumber;
        lineText.assign(line);
    }
    const LexTrouble trouble = Cut(line);
    if (!skipValidation && trouble.message) {
        ShowTrouble(trouble);
        FailInLine(fileName, lineNumber, trouble.message, lineText);
    }
    const std::size_t comment = keepComment ? CommentStart(line) : std::string_view::npos;
    if (comment != std::string_view::npos) tokens.emplace_back("//" + std::string(line.substr(comment + 1)));
    return TokenCount();
}

std::int32_t Lexer::TokenCount() const { return static_cast<std::int32_t>(tokens.size()); }

std::string Lexer::GetToken(std::int32_t i) const {
    return i >= 0 && i < TokenCount() ? tokens[static_cast<std::size_t>(i)]->text : std::string();
}

std::uint32_t Lexer::GetIndent() const { return indent; }

static const char* HowToClose(const char* message) {
    if (message == unclosedString) return "A String ends with '\"' on its line; a quote in it is written ~q";
    if (message == unclosedParenthesis || message == unclosedBracket)
        return "It has to be closed in the same statement; a line that ends in '_' goes on in the next one";
    return std::strncmp(message, "Unmatched", 9) == 0
               ? "It closes nothing: its opener is missing, or it is one too many"
               : "";
}

void FailInLine(const std::string& file, int number, const char* message, std::string_view line) {
    korvel::Diagnostic mistake;
    mistake.file = file;
    mistake.line = number;
    mistake.message = message;
    mistake.hint = HowToClose(message);
    FailOnErrorStream(mistake, "Error in " + file + " (line " + std::to_string(number) + "): " + message +
                                   "\nLine: " + std::string(line));
}

Tokens Cut(std::string_view text) {
    Tokens tokens;
    Scanner(text, tokens).Run();
    return tokens;
}

void ShowSplit(std::string_view text) { ShowLine(0, true, text); }

Tokens Split(std::string_view text) {
    ShowSplit(text);
    return Cut(text);
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = LowerLetter(c);
    }
    return lower;
}
