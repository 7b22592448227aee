#include "statements/program.h"

#include <filesystem>
#include <unordered_map>
#include <unordered_set>

#include "base/journal.h"
#include "base/parallel.h"
#include "base/paths.h"
#include "base/report.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/utf8.h"
#include "build/dependency_manifest.h"
#include "lexer/source_lines.h"
#include "outputs/output_files.h"
#include "prelude/cpp_file.h"
#include "prelude/header.h"
#include "statements/array_results.h"
#include "symbols/program_files.h"

Program program;

namespace {

std::unordered_map<std::string, std::string> outputOwners;  // outputs without extension -> their source
std::unordered_map<std::string, std::string> guardOwners;   // header guard -> its file
const PartOfRun partOfRun(program, outputOwners, guardOwners);

// Writes the header and the .cpp of a file; returns a message when that fails.
std::string WriteOutputs(const FileOutput& out) {
    if (!WriteOutput(HeaderPath(out), HeaderText(out, symbols.includeHeaders)))
        return "Cannot create header file: " + HeaderPath(out);
    if (out.headerOnly)
        DropOutput(CppPath(out));
    else if (!WriteOutput(CppPath(out), CppText(out)))
        return "Cannot write modified cpp file: " + CppPath(out);
    return {};
}

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
    if (settings.quickBuild) AddDependency(out.source);
}

void SayHeaderOpened(const FileOutput& out) {
    VerboseNote("Header opened: " + HeaderPath(out) + " (will write globals/constants during compilation)");
}

void NoteFinished(const FileOutput& out) { NoteFile(out.source); }

void WriteFinished(const std::vector<std::string>& sources) {
    for (const std::string& source : sources) WriteOutputs(*FindSourceFile(source)->begun);
}

namespace {

// The second thread has to start before it can help.
constexpr std::size_t filesWorthAThread = 8;

// Two names of one folder may make two outputs one file, and then the later one counts.
bool FoldersAreDistinct() {
    std::unordered_set<std::string> named, real;
    for (const FileOutput& file : program.files) {
        std::error_code failed;
        if (named.insert(file.folder).second)
            real.insert(TextOf(std::filesystem::canonical(PathOf(file.folder), failed)));
    }
    return named.size() == real.size();
}

void WriteAll(const std::vector<const FileOutput*>& files) {
    std::vector<std::string> failures(files.size());
    const auto write = [&](std::size_t i) { failures[i] = WriteOutputs(*files[i]); };
    if (files.size() >= filesWorthAThread && FoldersAreDistinct()) {
        InParallel(files.size(), write);
    } else {
        for (std::size_t i = 0; i < files.size() && (i == 0 || failures[i - 1].empty()); ++i) write(i);
    }
    for (const std::string& failure : failures)
        if (!failure.empty()) ReportFatal(failure);
}

}  // namespace

void FinishProgram() {
    CheckAwaitedResults();
    ListHeaders();
    OrderClasses(program);
    OrderGlobals(program);
    OrderRoutines(program);
    CompleteHeaders(program);
}

void WriteProgram() {
    std::vector<const FileOutput*> included;
    for (const FileOutput& file : program.files)
        if (!file.isMain) included.push_back(&file);
    WriteAll(included);
    WriteAll({program.main});
}
