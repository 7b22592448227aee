#include "case_file.h"

#include <cctype>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>

#include "process.h"

namespace {

// A program while its file is read: every line keeps the number it has in the case file, so that reported
// line numbers are those that an editor shows.
struct Draft {
    Case result;
    std::map<std::string, std::map<int, std::string>> lines;   // by path
    std::map<std::string, std::pair<std::string, int>> holes;  // name -> path and line
    std::vector<std::string> encodings;
    std::string openFile;
    std::string holeIndent;  // blanks in front of the line that is being filled
    int rowLine = 0;         // line of the hole that the row fills
    bool lineGiven = false;
};

struct Reader {
    std::string path, stem;
    int number = 0;
    Draft shared;   // what stands before the first case
    Draft current;  // the open case
    Draft frame;    // the open case without rows
    bool inCase = false, sharedRead = false, inRow = false, hasRows = false;
    bool blockOpen = false;  // the last line was an expect-lines
    std::string rowHole;
    int rowCount = 0;
    std::vector<Case> cases;

    [[noreturn]] void Fail(const std::string& message) const {
        throw std::runtime_error(path + ":" + std::to_string(number) + ": " + message);
    }
};

std::vector<std::string> Words(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

std::string WithNewlines(std::string text) {
    for (std::size_t at = 0; (at = text.find("\\n", at)) != std::string::npos;) text.replace(at, 2, "\n");
    return text;
}

std::string Identifier(const std::string& text) {
    std::string name;
    for (char c : text) name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    return name;
}

std::string JoinLines(const std::map<int, std::string>& lines) {
    std::string text;
    int next = 1;
    for (const auto& [number, line] : lines) {
        for (; next < number; ++next) text += '\n';
        text += line + '\n';
        next = number + 1;
    }
    return text;
}

std::string Encode(std::string text, const std::string& encoding) {
    if (encoding == "bom") return "\xEF\xBB\xBF" + text;
    if (encoding == "no-final-newline") return text.substr(0, text.find_last_not_of('\n') + 1);
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) text.insert(at, "\r");
    return text;
}

void Finish(Reader& reader, Draft draft, const std::string& name) {
    Case& result = draft.result;
    if (draft.lines.find(result.mainFile) == draft.lines.end()) draft.lines[result.mainFile];
    for (const auto& [path, lines] : draft.lines) {
        std::string text = JoinLines(lines);
        for (const std::string& encoding : draft.encodings) text = Encode(text, encoding);
        result.files[path] = text;
    }
    if (result.wantsError && !draft.lineGiven)
        reader.Fail("case " + name + " expects an error but not on which line");
    if (result.wantsError && result.errorFile.empty()) result.errorFile = result.mainFile;
    result.name = Identifier(reader.stem + (name.empty() ? "" : "_" + name));
    reader.cases.push_back(result);
}

void CloseRow(Reader& reader) {
    if (reader.inRow)
        Finish(reader, reader.current, reader.frame.result.name + "_row" + std::to_string(reader.rowCount));
    reader.inRow = false;
}

void CloseCase(Reader& reader) {
    CloseRow(reader);
    if (reader.inCase && !reader.hasRows) Finish(reader, reader.current, reader.current.result.name);
}

void BeginCase(Reader& reader, const std::string& name) {
    if (reader.hasRows && !reader.sharedRead) reader.Fail("rows stand before the first case");
    if (!reader.sharedRead) reader.shared = reader.current;
    reader.sharedRead = true;
    CloseCase(reader);
    reader.current = reader.shared;
    reader.current.openFile = reader.current.result.mainFile;
    reader.current.result.name = name;
    reader.current.result.place = reader.path + ":" + std::to_string(reader.number);
    reader.inCase = true;
    reader.hasRows = false;
    reader.rowCount = 0;
}

// Puts one more line of a row into its hole; lines after the first push the rest of the file down.
void Fill(Reader& reader, const std::string& hole, const std::string& text, bool first) {
    auto found = reader.current.holes.find(hole);
    if (found == reader.current.holes.end())
        reader.Fail("no line ';here" + (hole.empty() ? "" : " " + hole) + "' to fill");
    auto& [path, line] = found->second;
    auto& lines = reader.current.lines[path];
    if (!first) {
        std::map<int, std::string> moved;
        for (auto& [number, content] : lines) moved[number > line ? number + 1 : number] = content;
        lines.swap(moved);
        for (auto& [name, place] : reader.current.holes) {
            if (name != hole && place.first == path && place.second > line) ++place.second;
        }
        ++line;
    }
    if (first) reader.current.holeIndent = lines[line];
    lines[line] = reader.current.holeIndent + text;
    reader.rowHole = hole;
}

// Cuts ";name: value" into its parts; false for an ordinary comment. A blank behind the ";" makes a comment
// of anything, so that a misspelt directive does not pass for one.
bool CutDirective(const std::string& comment, std::string& name, std::string& value) {
    std::size_t end = 1;
    if (comment.compare(0, 3, ";=>") == 0) {
        end = 3;
    } else if (comment.compare(0, 2, ";+") == 0) {
        end = 2;
    } else {
        while (end < comment.size() &&
               (std::islower(static_cast<unsigned char>(comment[end])) != 0 || comment[end] == '-'))
            ++end;
    }
    name = comment.substr(1, end - 1);
    const bool colon = end < comment.size() && comment[end] == ':';
    const bool bare = name == "translate-only" || name == "sanitize" || name == "=>" || name == "+";
    if (name.empty() || !(colon || bare)) return false;
    value = comment.substr(end + (colon ? 1 : 0));
    if (!value.empty() && value[0] == ' ') value.erase(0, 1);
    return true;
}

std::size_t CommentStart(const std::string& line) {
    bool inString = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') inString = !inString;
        if (line[i] == ';' && !inString) return i;
    }
    return std::string::npos;
}

void BeginRow(Reader& reader, const std::string& text) {
    CloseRow(reader);
    if (!reader.hasRows) reader.frame = reader.current;
    reader.current = reader.frame;
    reader.hasRows = reader.inRow = reader.inCase = true;
    ++reader.rowCount;
    reader.current.result.place = reader.path + ":" + std::to_string(reader.number);
    Fill(reader, "", text, true);
    const auto& [path, line] = reader.current.holes[""];
    reader.current.rowLine = line;
    reader.current.result.errorFile = path;
}

void ExpectError(Reader& reader, const std::string& message, bool lexer, bool trailing) {
    Case& result = reader.current.result;
    result.wantsError = true;
    result.lexerError = lexer;
    result.error = WithNewlines(message);
    if (trailing) {
        result.errorLine = reader.number;
        result.errorFile = reader.current.openFile;
    } else if (reader.inRow && !reader.current.lineGiven) {
        result.errorLine = reader.current.rowLine;
    }
    reader.current.lineGiven = reader.current.lineGiven || trailing || reader.inRow;
}

// One line of a row, with the error that is expected there, if it names one.
void AddToRow(Reader& reader, const std::string& text, void (*add)(Reader&, const std::string&)) {
    const std::size_t start = CommentStart(text);
    std::string name, value;
    if (start == std::string::npos || !CutDirective(text.substr(start), name, value) ||
        (name != "error" && name != "lexer-error")) {
        return add(reader, text);
    }
    add(reader, text.substr(0, text.find_last_not_of(" \t", start - 1) + 1));
    ExpectError(reader, value, name == "lexer-error", false);
    reader.current.result.errorLine = reader.current.holes[reader.rowHole].second;
}

void ExpectLine(Reader& reader, const std::string& text) {
    const bool relative = !text.empty() && text[0] == '+';
    reader.current.result.errorLine = std::stoi(text) + (relative ? reader.current.rowLine : 0);
    reader.current.lineGiven = true;
}

void AddFragment(Reader& reader, const std::string& where, bool wanted, const std::string& text) {
    auto& fragments = reader.current.result.fragments;
    if (where == "lines" && reader.blockOpen && !fragments.empty()) {
        fragments.back().text.push_back(text);
    } else {
        fragments.push_back({where, wanted, {text}});
    }
}

using Handler = std::function<void(Reader&, const std::string&)>;

Handler Adds(const std::string& where, bool wanted) {
    return [=](Reader& reader, const std::string& text) {
        const bool verbatim = where == "cpp" || where == "header" || where == "lines";
        AddFragment(reader, where, wanted, verbatim ? text : WithNewlines(text));
    };
}

const std::map<std::string, Handler>& Directives() {
    static const std::map<std::string, Handler> table{
        {"case", BeginCase},
        {"row", [](Reader& r, const std::string& text) { AddToRow(r, text, BeginRow); }},
        {"fill",
         [](Reader& r, const std::string& text) {
             const std::size_t blank = text.find(' ');
             Fill(r, text.substr(0, blank), blank == std::string::npos ? "" : text.substr(blank + 1), true);
         }},
        {"+",
         [](Reader& r, const std::string& text) {
             AddToRow(r, text, [](Reader& r, const std::string& line) { Fill(r, r.rowHole, line, false); });
         }},
        {"file",
         [](Reader& r, const std::string& text) {
             r.current.openFile = text;
             r.current.lines[text];
         }},
        {"main",
         [](Reader& r, const std::string& text) { r.current.result.mainFile = r.current.openFile = text; }},
        {"flags", [](Reader& r, const std::string& text) { r.current.result.flags = Words(text); }},
        {"command", [](Reader& r, const std::string& text) { r.current.result.command = Words(text); }},
        {"modes", [](Reader& r, const std::string& text) { r.current.result.modes = Words(text); }},
        {"arguments", [](Reader& r, const std::string& text) { r.current.result.arguments = Words(text); }},
        {"encode", [](Reader& r, const std::string& text) { r.current.encodings = Words(text); }},
        {"stdin", [](Reader& r, const std::string& text) { r.current.result.input += text + "\n"; }},
        {"=>",
         [](Reader& r, const std::string& text) { r.current.result.output += WithNewlines(text) + "\n"; }},
        {"expect-output",
         [](Reader& r, const std::string& text) { r.current.result.output += WithNewlines(text) + "\n"; }},
        {"expect-exit",
         [](Reader& r, const std::string& text) { r.current.result.exitStatus = std::stoi(text); }},
        {"expect-error", [](Reader& r, const std::string& text) { ExpectError(r, text, false, false); }},
        {"error", [](Reader& r, const std::string& text) { ExpectError(r, text, false, false); }},
        {"lexer-error", [](Reader& r, const std::string& text) { ExpectError(r, text, true, false); }},
        {"stream-error",
         [](Reader& r, const std::string& text) {
             ExpectError(r, text, false, false);
             r.current.result.streamError = r.current.lineGiven = true;
         }},
        {"expect-line", ExpectLine},
        {"expect-file", [](Reader& r, const std::string& text) { r.current.result.errorFile = text; }},
        {"expect-cpp", Adds("cpp", true)},
        {"reject-cpp", Adds("cpp", false)},
        {"expect-header", Adds("header", true)},
        {"reject-header", Adds("header", false)},
        {"expect-lines", Adds("lines", true)},
        {"kvt-stdout", Adds("kvt-stdout", true)},
        {"reject-kvt-stdout", Adds("kvt-stdout", false)},
        {"kvt-stderr", Adds("kvt-stderr", true)},
        {"run-stderr", Adds("run-stderr", true)},
        {"translate-only", [](Reader& r, const std::string&) { r.current.result.translateOnly = true; }},
        {"sanitize", [](Reader& r, const std::string&) { r.current.result.sanitize = true; }},
    };
    return table;
}

void ReadLine(Reader& reader, const std::string& line) {
    const std::size_t start = CommentStart(line);
    const bool wholeLine = start != std::string::npos && line.find_first_not_of(" \t") == start;
    const std::string comment = start == std::string::npos ? "" : line.substr(start);
    std::string name, value, code = line;

    if (wholeLine && (comment == ";here" || comment.compare(0, 6, ";here ") == 0)) {
        const std::string hole = comment.size() > 6 ? comment.substr(6) : "";
        reader.current.holes[hole] = {reader.current.openFile, reader.number};
        code = line.substr(0, start);
    } else if (start != std::string::npos && CutDirective(comment, name, value)) {
        const auto handler = Directives().find(name);
        if (!wholeLine && (name == "error" || name == "lexer-error" || name == "expect-error")) {
            ExpectError(reader, value, name == "lexer-error", true);
        } else if (handler != Directives().end() && (wholeLine || name == "=>")) {
            handler->second(reader, value);
        } else if (wholeLine) {
            reader.Fail("unknown directive ';" + name + ":' (a comment begins with '; ')");
        }
        code = wholeLine ? "" : line.substr(0, line.find_last_not_of(" \t", start - 1) + 1);
        if (!wholeLine && handler == Directives().end()) code = line;
    } else if (reader.inRow && !wholeLine && line.find_first_not_of(" \t") != std::string::npos) {
        reader.Fail("code behind the rows of a case");
    }
    reader.blockOpen = name == "expect-lines";
    if (!code.empty() && !reader.inRow) reader.current.lines[reader.current.openFile][reader.number] = code;
}

}  // namespace

std::vector<Case> ReadCases(const std::string& path) {
    Reader reader;
    reader.path = path;
    reader.stem = std::filesystem::path(path).stem().string();
    reader.current.result.mainFile = reader.current.openFile = reader.stem + ".kvl";
    reader.current.result.place = path;
    std::istringstream text(ReadFile(path));
    for (std::string line; std::getline(text, line);) {
        ++reader.number;
        ReadLine(reader, line);
    }
    reader.inCase = true;  // a file without sections is one case
    CloseCase(reader);
    return reader.cases;
}
