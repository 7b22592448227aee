#include <algorithm>

#include "lexer/lexer.h"

std::size_t CommentStart(std::string_view line) {
    bool inString = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') inString = !inString;
        if (line[i] == ';' && !inString) return i;
    }
    return std::string_view::npos;
}

std::string CutAtContinuation(const std::string& rawLine) {
    const std::size_t comment = CommentStart(rawLine);
    const std::size_t mark = rawLine.substr(0, comment).rfind('_');
    return rawLine.substr(0, mark == std::string::npos ? comment : mark);
}

std::string CommentOf(const std::string& rawLine) {
    const std::size_t comment = CommentStart(rawLine);
    if (comment == std::string::npos) return {};
    return GuardComment("//" + rawLine.substr(comment + 1));
}

bool EndsContinued(std::string_view line) {
    const std::size_t last = line.find_last_not_of(" \t\r\f\v");
    if (last == std::string_view::npos) return false;
    const bool trigraph = last >= 2 && line.compare(last - 2, 3,
                                                    "?"
                                                    "?/") == 0;
    return line[last] == '\\' || trigraph;
}

std::string GuardComment(std::string comment) {
    std::replace(comment.begin(), comment.end(), '\r', ' ');
    return EndsContinued(comment) ? comment + " ." : comment;
}
