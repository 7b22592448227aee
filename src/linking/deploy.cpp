#include "linking/deploy.h"

#include <algorithm>
#include <cstdio>

#include "driver/paths.h"
#include "driver/report.h"
#include "driver/settings.h"
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

// The folder of the current source file, without characters outside ASCII.
std::string CurrentFolder() {
    const std::string& file = settings.currentFile;
    if (file.find_first_of("/\\") == std::string::npos) return ".";
    std::string folder = FolderOf(file);
    const auto outside = [](char c) { return static_cast<signed char>(c) < 1; };
    folder.erase(std::remove_if(folder.begin(), folder.end(), outside), folder.end());
    return folder;
}

}  // namespace

void CopyUserlibDLLs(const std::string& outputPath) {
    if (symbols.userlibDLLs.empty()) return;
    VerboseNote("\nCopying userlib DLLs to output directory...");
    for (const UserlibDll& dll : symbols.userlibDLLs) CopyDll(dll.name, outputPath);
}

void AddLinkerFlag(const std::string& token) {
    const bool quoted = token.size() >= 2 && token[0] == '"';
    std::string flag = quoted ? token.substr(1, token.size() - 2) : token;
    if (flag == "-L.") flag = "-L\"" + CurrentFolder() + "\"";
    const std::size_t before = symbols.linkerFlags.size();
    AddOnce(symbols.linkerFlags, flag);
    if (symbols.linkerFlags.size() > before) Say("  - Adding linker flag: " + flag);
}
