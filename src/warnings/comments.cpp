#include "warnings/comments.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <unordered_map>

#include "base/parallel.h"
#include "base/run.h"
#include "base/source_reader.h"
#include "base/token_span.h"
#include "lexer/lexer.h"
#include "symbols/symbols.h"

namespace {

const char mark[] = "kv:ok";

// The lines with the mark, by file, and what stands behind it.
std::unordered_map<std::string, std::unordered_map<int, std::string>> marksByFile;
const PartOfRun partOfRun(marksByFile);

Keyword FirstWord(std::string_view line) {
    const std::size_t begin = std::min(line.find_first_not_of(" \t"), line.size());
    std::size_t end = begin;
    while (end < line.size() && IsNameByte(line[end])) ++end;
    return FindKeyword(line.substr(begin, end - begin));
}

// Calls `visit` with the number of each line, the line and where its comment begins. Most lines have none.
template <class Visit>
void ForEachComment(const std::string& file, Visit visit) {
    SourceReader reader;
    if (!reader.Open(file)) return;
    bool inInline = false;
    for (int number = 1; !reader.AtEnd(); ++number) {
        const std::string_view line = reader.TakeLine();
        const Keyword word = symbols.inlineCpp ? FirstWord(line) : Keyword::None;
        inInline = word == Keyword::InlineCpp || (inInline && word != Keyword::EndInlineCpp);
        if (inInline || line.find(';') == std::string_view::npos) continue;
        const std::size_t comment = CommentStart(line);
        if (comment != std::string_view::npos) visit(number, line, comment);
    }
}

const std::unordered_map<int, std::string>& MarksOf(const std::string& file) {
    const auto [entry, isNew] = marksByFile.try_emplace(file);
    if (isNew)
        ForEachComment(file,
                       [&marks = entry->second](int number, std::string_view line, std::size_t comment) {
                           const std::size_t found = line.find(mark, comment);
                           if (found != std::string_view::npos)
                               marks[number] = line.substr(found + sizeof mark - 1);
                       });
    return entry->second;
}

// Whether the last statement of the line, up to the comment, is a Print of something.
bool EndsInPrint(std::string_view code) {
    const Tokens tokens = Cut(code);
    std::size_t begin = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i)
        if (tokens[i]->sign == '|' || tokens[i]->keyword == Keyword::Then ||
            tokens[i]->keyword == Keyword::Else)
            begin = i + 1;
    return begin + 1 < tokens.size() && tokens[begin]->keyword == Keyword::Print;
}

}  // namespace

bool IsSilenced(const korvel::Diagnostic& warning) {
    const auto& marks = MarksOf(warning.file);
    const auto found = marks.find(warning.line);
    if (found == marks.end()) return false;
    std::istringstream names(found->second);
    std::string name;
    bool any = false;
    while (names >> name) {
        if (name == warning.name) return true;
        any = true;
    }
    return !any;
}

static std::vector<korvel::Diagnostic> SemicolonsBehindPrint(const std::string& file) {
    std::vector<korvel::Diagnostic> found;
    ForEachComment(file, [&](int number, std::string_view line, std::size_t comment) {
        if (comment == 0 || line[comment - 1] == ' ' || line[comment - 1] == '\t') return;
        if (!EndsInPrint(line.substr(0, comment))) return;
        korvel::Diagnostic& warning = found.emplace_back();
        warning.file = file;
        warning.line = number;
        warning.firstColumn = warning.lastColumn = static_cast<int>(comment) + 1;
        warning.name = "print-semicolon";
        warning.severity = korvel::Severity::Warning;
    });
    return found;
}

std::vector<korvel::Diagnostic> SemicolonsBehindPrint() {
    const std::vector<std::string>& files = symbols.sourceFiles;
    std::vector<std::vector<korvel::Diagnostic>> found(files.size());
    const auto look = [&](std::size_t i) { found[i] = SemicolonsBehindPrint(files[i]); };
    if (files.size() >= filesWorthAThread)
        InParallel(files.size(), look);
    else
        for (std::size_t i = 0; i < files.size(); ++i) look(i);
    std::vector<korvel::Diagnostic> all;
    for (std::vector<korvel::Diagnostic>& some : found)
        all.insert(all.end(), std::make_move_iterator(some.begin()), std::make_move_iterator(some.end()));
    return all;
}
