// Lines that name other files: Include, Import, Linker.
#include "driver/paths.h"
#include "driver/report.h"
#include "driver/settings.h"
#include "lexer/source_reader.h"
#include "linking/linker_flags.h"
#include "linking/userlib_reader.h"
#include "statements/translate.h"
#include "symbols/first_pass_state.h"
#include "symbols/source_lines.h"

namespace {

bool IsProcessed(const std::string& name) { return symbols.processedNames.count(name) != 0; }

void SkipDuplicate(const std::string& name) { VerboseNote("  - Skipping duplicate include: " + name); }

}  // namespace

void CollectImport(FirstPass&, TokenSpan tokens) {
    const std::string name(Unquoted(tokens[1]));
    if (IsProcessed(name)) {
        VerboseNote("  - Skipping duplicate import: " + name);
        return;
    }
    VerboseNote("  - Importing userlib: " + name);
    ImportUserlib(InstallationPath("userlibs/" + name));
    symbols.processedNames.insert(name);
    symbols.importedNames.insert(name);
}

void CollectLinker(FirstPass&, TokenSpan tokens) { AddLinkerFlag(tokens[1]); }

void CollectInclude(FirstPass& pass, TokenSpan tokens) {
    if (!IsQuoted(tokens[1])) return;
    const std::string quoted(Unquoted(tokens[1]));
    pass.out.includes.push_back(quoted);
    if (IsProcessed(quoted)) return SkipDuplicate(quoted);
    const IncludeName name = SplitIncludeName(quoted);
    const std::string path = IncludeSourcePath(name);
    // The same file under another spelling of its path.
    if (symbols.includedFiles.count(FileId(path)) != 0) return SkipDuplicate(quoted);
    const std::string folder = IncludeOutputFolder(name);
    if (!IsFile(path)) {
        RefuseNoFile(path);
        ReportFatal("Include file does not exist.");
    }
    symbols.includedFiles.insert(FileId(path));
    Say(path);
    VerboseNote("  - Processing include: " + path);
    const std::string file = settings.currentFile;
    const int line = settings.currentLine;
    TranslateFile(path, folder, false, true);
    settings.currentFile = file;
    settings.currentLine = line;
    symbols.processedNames.insert(quoted);
}
