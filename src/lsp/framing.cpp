#include "lsp/framing.h"

#include <algorithm>
#include <cstdlib>

#include "base/text.h"
#include "lexer/lexer.h"

namespace {

constexpr std::size_t longest = std::size_t{1} << 29, piece = std::size_t{1} << 16;
const std::string_view lengthField = "content-length:";  // in any letter case

// Without its end of line. False at the end of the stream.
bool ReadHeadLine(std::FILE* from, std::string& line) {
    line.clear();
    int c = std::getc(from);
    for (; c != EOF && c != '\n'; c = std::getc(from))
        if (line.size() < piece) line += static_cast<char>(c);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return c != EOF;
}

// The pieces come as they are there: the length may be wrong.
bool ReadBody(std::FILE* from, std::size_t length, std::string& text) {
    text.clear();
    while (text.size() < length) {
        const std::size_t before = text.size(), wanted = std::min(piece, length - before);
        text.resize(before + wanted);
        const std::size_t got = std::fread(&text[before], 1, wanted, from);
        if (got < wanted) return false;
    }
    return true;
}

}  // namespace

bool ReadMessage(std::FILE* from, std::string& text) {
    std::size_t length = 0;
    for (std::string line; ReadHeadLine(from, line);) {
        if (StartsWith(Lower(line), lengthField))
            length = std::strtoull(&line[lengthField.size()], nullptr, 10);
        if (!line.empty() || length == 0) continue;
        if (length <= longest) return ReadBody(from, length, text);
        length = 0;
    }
    return false;
}

void WriteMessage(std::FILE* to, const std::string& text) {
    const std::string head = "Content-Length: " + std::to_string(text.size()) + "\r\n\r\n";
    std::fwrite(head.data(), 1, head.size(), to);
    std::fwrite(text.data(), 1, text.size(), to);
    std::fflush(to);
}
