// The lines of a source file, as the passes and everybody else read them. A file is read and cut once;
// its readers walk over the same lines.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/token_span.h"
#include "lexer/cut_file.h"

enum class Reading : unsigned char {
    Names,       // only lines that may declare something or name another file
    FirstPass,   // the same; wrong brackets and open strings end the run at their line
    SecondPass,  // all lines, those with nothing but a comment, too; reports like the first pass
    Uses,        // all lines with statements, no reports
};

// The statements of a line, windows on the tokens of its file.
class LineStatements {
public:
    class Iterator {
    public:
        Iterator(const Token* all, const CutStatement* statement) : tokens(all), at(statement) {}
        TokenSpan operator*() const { return {tokens + at->begin, tokens + at->end}; }
        Iterator& operator++() {
            ++at;
            return *this;
        }
        friend bool operator!=(Iterator a, Iterator b) { return a.at != b.at; }

    private:
        const Token* tokens;
        const CutStatement* at;
    };

    LineStatements() = default;
    LineStatements(const CutFile& file, std::size_t from, std::size_t to)
        : tokens(file.tokens.data()),
          first(file.statements.data() + from),
          last(file.statements.data() + to) {}

    std::size_t size() const { return static_cast<std::size_t>(last - first); }
    Iterator begin() const { return {tokens, first}; }
    Iterator end() const { return {tokens, last}; }

private:
    const Token* tokens = nullptr;
    const CutStatement *first = nullptr, *last = nullptr;
};

class SourceLines {
public:
    explicit SourceLines(Reading who) : reading(who) {}

    // False when the file cannot be read.
    bool Open(const std::string& name);

    // Goes to the next line of the kind that is read; false at the end of the file.
    bool Next();

    // The physical line on which the current one starts.
    int Line() const { return line.start; }
    // The number of the current line as the first pass counts; at the end of the file, that of the last.
    int Count() const { return line.count; }
    std::uint32_t Indent() const { return line.indent; }
    // The statements of the current line; valid until the next one is read.
    LineStatements Statements() const { return statements; }
    // True when inline C++ stood between the previous line and this one (or the end of the file).
    bool MetInlineCpp() const { return metInlineCpp; }
    // True when the file ended inside a block of inline C++, which started on Line().
    bool InlineCppOpen() const { return file->inlineOpen; }
    // With -c: the comments of the line and of those joined to it, ready for the output.
    const std::string& Comment() const;

    // Gets every line of inline C++ that reaches the output.
    std::function<void(const InlineLine&)> onInlineCpp;

private:
    Reading reading;
    std::string path;
    std::shared_ptr<CutFile> file;
    std::size_t next = 0;                            // index of the line after the current one
    std::size_t nextLexed = 0;                       // of the texts that verbose passes show
    CutLine line;                                    // the current one
    std::size_t statementsRead = 0, inlineRead = 0;  // of the file, up to the current line
    bool metInlineCpp = false;
    bool reports = false;  // there may be something to say
    LineStatements statements;

    // What is to be said before the next line is read.
    void Report();
    // Shows what was lexed for the line that comes next.
    void ShowLexed();
    // Ends the run when the trouble lies in that line.
    void ReportTrouble(const CutTrouble& trouble) const;
    bool IsWanted(const CutLine& entered) const;
    void Enter(const CutLine& entered);
};

// Cuts files on both cores, before they are opened one after the other.
void CutFiles(const std::vector<std::string>& paths);

// Frees what leads to the lines of a file, when nobody is reading it; its tokens stay. Who opens it all the same has it cut
// again, and the tokens of that are others.
void ForgetLines(const std::string& path);

// Frees all that was read of the files, tokens too, when nothing is asked of the program any more.
void ForgetTokens();

// All tokens of a file that has been read; none for other files.
TokenSpan TokensOf(const std::string& file);

// What stands for the text of such a file, where settings.record is there; 0 for other files.
std::uint64_t HashOfFile(const std::string& file);

// The file whose list the token stands in; empty when it is a copy or stands in none. Then its index there.
std::string FileWithToken(const Token* token, std::size_t& index);

// Tells whether two paths mean the same file, by their text.
std::string FileId(const std::string& path);
