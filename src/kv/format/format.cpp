#include "kv/format/format.h"

#include <string_view>

#include "base/source_reader.h"
#include "kv/format/line.h"
#include "kv/format/nesting.h"
#include "kv/format/spelling.h"
#include "lexer/lexer.h"

namespace {

const std::size_t step = 4, tab = 4;

std::size_t ColumnOf(std::string_view line) {
    std::size_t column = 0;
    for (const char c : line) {
        if (c != ' ' && c != '\t') break;
        column = c == '\t' ? (column / tab + 1) * tab : column + 1;
    }
    return column;
}

std::string Indented(std::size_t columns, const std::string& code, std::string_view comment) {
    const std::string text = code + std::string(comment);
    return text.empty() ? text : std::string(columns, ' ') + text;
}

// Goes through the lines of one text.
class Formatter {
public:
    // The line, without its line end, in its usual form.
    std::string Line(const std::string& line) {
        const SplitLine parts = PartsOf(line);
        const Tokens tokens = Cut(parts.code);
        if (isInline_) return InlineLine(line, tokens, parts);
        if (isJoinedByTildes_) return TildeLine(line, tokens);
        if (goesOn_) return ContinuedLine(line, parts, tokens);
        column_ = ColumnOf(line);
        indent_ = nesting_.LevelOf(tokens) * step;
        isInline_ = !tokens.empty() && tokens[0]->keyword == Keyword::InlineCpp;
        if (isInline_) return Indented(indent_, Spaced(parts.code, tokens, true), parts.comment);
        isJoinedByTildes_ = EndsInTildes(tokens, 2);
        Take(tokens);
        // What tildes join has no blanks of its own between its lines.
        return Indented(indent_,
                        isJoinedByTildes_ ? std::string(parts.code) : Spaced(parts.code, tokens, true),
                        parts.comment);
    }

private:
    Nesting nesting_;
    Tokens joined_;           // of a line that goes on
    std::size_t column_ = 0;  // of its first part, as it was and as it is now
    std::size_t indent_ = 0;
    bool goesOn_ = false;
    bool isInline_ = false;
    bool isJoinedByTildes_ = false;

    static bool EndsInTildes(const Tokens& tokens, std::size_t count) {
        const std::size_t size = tokens.size();
        const auto isTilde = [&](std::size_t back) {
            return size >= back && tokens[size - back]->sign == '~';
        };
        return count == 2 ? isTilde(1) && isTilde(2) : isTilde(1) || isTilde(2);
    }

    // Adds the tokens to those of the line, which ends there unless it goes on.
    void Take(const Tokens& tokens) {
        joined_.insert(joined_.end(), tokens.begin(), tokens.end());
        goesOn_ = !tokens.empty() && tokens.back()->text == "_";
        if (goesOn_) joined_.pop_back();
        if (goesOn_ || isJoinedByTildes_) return;
        nesting_.Pass(joined_);
        joined_.clear();
    }

    // C++ stays as it is.
    std::string InlineLine(const std::string& line, const Tokens& tokens, const SplitLine& parts) {
        isInline_ = tokens.empty() || tokens[0]->keyword != Keyword::EndInlineCpp;
        return isInline_ ? line : Indented(indent_, Spaced(parts.code, tokens, true), parts.comment);
    }

    std::string TildeLine(const std::string& line, const Tokens& tokens) {
        isJoinedByTildes_ = EndsInTildes(tokens, 1);
        Take(tokens);
        return line;
    }

    // Keeps its distance from the first line.
    std::string ContinuedLine(const std::string& line, const SplitLine& parts, const Tokens& tokens) {
        const std::size_t column = ColumnOf(line);
        const std::size_t columns = column > column_ ? indent_ + column - column_ : indent_ + step;
        Take(tokens);
        return Indented(columns, Spaced(parts.code, tokens, false), parts.comment);
    }
};

}  // namespace

std::string Formatted(const std::string& text) {
    Formatter formatter;
    std::string result;
    std::size_t at = ByteOrderMarkOf(text);
    result.append(text, 0, at);
    while (at < text.size()) {
        const std::size_t end = text.find('\n', at);
        const std::size_t next = end == std::string::npos ? text.size() : end + 1;
        std::size_t lineEnd = end == std::string::npos ? text.size() : end;
        if (lineEnd > at && lineEnd < text.size() && text[lineEnd - 1] == '\r') --lineEnd;
        result += formatter.Line(text.substr(at, lineEnd - at));
        result.append(text, lineEnd, next - lineEnd);
        at = next;
    }
    return result;
}
