#include "statements/source_files.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <unordered_map>
#include <unordered_set>

#include "base/paths.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "base/utf8.h"
#include "collect/element_circles.h"
#include "collect/settle.h"
#include "collect/value_circles.h"
#include "expressions/constants.h"
#include "lexer/source_lines.h"
#include "outputs/output_files.h"
#include "prelude/header.h"
#include "statements/output_places.h"
#include "statements/program.h"
#include "symbols/file_places.h"
#include "symbols/mistakes.h"
#include "symbols/modules.h"
#include "symbols/program_files.h"

namespace fs = std::filesystem;

namespace {

std::deque<SourceFile> files;
std::unordered_map<std::string, SourceFile*> byPath;  // by their ids, see FileId
std::vector<SourceFile*> collected;
std::unordered_set<std::string> madeFolders;  // in the output folder
const PartOfRun partOfRun(files, byPath, collected, madeFolders);

// Its folder in the output folder, which is made when it does not exist.
std::string OutputFolderOf(const std::string& name) {
    std::string folder = FolderOf(name);
    folder.erase(0, folder.find_first_not_of('/'));  // C++ would look there from the root on
    if (folder.empty()) return settings.outputPath;
    const std::string path = settings.outputPath + "/" + folder;
    if (settings.checkOnly || !madeFolders.insert(path).second) return path;
    std::error_code error;
    fs::create_directories(PathOf(path), error);
    if (!fs::is_directory(PathOf(path), error)) ReportFatal("Cannot create include directory in output path");
    return path;
}

SourceFile& NewSourceFile(const std::string& path, const std::string& folder, bool isMain) {
    SourceFile& file = files.emplace_back();
    file.declarations.source = path;
    FileOutput& out = file.output;
    out.source = path;
    out.folder = folder;
    out.isMain = isMain;
    out.base = StripExtension(StripFolder(path));
    if (isMain && settings.debugMode) out.base += ".debug";
    out.header = HeaderPath(out).substr(settings.outputPath.size() + 1);
    out.isModule = IsModule(path);
    out.headerOnly = IsHeaderOnly(path);
    ClaimOutputs(out);
    CheckOutputPlaces(out);
    byPath[FileId(path)] = &file;
    return file;
}

// The headers that the main header includes; parts come with the routines that include them.
void NoteIncludes(const Declarations& declarations) {
    for (const std::string& name : declarations.includes) {
        if (symbols.importedNames.count(name) != 0) continue;
        const SourceFile* file = FindSourceFile(PathOfInclude(name));
        if (file != nullptr && !IsPart(file->output.source)) NoteInclude(file->output);
    }
}

// What is said of an included file where the first pass meets it, before its statements.
void SayCollected(const SourceFile& file) {
    if (file.output.isMain) return;
    const TellOnly first(Telling::First);
    if (!IsPart(file.output.source)) SayHeaderOpened(file.output);
    SayNames(file.declarations);
}

bool MayBeGenerated(const std::string& path) {
    const std::string extension = path.substr(StripExtension(path).size());
    return extension == ".cpp" || extension == ".h";
}

// An Include of a file that the previous build wrote finds nothing.
void DropGeneratedSources() {
    for (const std::string& source : symbols.sourceFiles)
        if (MayBeGenerated(source)) DeletePutOff(source);
}

bool FollowInclude(const std::string& name);

// False when nothing more can be collected.
bool Collect(SourceFile& file) {
    const OpenChapter chapter(file.declared);
    try {
        if (!CollectDeclarations(file.declarations, FollowInclude)) return false;
        file.output.guard = ClaimGuard(file.output);
        SayCollected(file);
        if (!file.output.isMain) NoteIncludes(file.declarations);
        collected.push_back(&file);
        return true;
    } catch (const Stop& stop) {
        KeepMistake(stop, {});
        return false;
    }
}

void SayDuplicate(const std::string& name) { VerboseNote("  - Skipping duplicate include: " + name); }

// The source that an Include names; null when it has been met before, maybe under another spelling of its path.
SourceFile* MeetInclude(std::string name) {
    if (symbols.processedNames.count(name) != 0) return nullptr;
    const std::string path = PathOfInclude(name);
    if (FindSourceFile(path) != nullptr) return nullptr;
    std::replace(name.begin(), name.end(), '\\', '/');
    const std::string folder = OutputFolderOf(name);
    if (!IsFile(path)) {
        RefuseNoFile(path);
        const std::string modules = ModulesLike(name);
        const std::vector<std::string> places = PlacesOfInclude(name);
        symbols.missingFiles.insert(symbols.missingFiles.end(), places.begin(), places.end());
        ReportMissing("Include file does not exist." +
                          (modules.empty() ? "" : " The modules of the language are " + modules),
                      LookedFor(places), Tokens{"\"" + name + "\""});
    }
    const TellOnly first(Telling::First);
    Say(path);
    VerboseNote("  - Processing include: " + path);
    return &NewSourceFile(path, folder, false);
}

bool FollowInclude(const std::string& name) {
    SourceFile* file = MeetInclude(name);
    const TellOnly when(file != nullptr ? Telling::Second : Telling::Both);
    SayDuplicate(name);
    if (file == nullptr) return true;
    symbols.processedNames.insert(name);
    const TellOnly first(Telling::First);
    NoteChapter(file->declared, Telling::First);
    if (!IsPart(file->output.source)) NoteChapter(file->translated, Telling::First);
    const std::string including = settings.currentFile;
    const int line = settings.currentLine;
    const bool goesOn = Collect(*file);
    settings.currentFile = including;
    settings.currentLine = line;
    return goesOn;
}

}  // namespace

const std::vector<SourceFile*>& CollectedFiles() { return collected; }

SourceFile* FindSourceFile(const std::string& path) {
    const auto found = byPath.find(FileId(path));
    return found == byPath.end() ? nullptr : found->second;
}

bool IsHeaderOnly(const std::string& sourcePath) {
    const std::string folder = FolderOf(sourcePath);
    const std::size_t dot = folder.rfind('.');
    return dot != std::string::npos && folder.substr(dot + 1) == "kvh";
}

void CollectProgram(const std::string& mainSource) {
    DropGeneratedSources();
    SourceFile& main = NewSourceFile(mainSource, settings.outputPath, true);
    NoteChapter(main.declared, Telling::First);
    NoteMistakesOf(main.declared, Telling::Second);
    NoteChapter(main.translated, Telling::Second);
    symbols.complete = Collect(main);
}

void SettleProgram() {
    for (SourceFile* file : collected) {
        const OpenChapter chapter(file->declared);
        if (file->output.isMain) {
            CheckElementCycles();
            CheckValueCircles();
        }
        SettleRoutines(file->declarations);
        SettleTypes(file->declarations);
    }
    if (!symbols.complete) SettleLeftTypes();
    for (const SourceFile* file : collected)
        for (const std::string& name : file->declarations.constNames) SettleConstant(name);
}
