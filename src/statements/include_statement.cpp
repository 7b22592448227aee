#include "statements/include_statement.h"

#include <algorithm>
#include <filesystem>
#include <unordered_set>

#include "build/dependency_manifest.h"
#include "driver/paths.h"
#include "driver/report.h"
#include "driver/run.h"
#include "driver/settings.h"
#include "driver/utf8.h"
#include "expressions/expression.h"
#include "lexer/source_reader.h"
#include "statements/first_mistake.h"
#include "statements/program.h"
#include "statements/translate.h"
#include "statements/words.h"
#include "symbols/name_scan.h"

namespace fs = std::filesystem;

IncludeName SplitIncludeName(const std::string& name) {
    IncludeName split;
    split.name = name;
    std::replace(split.name.begin(), split.name.end(), '\\', '/');
    split.folder = FolderOf(split.name);
    split.file = StripFolder(split.name);
    return split;
}

static std::unordered_set<std::string> madeFolders;  // in the output folder
static const PartOfRun partOfRun(madeFolders);

std::string IncludeOutputFolder(const IncludeName& name) {
    if (name.folder.empty()) return settings.outputPath;
    std::string folder = settings.outputPath + "/" + name.folder;
    if (settings.checkOnly || !madeFolders.insert(folder).second) return folder;
    std::error_code error;
    fs::create_directories(PathOf(folder), error);
    if (!fs::is_directory(PathOf(folder), error))
        ReportFatal("Cannot create include directory in output path");
    return folder;
}

std::string IncludeSourcePath(const IncludeName& name) { return PathOfInclude(name.name); }

// The path of the outputs without extension, relative to the top output folder.
static std::string StemOf(const IncludeName& name) {
    return (name.folder.empty() ? "" : name.folder + "/") + StripExtension(name.file);
}

void NoteInclude(const IncludeName& name) {
    AddOnce(symbols.includeHeaders, StemOf(name) + ".h");
    if (settings.quickBuild) AddDependency(IncludeSourcePath(name));
}

bool IsHeaderOnly(const std::string& sourcePath) {
    std::string folder = FolderOf(sourcePath);
    std::size_t dot = folder.rfind('.');
    return dot != std::string::npos && folder.substr(dot + 1) == "kvh";
}

namespace {

void EmitIncludeLine(State& state, const std::string& stem, const std::string& source) {
    BeginPiece(*state.out, Piece::Kind::Include).file = source;
    if (!IsHeaderOnly(source))
        EmitLine(state, "#include \"" + PathSeenFrom(*state.out, stem + ".cpp") + "\"");
    BeginPiece(*state.out, Piece::Kind::Lines);
}

// In a routine:
//     #include "part.cpp"
void IncludePart(State& state, const IncludeName& name, const std::string& source) {
    const std::string folder = IncludeOutputFolder(name);
    NoteInclude(name);
    TranslatePart(state, source, folder);
    // It may hold nothing, and C++11 wants a statement behind a label.
    if (InnermostIs(state, BlockKind::Select)) EmitLine(state, ";");
}

}  // namespace

// Include "folder/file.kvl"
//     #include "folder/file.cpp"
void TranslateInclude(State& state, TokenSpan tokens) {
    if (tokens[1].empty() || tokens[1].front() != '"') return;
    RefuseMore(tokens, 2);
    std::string quoted = tokens[1];
    quoted.erase(std::remove(quoted.begin(), quoted.end(), '"'), quoted.end());
    if (symbols.importedNames.count(quoted) != 0) return;
    IncludeName name = SplitIncludeName(quoted);
    std::string source = IncludeSourcePath(name);
    const bool inRoutine = InRoutine(state);
    if (inRoutine ? !IsPart(source) || IsHeaderOnly(source) : state.inType)
        ReportFatal("'Include' can only be used at the top level (not inside a Function, Method or Type)");
    const bool searching = SearchesIn(source);
    if (inRoutine) return IncludePart(state, name, source);
    // Met before, maybe under another spelling of its path: the outputs keep their first one.
    if (FileOutput* met = FindOutput(source)) {
        met->metAgain = true;
        return EmitIncludeLine(state, StripExtension(met->header), met->source);
    }
    std::string folder = IncludeOutputFolder(name);
    if (!IsFile(source)) ReportFatal("Include file does not exist.");
    EmitIncludeLine(state, StemOf(name), source);
    NoteInclude(name);
    // A lenient run leaves it to the strict one.
    if (!lenient || searching) TranslateFile(source, folder, false, false);
}
