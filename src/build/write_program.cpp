#include "build/write_program.h"

#include <filesystem>
#include <unordered_set>

#include "base/parallel.h"
#include "base/report.h"
#include "base/settings.h"
#include "base/utf8.h"
#include "lexer/source_lines.h"
#include "outputs/output_files.h"
#include "prelude/cpp_file.h"
#include "prelude/header.h"
#include "prelude/units.h"
#include "reuse/reuse.h"
#include "statements/program.h"

namespace {

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

// Writes files on both cores, some hundreds at a time.
class BatchWriter {
public:
    void Add(ProgramFile&& file) {
        AddOnce(symbols.generatedFiles, file.path);
        if (file.stays) return static_cast<void>(TakeOver(file.path));
        if (!ReserveOutput(file.path)) Fail(file.path);
        files.push_back(std::move(file));
        if (files.size() == filesOfBatch) Write();
    }

    void Write() {
        std::vector<char> failed(files.size());
        InParallel(files.size(), [&](std::size_t i) {
            if (!WriteOutput(files[i].path, files[i].text)) failed[i] = 1;
        });
        for (std::size_t i = 0; i < files.size(); ++i)
            if (failed[i] != 0) Fail(files[i].path);
        files.clear();
    }

private:
    static constexpr std::size_t filesOfBatch = 500;
    std::vector<ProgramFile> files;

    [[noreturn]] static void Fail(const std::string& path) {
        ReportFatal("Cannot write modified cpp file: " + path);
    }
};

void WriteUnits() {
    if (!UnitsStayInPlace(program)) throw StaleRecord();
    DropRecordBefore();
    std::error_code failed;
    if (!settings.checkOnly)
        std::filesystem::create_directories(PathOf(program.main->folder + "/" + folderOfUnits), failed);
    BatchWriter writer;
    MakeUnits(program, [&writer](ProgramFile&& file) { writer.Add(std::move(file)); });
    writer.Write();
}

}  // namespace

void WriteFinished(const std::vector<std::string>& sources) {
    if (settings.units) return;
    for (const std::string& source : sources) WriteOutputs(*FindSourceFile(source)->begun);
}

void WriteProgram() {
    ForgetTokens();  // their room is that of the texts
    if (settings.units) return WriteUnits();
    std::vector<const FileOutput*> included;
    for (const FileOutput& file : program.files)
        if (!file.isMain) included.push_back(&file);
    WriteAll(included);
    WriteAll({program.main});
}
