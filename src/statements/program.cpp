#include "statements/program.h"

#include <unordered_map>

#include "analysis/reach.h"
#include "base/journal.h"
#include "base/paths.h"
#include "base/report.h"
#include "base/run.h"
#include "base/settings.h"
#include "lexer/source_lines.h"
#include "prelude/header.h"
#include "reuse/reuse.h"
#include "statements/array_results.h"
#include "symbols/program_files.h"

Program program;

namespace {

std::unordered_map<std::string, std::string> outputOwners;  // outputs without extension -> their source
std::unordered_map<std::string, std::string> guardOwners;   // header guard -> its file
const PartOfRun partOfRun(program, outputOwners, guardOwners);

// The order in which the main header includes the others.
void ListHeaders() {
    std::unordered_map<std::string, FileOutput*> byHeader;
    for (FileOutput& file : program.files) byHeader.emplace(file.header, &file);
    for (const std::string& header : symbols.includeHeaders) {
        auto found = byHeader.find(header);
        if (found != byHeader.end() && !found->second->isMain) program.headers.push_back(found->second);
    }
    program.headers.push_back(program.main);
}

}  // namespace

FileOutput& BeginOutput(SourceFile& file) {
    program.files.push_back(file.output);
    file.begun = &program.files.back();
    if (file.begun->isMain) program.main = file.begun;
    return *file.begun;
}

void ClaimOutputs(const FileOutput& out) {
    const std::string& owner =
        outputOwners.emplace(FileId(out.folder + "/" + out.base), out.source).first->second;
    if (FileId(owner) == FileId(out.source)) return;
    ReportFatal("'" + StripFolder(owner) + "' and '" + StripFolder(out.source) +
                "' would both be translated to '" + out.base + ".cpp'. Rename one of them");
}

std::string ClaimGuard(const FileOutput& out) {
    // Files of one base name in different folders need different guards; all others keep the plain one.
    const std::string folder = BaseNameIsShared(out.source) ? FolderOf(out.header) : "";
    const std::string wanted = HeaderGuard(folder.empty() ? out.base : folder + "/" + out.base);
    const std::string id = FileId(out.source);
    std::string guard = wanted;
    for (int number = 2; guardOwners.emplace(guard, id).first->second != id; ++number)
        guard = wanted + "_" + std::to_string(number);
    return guard;
}

void NoteInclude(const FileOutput& out) {
    AddOnce(symbols.includeHeaders, out.header);
    AddOnce(symbols.includedSources, out.source);
}

void SayHeaderOpened(const FileOutput& out) {
    VerboseNote("Header opened: " + HeaderPath(out) + " (will write globals/constants during compilation)");
}

void NoteFinished(const FileOutput& out) { NoteFile(out.source); }

void FinishProgram() {
    CheckAwaitedResults();
    ListHeaders();
    OrderClasses(program);
    OrderGlobals(program);
    if (!settings.units) OrderRoutines(program);  // a header has all class bodies otherwise
    CompleteHeaders(program);
    if (settings.units) RecordRoutines();
    if (settings.units) ForgetGraphNodes();  // the header of the units takes as much
}
