#include "lexer/cut_file.h"

#include <algorithm>

#include "base/settings.h"
#include "base/text_hash.h"

namespace {

bool EndsInTilde(const Tokens& tokens) {
    const std::size_t count = tokens.size();
    return (count > 0 && tokens[count - 1]->sign == '~') || (count > 1 && tokens[count - 2]->sign == '~');
}

bool EndsInTwoTildes(const Tokens& tokens) {
    const std::size_t count = tokens.size();
    return count > 1 && tokens[count - 1]->sign == '~' && tokens[count - 2]->sign == '~';
}

bool EndsInUnderscore(const Tokens& tokens) { return !tokens.empty() && Is(tokens.back()->text, "_"); }

std::string WithoutTildes(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '~'), text.end());
    return text;
}

std::string WithoutComment(std::string_view raw) { return std::string(raw.substr(0, CommentStart(raw))); }

std::string WithoutIndent(std::string_view raw) {
    const std::size_t first = raw.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string() : std::string(raw.substr(first));
}

bool IsSingleLineIf(const Tokens& tokens) {
    return tokens.front()->keyword == Keyword::If &&
           std::any_of(tokens.begin(), tokens.end(),
                       [](Token token) { return token->keyword == Keyword::Then; });
}

Keyword FirstWord(const Tokens& tokens) { return tokens.empty() ? Keyword::None : tokens.front()->keyword; }

}  // namespace

bool LineCutter::Open(const std::string& path) {
    if (!reader.Open(path)) return false;
    if (!settings.record.empty()) file.hash = TextHash(reader.Text());
    return true;
}

std::string_view LineCutter::ReadLine() {
    ++physical;
    return reader.TakeLine();
}

void LineCutter::NoteStretch(std::size_t at, std::size_t column) {
    if (places != nullptr) stretches.push_back({at, physical, static_cast<int>(column)});
}

// Of a piece that loses its tildes where it is joined.
void LineCutter::NoteStretchesBetweenTildes(std::size_t at, std::string_view piece) {
    NoteStretch(at, 1);
    for (std::size_t i = 0, tildes = 0; i < piece.size(); ++i)
        if (piece[i] == '~') NoteStretch(at + i - tildes++, i + 2);
}

TokenPlace LineCutter::PlaceAt(std::size_t at, std::size_t size) const {
    const auto behind =
        std::upper_bound(stretches.begin(), stretches.end(), at,
                         [](std::size_t position, const Stretch& stretch) { return position < stretch.at; });
    const auto found = std::prev(behind);
    const int first = found->column + static_cast<int>(at - found->at);
    return {found->line, first, first + static_cast<int>(size) - 1};
}

// Every token is a piece of the text, and only blanks stand between them.
void LineCutter::LocateTokens(std::string_view text) {
    placesInLine.clear();
    std::size_t at = 0;
    for (const Token token : lexer.tokens) {
        at = text.find_first_not_of(" \t", at);
        placesInLine.push_back(PlaceAt(at, token->text.size()));
        at += token->text.size();
    }
}

void LineCutter::LocateWhole(std::string_view text) {
    stretches = {{0, physical, 1}};
    LocateTokens(text);
}

// Of the bracket among these tokens of the line that has no partner, the innermost one of several, or of an open String
// at the end.
TokenPlace LineCutter::PlaceOfTrouble(char sign, std::size_t from, std::size_t to) const {
    const Tokens& tokens = lexer.tokens;
    const bool isRound = sign == '(' || sign == ')';
    const char open = isRound ? '(' : '[', close = isRound ? ')' : ']';
    std::vector<std::size_t> opened = {to - 1};  // the last token where nothing is open
    for (std::size_t i = from; i < to && sign != '"'; ++i) {
        if (tokens[i]->sign == open) opened.push_back(i);
        if (tokens[i]->sign != close) continue;
        if (opened.size() == 1) return placesInLine[i];
        opened.pop_back();
    }
    return placesInLine[opened.back()];
}

void LineCutter::NoteTrouble(const LexTrouble& trouble, std::string_view text) {
    if (trouble.message == nullptr || file.trouble.message != nullptr) return;
    file.trouble = {trouble.message,   file.lines.size(),       count,
                    std::string(text), trouble.openParentheses, {}};
    if (places != nullptr) file.trouble.where = PlaceOfTrouble(trouble.sign, 0, lexer.tokens.size());
}

void LineCutter::NoteLexed(std::string_view text, bool isPiece) {
    if (!settings.verbose || file.trouble.message != nullptr) return;
    file.lexed.push_back({file.lines.size(), count, lexedLine, isPiece, std::string(text)});
}

// A line as it stands.
void LineCutter::Lex(std::string_view text) {
    ++count;
    lexedLine = physical;
    NoteLexed(text, false);
    const LexTrouble trouble = lexer.Cut(text);
    if (places != nullptr) LocateWhole(text);
    NoteTrouble(trouble, text);
}

// The joined line. After "_" it counts once more, in place of the lines that were joined to the first: that
// makes the first pass's numbers run behind, which is its way.
void LineCutter::LexJoined(const std::string& text, bool counts) {
    if (counts) ++count;
    NoteLexed(text, false);
    const LexTrouble trouble = lexer.Cut(text);
    if (places != nullptr) LocateTokens(text);
    NoteTrouble(trouble, text);
}

// What is looked at before it is joined, and inline C++.
void LineCutter::LexPiece(std::string_view text) {
    NoteLexed(text, true);
    lexer.Cut(text);
}

void LineCutter::TakeComment(std::string_view raw) {
    if (!settings.outputComments) return;
    const std::string found = CommentOf(std::string(raw));
    if (found.empty()) return;
    if (!comment.empty()) comment += " ";
    comment += found;
}

// What stands beside the word that opens or closes inline C++ would be lost.
void LineCutter::RefuseCompany(const char* message, std::string_view text) {
    if (places != nullptr) LocateWhole(text);
    if (lexer.tokens.size() > 1) NoteTrouble({message, 0, '"'}, text);
}

// The lines up to EndInlineCpp, or the end of the file.
void LineCutter::CutInline() {
    while (file.inlineOpen && !reader.AtEnd()) {
        const std::string_view raw = ReadLine();
        LexPiece(raw);
        ++count;
        if (lexer.tokens.empty() && !cpp.GoesOn()) continue;
        file.inlineOpen = FirstWord(lexer.tokens) != Keyword::EndInlineCpp;
        if (!file.inlineOpen) {
            TakeComment(raw);
            return RefuseCompany("EndInlineCpp must stand alone on its line", raw);
        }
        cpp.Read(raw);
        file.inlineLines.push_back({std::string(raw), physical, cpp.GoesOn(), cpp.Braces()});
    }
}

// Two tildes begin a join; it goes on while one of the last two tokens is a tilde.
void LineCutter::JoinTildeLines(std::string& text) {
    if (!EndsInTwoTildes(lexer.tokens)) return;
    text = WithoutComment(text);
    stretches.clear();
    NoteStretchesBetweenTildes(0, text);
    text = WithoutTildes(text);
    bool more = true;
    while (more && !reader.AtEnd()) {
        const std::string_view raw = ReadLine();
        TakeComment(raw);
        const std::string piece = WithoutComment(raw);
        ++count;
        LexPiece(piece);
        more = EndsInTilde(lexer.tokens);
        NoteStretchesBetweenTildes(text.size(), piece);
        text += WithoutTildes(piece);
    }
    LexJoined(text, false);
}

void LineCutter::JoinUnderscoreLines(std::string& text) {
    if (!EndsInUnderscore(lexer.tokens)) return;
    text = CutAtContinuation(text);
    bool more = true;
    while (more && !reader.AtEnd()) {
        const std::string_view raw = ReadLine();
        const std::string piece = WithoutIndent(raw);
        NoteStretch(text.size() + 1, raw.size() - piece.size() + 1);
        TakeComment(piece);
        LexPiece(piece);
        more = EndsInUnderscore(lexer.tokens);
        text += " " + (more ? CutAtContinuation(piece) : WithoutComment(piece));
    }
    LexJoined(text, true);
}

void LineCutter::Join(std::string_view first) {
    std::string text(first);
    JoinTildeLines(text);
    JoinUnderscoreLines(text);
}

// Tokens [from, to) of the line become a statement of the file; none if there are none.
void LineCutter::AddStatement(CutLine& line, std::size_t from, std::size_t to) {
    if (from == to) return;
    const Token* tokens = lexer.tokens.data();
    const auto begin = static_cast<std::uint32_t>(file.tokens.size());
    file.tokens.insert(file.tokens.end(), tokens + from, tokens + to);
    file.statements.push_back({begin, static_cast<std::uint32_t>(file.tokens.size())});
    if (places != nullptr)
        places->insert(places->end(), placesInLine.begin() + static_cast<std::ptrdiff_t>(from),
                       placesInLine.begin() + static_cast<std::ptrdiff_t>(to));
    line.declares = line.declares || Has(tokens[from]->keyword, trait::collected);
}

// Tokens [from, to) of the line stand before a "|".
void LineCutter::CheckSplit(const CutLine& line, std::size_t from, std::size_t to, std::string_view text) {
    int parentheses = 0, brackets = 0;
    for (std::size_t i = from; i < to; ++i) {
        const char sign = lexer.tokens[i]->sign;
        parentheses += (sign == '(') - (sign == ')');
        brackets += (sign == '[') - (sign == ']');
    }
    if (file.splitTrouble.message != nullptr || (parentheses <= 0 && brackets <= 0)) return;
    const char* message = parentheses > 0 ? unclosedParenthesis : unclosedBracket;
    file.splitTrouble = {message, file.lines.size(), line.start, std::string(text), 0, {}};
    if (places != nullptr) file.splitTrouble.where = PlaceOfTrouble(parentheses > 0 ? '(' : '[', from, to);
}

void LineCutter::AddStatements(CutLine& line, std::string_view text) {
    const Tokens& tokens = lexer.tokens;
    std::size_t begin = 0;
    for (std::size_t i = 0; lexer.hasBar && i < tokens.size(); ++i) {
        if (tokens[i]->sign != '|') continue;
        if (IsSingleLineIf(tokens)) break;
        CheckSplit(line, begin, i, text);
        AddStatement(line, begin, i);
        begin = i + 1;
    }
    AddStatement(line, begin, tokens.size());
}

void LineCutter::AddLine(const CutLine& line) {
    file.lines.push_back(line);
    file.lines.back().statementsEnd = static_cast<std::uint32_t>(file.statements.size());
    file.lines.back().inlineEnd = static_cast<std::uint32_t>(file.inlineLines.size());
    if (settings.outputComments) file.comments.push_back(std::move(comment));
    comment.clear();
}

void LineCutter::CutNext() {
    CutLine line;
    if (!file.lines.empty()) {
        line.start = file.lines.back().start;
        line.count = file.lines.back().count;
    }
    while (!reader.AtEnd()) {
        if (file.inlineOpen) {
            CutInline();
            line.afterInline = true;
            line.indent = lexer.GetIndent();
            if (!comment.empty()) return AddLine(line);
            continue;
        }
        const std::string_view text = ReadLine();
        line.start = physical;
        Lex(text);
        const int number = count;
        TakeComment(text);
        if (FirstWord(lexer.tokens) == Keyword::InlineCpp) {
            RefuseCompany("InlineCpp must stand alone on its line", text);
            line.indent = lexer.GetIndent();
            file.inlineOpen = true;
            if (!comment.empty()) return AddLine(line);
            continue;
        }
        const bool counted = !EndsInTwoTildes(lexer.tokens);
        if (!counted || EndsInUnderscore(lexer.tokens)) Join(text);
        if (lexer.tokens.empty() && comment.empty()) continue;
        if (!lexer.tokens.empty()) line.count = counted ? count : number;
        line.indent = lexer.GetIndent();
        AddStatements(line, text);
        return AddLine(line);
    }
    line.isEnd = true;
    AddLine(line);
}
