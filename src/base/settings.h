// The settings of one run, set by the command line and read everywhere.
#pragma once

#include <string>

struct Settings {
    std::string mainSource;       // -s, as given
    std::string sourceFolder;     // folder part of mainSource, "." when it has none
    std::string outputPath;       // -o
    std::string installation;     // folder of config/ and userlibs/; empty for the working directory
    bool traceMode = false;       // -t: source lines ride along as C++ comments
    bool outputComments = false;  // -c: the user's comments reach the output
    bool verbose = false;         // -v
    bool debugMode = false;       // -d, --debug; forces safeMode
    bool safeMode = false;        // -safe
    bool quickBuild = false;      // -quick
    bool fastMode = false;        // -fast: the generated program runs faster and reads less plainly
    bool units = false;           // -units: with -fast, a program that can comes as several translation units
    int unitsFrom = 0;            // ... if it has as many lines
    std::string record;           // where it is kept what the files of such a program came to; empty: nowhere
    std::string recordKey;        // ... by whom
    int recordFrom = 0;           // ... if it has as many lines
    bool lineMarks = false;       // #line directives lead back to the source, and failures tell their place
    bool checkOnly = false;       // -check: nothing is written or deleted
    bool columns = false;         // it is found out which words a mistake is about
    bool uses = false;            // it is noted what names mean where they stand (symbols/uses.h)
    bool warnings = false;        // -warn: what compiles but is hardly meant is said

    // Where translation stands; shown by ReportFatal.
    std::string currentFile;
    int currentLine = 0;
};

// Written by the command line (the flags) and by the translator (file and line).
extern Settings settings;

// While one lives the place is another one.
class AtPlace {
public:
    AtPlace(const std::string& file, int line)
        : fileBefore(settings.currentFile), lineBefore(settings.currentLine) {
        settings.currentFile = file;
        settings.currentLine = line;
    }
    ~AtPlace() {
        settings.currentFile = fileBefore;
        settings.currentLine = lineBefore;
    }
    AtPlace(const AtPlace&) = delete;
    AtPlace& operator=(const AtPlace&) = delete;

private:
    std::string fileBefore;
    int lineBefore;
};

// The path of a file of the installation.
std::string InstallationPath(const std::string& name);
