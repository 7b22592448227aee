#include "statements/program.h"

#include <fstream>
#include <unordered_map>

#include "driver/report.h"
#include "prelude/cpp_file.h"
#include "prelude/header.h"

Program program;

namespace {

std::unordered_map<std::string, FileOutput*> bySource;
std::deque<FileOutput> lenientOutputs;  // kept for the run, never written

void WriteFile(const std::string& path, const std::string& text, const std::string& failure) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (!file) ReportFatal(failure);
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

void ResetProgram() {
    program = Program();
    bySource.clear();
    lenientOutputs.clear();
}

FileOutput* FindOutput(const std::string& source) {
    auto found = bySource.find(source);
    return found == bySource.end() ? nullptr : found->second;
}

FileOutput& NewOutput(const std::string& source, bool lenientRun) {
    std::deque<FileOutput>& outputs = lenientRun ? lenientOutputs : program.files;
    outputs.emplace_back();
    outputs.back().source = source;
    if (!lenientRun) bySource[source] = &outputs.back();
    return outputs.back();
}

void WriteOutputs(const FileOutput& out) {
    WriteFile(HeaderPath(out), HeaderText(out, symbols.includeHeaders), "Cannot create header file: " + HeaderPath(out));
    if (!out.headerOnly)
        WriteFile(CppPath(out), CppText(out), "Cannot write modified cpp file: " + CppPath(out));
}

void FinishProgram() {
    ListHeaders();
    OrderClasses(program);
    OrderGlobals(program);
    OrderRoutines(program);
    CompleteHeaders(program);
    for (const FileOutput& file : program.files) WriteOutputs(file);
}
