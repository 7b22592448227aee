#include "linking/library_places.h"

#include <unordered_set>

#include "base/paths.h"
#include "base/places.h"
#include "base/run.h"
#include "base/settings.h"
#include "lexer/lexer.h"
#include "linking/linker_flags.h"
#include "symbols/program_files.h"
#include "symbols/symbols.h"

namespace {

std::unordered_set<std::string>
    outputs;  // their places, in lower case: not all file systems tell letters apart
const PartOfRun partOfRun(outputs);

void NoteOutputs(const std::string& stem, std::initializer_list<const char*> extensions) {
    for (const char* extension : extensions) outputs.insert(Lower(PlaceOf(stem + extension)));
}

// Of this run, of one in the other mode, and what the user's compiler makes of them.
void NoteAllOutputs() {
    const std::string program = StripExtension(settings.mainSource);
    NoteOutputs(program, {"", ".exe", ".linkflags"});
    NoteOutputs(settings.outputPath + "/" + StripFolder(program),
                {"", ".exe", ".h", ".cpp", ".debug.h", ".debug.cpp"});
    for (std::size_t i = 1; i < symbols.sourceFiles.size(); ++i) {
        const std::string name = symbols.sourceFiles[i].substr(settings.sourceFolder.size());
        NoteOutputs(settings.outputPath + FolderOf(name) + "/" + StripExtension(StripFolder(name)),
                    {".h", ".cpp"});
    }
}

// What is remembered from one build to the next begins with a dot and the name of the program.
bool IsRecord(const std::string& name) {
    const std::string start = "." + StripFolder(StripExtension(settings.mainSource)) + ".";
    return Lower(StripFolder(name)).compare(0, start.size(), Lower(start)) == 0;
}

}  // namespace

std::string LibraryObstacle(const std::string& name) {
    const std::string target = settings.outputPath + "/" + name;
    if (IsSource(target)) return "would be copied over a source of this program";
    if (outputs.empty()) NoteAllOutputs();
    if (IsRecord(name) || outputs.count(Lower(PlaceOf(target))) != 0)
        return "would be copied over an output of this program";
    if (LeadsOutOf(settings.outputPath, FolderOf(target)))
        return "would be copied out of the output folder, through a link to a folder";
    return {};
}
