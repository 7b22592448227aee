// The texts that are being edited, and what the compiler knows of the programs that they belong to.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "library/korvel.h"
#include "lsp/json.h"
#include "lsp/positions.h"
#include "lsp/services.h"

namespace lsp {

struct Document {
    std::string uri;
    Json version;
    Lines lines;
};

struct Program {
    std::string main;
    korvel::Inspection inspection;
};

// A place in a program that a client asks about, as the compiler counts.
struct Spot {
    const Program* program = nullptr;
    std::string file;  // as the program spells it
    int line = 0, column = 0;
    std::string_view before, behind;  // what stands in the line, up to the place and from there on
};

class Workspace {
public:
    const Services& services;
    std::vector<std::string> roots;  // folders in which programs are looked for
    bool takesSnippets = false;      // the client knows texts with places to be filled

    explicit Workspace(const Services& given) : services(given) {}

    void Open(const Json& document);
    // Changes of parts of the text, one after the other, or all of it at once.
    void Change(const Json& document, const Json& changes);
    void Close(const std::string& uri);
    // Files may have changed.
    void Forget();

    // The programs of all open documents, each once.
    std::vector<const Program*> OpenPrograms();
    // The same, and others near the file that may have it as a part.
    std::vector<const Program*> ProgramsNear(const std::string& path);
    // What the other programs in the folders declare.
    const std::vector<korvel::Symbol>& SymbolsElsewhere();
    const std::map<std::string, Document>& Documents() const { return documents; }
    // The program that the file is a part of, as it is now.
    const Program& ProgramOf(const std::string& path);
    const Lines& LinesOf(const std::string& path);
    std::string UriOf(const std::string& path) const;

    Spot SpotOf(const Json& params);
    Json RangeOf(const korvel::Range& range);
    Json LocationOf(const korvel::Range& range);
    // What a request to the compiler says of a program, the texts included.
    korvel::Request RequestFor(const std::string& main) const;

private:
    // A file that is not being edited.
    struct ReadFile {
        Lines lines;
        std::filesystem::file_time_type time;
    };
    std::map<std::string, Document> documents;  // by path
    std::map<std::string, std::string> mains;   // of files that have been asked about
    std::set<std::string> orphans;              // those of them that no program has
    std::map<std::string, Program> programs;    // by main file
    std::map<std::string, ReadFile> files;
    std::vector<korvel::Symbol> elsewhere;
    bool knowsElsewhere = false;

    // What a change of texts may have made wrong.
    void ForgetTexts();
    const Program& ProgramWith(const std::string& main);
    // Where mistakes keep the compiler from most of what it could know, and it knows what to write in their place.
    void LookPastMistakes(Program& program);
    void MendIn(korvel::Request& request, const korvel::Fix& fix);
    const std::string& MainOf(const std::string& path);
    std::string FindMain(const std::string& path);
    // The sources near the file that are programs and name it.
    std::vector<std::string> MainsNear(const std::string& path);
};

// The file of a program that the path means, as the program spells it.
std::string SpellingOf(const Program& program, const std::string& path);

// What the name at the spot means; null without one.
const korvel::Symbol* SymbolAt(const Spot& spot);

bool IsOfWord(char c);
// The word in which the spot is, or which it follows.
std::string WordAt(const Spot& spot);

}  // namespace lsp
