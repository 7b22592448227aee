// What the compiler says: the mistake that ends a run, warnings and verbose notes.
#pragma once

#include <string>
#include <vector>

#include "base/diagnostic.h"
#include "base/token_span.h"
#include "base/wording.h"

struct ClassInfo;

// What a word that nobody knows is used as.
enum class Sought : unsigned char { Nothing, Value, Statement, Member, Type, Function, File };

// Another place that a mistake has to do with: where the name stands, from the line on; without a name the line's first
// word. Where a block begins there that is not closed, the word that would close it.
struct Elsewhere {
    std::string file;
    int line = 0;
    std::string name, message;
    std::string closer = {};
};
inline constexpr const char *declaredHere = "declared here", *openedHere = "opened here";

// A block that is open, which a report tells before its message, and the line of the current file where it starts.
struct UnclosedBlock {
    int line = 0;
    std::string report;
    std::string word;    // which opens it
    std::string closer;  // the word that is missing; empty where several could be
    std::string hint = {};
};

// Thrown where something is wrong. Whoever drives a run catches it.
struct Stop {
    // The tokens that it is about, and where they stand in a list, which may be gone since.
    struct Subject {
        const Token* at = nullptr;
        Tokens tokens;
        std::size_t from = 0, to = 0;  // bytes of a literal alone that are meant; all of it where both are 0
    };

    std::vector<korvel::Diagnostic> mistakes;
    std::string quoted;  // all of it as kvt says it
    bool onErrorStream = false;
    bool ofUnknown = false;    // see ReportUnknown
    bool isElsewhere = false;  // it is not about the statement under way
    Subject subject = {};      // of the last mistake; empty when nothing nearer than the statement is meant
    Sought sought = Sought::Nothing;   // the subject is a word that is not known
    const ClassInfo* owner = nullptr;  // and would be a member of this
    std::vector<Elsewhere> others = {};
    std::vector<UnclosedBlock> blocks = {};  // those before it are about them
};

// Does the work; a mistake in it that names nothing nearer is about the tokens.
template <class Work>
auto About(TokenSpan tokens, Work work) {
    try {
        return work();
    } catch (Stop& stop) {
        if (stop.subject.tokens.empty()) stop.subject = {tokens.first, tokens.Copy()};
        throw;
    }
}

// The same about the bytes [from, to) of a literal, for mistakes in it that are about all of it.
template <class Work>
auto AboutPart(TokenSpan literal, std::size_t from, std::size_t to, Work work) {
    try {
        return work();
    } catch (Stop& stop) {
        if (stop.subject.tokens.empty()) stop.subject = {literal.first, literal.Copy()};
        if (stop.subject.at == literal.first) {
            stop.subject.from = from;
            stop.subject.to = to;
        }
        throw;
    }
}

// Stops the run at the current line of the current file. Quoted are the open blocks, "Error: " + message, file and
// line. Very long words are cut.
[[noreturn]] void ReportFatal(const Wording& message, const std::vector<UnclosedBlock>& blocks = {});
// The same, about these tokens of the statement under way.
[[noreturn]] void ReportFatal(const Wording& message, TokenSpan about);
[[noreturn]] void ReportFatal(const Wording& message, TokenSpan about, const Elsewhere& other);
// The same about a word that is not known, and used in this way.
[[noreturn]] void ReportFatal(const Wording& message, TokenSpan about, Sought sought);
// The same where the blocks are the mistakes and the message only sums them up, with a heading above them.
[[noreturn]] void ReportOpenBlocks(const std::string& heading, const std::vector<UnclosedBlock>& blocks,
                                   const std::string& message);

// The same where something is not known that a declaration in a file that is read later could tell.
[[noreturn]] void ReportUnknown(const Wording& message, TokenSpan about, Sought sought = Sought::Nothing,
                                const ClassInfo* owner = nullptr);
// The same for a word at the start of a statement; kvt adds the advice, others find better one.
[[noreturn]] void ReportUnknownStatement(const std::string& message, TokenSpan about,
                                         const std::string& advice);

// The same about a file that is missing; `lookedFor` tells where it was looked for, to those who ask for hints.
[[noreturn]] void ReportMissing(const std::string& message, const std::string& lookedFor,
                                TokenSpan about = {});

// Stops the run with a mistake for which these lines are quoted on the error stream.
[[noreturn]] void FailOnErrorStream(const korvel::Diagnostic& mistake, const std::string& lines);
// The same for one at the current line of the current file: its message is the lines, less "ERROR: ". It is about these tokens.
[[noreturn]] void FailOnErrorStream(const std::string& lines, TokenSpan about);

// Ends the process for want of memory, with a report that needs none.
[[noreturn]] void ReportNoMemory();

// Something odd, and the tokens that it is about; the statement under way, where there are none.
struct Slip {
    korvel::Diagnostic warning;
    Stop::Subject about;
};

// With -warn, notes what is odd about the current line of the current file under a name (warnings/table.h).
void Warn(const char* name, const std::string& message, const Stop::Subject& about = {});
// The same with what is said of it elsewhere.
void PutSlip(Slip slip);
// What has been noted; hands it over.
const std::vector<Slip>& NotedSlips();
std::vector<Slip> TakeSlips();
// Says a warning; the run goes on.
void TellWarning(const korvel::Diagnostic& warning);

// Says "Warning: " + message, behind the indentation, about what concerns the program as a whole. The hint is not printed.
void WarnOfProgram(const std::string& message, const std::string& indentation = {},
                   const std::string& hint = {});

// Whether nothing is printed.
bool IsSilent();

// Prints line + end of line on standard output in verbose mode only.
void VerboseNote(const std::string& line);
// The same for what concerns the compiler rather than the program: "[DEBUG] " + message.
void DebugLog(const std::string& message);

// Says line + end of line on standard output, always: at once, or while the program is gone through, at its place
// in the journal.
void Say(const std::string& line);
// The same with finished lines, also on the error stream.
void SayLines(const std::string& lines, bool onErrorStream);
// Prints finished lines at once.
void SayText(const std::string& lines, bool onErrorStream);

// Prints what kvt says of a mistake, behind all that has been said.
void SayQuoted(const Stop& stop);

// While one of these lives nothing is printed: warnings go to the list, all else is dropped.
class Silence {
public:
    explicit Silence(std::vector<korvel::Diagnostic>& warnings);
    ~Silence();
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
};
