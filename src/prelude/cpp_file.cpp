#include "prelude/cpp_file.h"

#include <algorithm>

#include "base/debugger.h"
#include "base/report.h"
#include "base/settings.h"
#include "linking/runtime_code.h"
#include "prelude/header.h"
#include "symbols/program_files.h"

namespace {

bool IsMain(const Piece& piece) { return piece.kind == Piece::Kind::Main; }

std::string StartUpCalls() {
    std::string text;
    if (!symbols.userlibDLLs.empty()) text += "\tInitUserlibs(); // Initialize runtime-linked DLLs\n";
    if (settings.debugMode) text += "\t_kvDebugInit(); // Initialize debugger\n";
    return text;
}

// Null in a file without main().
const Piece* FindMain(const FileOutput& out) {
    const auto found = std::find_if(out.pieces.begin(), out.pieces.end(), IsMain);
    return found == out.pieces.end() ? nullptr : &*found;
}

// Start-up calls follow the opening brace.
void AppendMain(std::string& text, const Piece& main) {
    text.append(main.text, 0, main.bodyAt);
    text += StartUpCalls();
    text.append(main.text, main.bodyAt);
}

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

void SayMoved(const std::string& main) {
    auto lines = std::to_string(std::count(main.begin(), main.end(), '\n'));
    bool userlibs = !symbols.userlibDLLs.empty();
    VerboseNote("  Found 'int main(' at line: " + FirstLine(main));
    VerboseNote("Found end of main() function at line with " + lines + " total lines");
    VerboseNote("Found main() with " + lines +
                " lines. userlibDLLs.size()=" + std::to_string(symbols.userlibDLLs.size()));
    VerboseNote("main() moved to end of file successfully.");
    if (userlibs) VerboseNote("InitUserlibs() call injected into main().");
}

}  // namespace

void OpenCpp(FileOutput& out, const std::vector<const ClassInfo*>& classes) {
    BeginPiece(out, Piece::Kind::Opening);
    PutLine(out, "#include \"" + out.base + ".h\"");
    if (settings.debugMode) {
        PutLine(out, IsBaseName("kvdebug") ? "#include <kvdebug.h>" : "#include \"kvdebug.h\"");
        if (forDebugger) PutLine(out, "#include <kvdebugger.h>");
        if (out.isMain) PutLine(out, "void __kvReportGlobals();");
    }
    PutLine(out, "");
    if (out.isMain && !symbols.userlibDLLs.empty()) out.pieces.back().text += GenerateUserlibCode();
    if (!classes.empty()) {
        BeginPiece(out, Piece::Kind::Lists);
        PutLine(out, "// Type instance lists");
        for (const ClassInfo* cls : classes)
            PutLine(out, CreatedListType(*cls) + " __" + cls->cppName + "_list__;");
        PutLine(out, "");
    }
    BeginPiece(out, Piece::Kind::Lines);
}

std::string CppText(const FileOutput& out) {
    std::string text;
    std::size_t size = 0;
    for (const Piece& piece : out.pieces) size += piece.text.size();
    text.reserve(size + 200);
    for (const Piece& piece : out.pieces)
        if (!IsMain(piece)) text += piece.text;
    if (const Piece* main = FindMain(out)) AppendMain(text, *main);
    // Several files may include this one; the compiler must read it once.
    if (out.metAgain) text += "#pragma once\n";
    return text;
}

void SayPostProcessing(const FileOutput& out) {
    VerboseNote("Post-processing: Moving main() to end of file...");
    VerboseNote("  Reading: " + CppPath(out));
    if (const Piece* main = FindMain(out))
        SayMoved(main->text);
    else
        VerboseNote("No main() function found to move.");
    if (out.isMain && !symbols.userlibDLLs.empty() && !HasMainFunction())
        Say("WARNING: Could not inject InitUserlibs() call - no opening brace found!");
}
