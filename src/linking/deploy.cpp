#include "linking/deploy.h"

#include <cstdio>

#include "driver/report.h"
#include "lexer/source_reader.h"
#include "symbols/symbols.h"

namespace {

// Read whole before the destination is opened: with the userlibs folder as output both are one file.
void CopyDll(const std::string& name, const std::string& outputPath) {
    std::string content;
    if (!ReadFile("userlibs/" + name, content)) {
        Say("  Warning: DLL not found in userlibs/: " + name);
        return;
    }
    const std::string target = outputPath + "/" + name;
    std::FILE* file = std::fopen(target.c_str(), "wb");
    const bool written = file && std::fwrite(content.data(), 1, content.size(), file) == content.size();
    if (!file || std::fclose(file) != 0 || !written) {
        ReportFatal("Cannot write DLL to output directory: " + target);
    }
    VerboseNote("  Copied: " + name + " -> " + outputPath + "/");
}

}  // namespace

void CopyUserlibDLLs(const std::string& outputPath) {
    if (symbols.userlibDLLs.empty()) return;
    VerboseNote("\nCopying userlib DLLs to output directory...");
    for (const UserlibDll& dll : symbols.userlibDLLs) CopyDll(dll.name, outputPath);
}
