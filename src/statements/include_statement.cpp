#include "statements/handlers.h"

#include "base/paths.h"
#include "base/report.h"
#include "statements/program.h"
#include "statements/translate.h"
#include "statements/words.h"
#include "symbols/modules.h"
#include "symbols/program_files.h"

namespace {

void EmitIncludeLine(State& state, const FileOutput& included) {
    Piece::Rest& rest = BeginPiece(*state.out, Piece::Kind::Include).rest.Make();
    rest.file = included.source;
    rest.globals = state.out->globals.size();
    if (!included.headerOnly)
        EmitLine(state,
                 "#include \"" + PathSeenFrom(*state.out, StripExtension(included.header) + ".cpp") + "\"");
    BeginPiece(*state.out, Piece::Kind::Lines);
}

// In a routine:
//     #include "part.cpp"
void IncludePart(State& state, SourceFile& file) {
    NoteInclude(file.output);
    TranslatePart(state, file);
    // It may hold nothing, and C++11 wants a statement behind a label.
    if (InnermostIs(state, BlockKind::Select)) EmitLine(state, ";");
}

void IncludeFile(State& state, SourceFile& file) {
    EmitIncludeLine(state, file.output);
    TranslateIncluded(file);
}

}  // namespace

// Include "folder/file.kvl"
//     #include "folder/file.cpp"
void TranslateInclude(State& state, TokenSpan tokens) {
    const auto name = IncludedName(tokens);
    if (!name) return;
    RefuseMore(tokens, 2);
    if (symbols.importedNames.count(*name) != 0) return;
    const std::string source = PathOfInclude(*name);
    const bool inRoutine = InRoutine(state);
    if (inRoutine && IsModule(source))
        ReportFatal("A module is included outside of Functions and Types" +
                    Hint{"Move this line to the beginning of the file: Include \"" + *name + "\""});
    if (inRoutine ? !IsPart(source) || IsHeaderOnly(source) : state.inType)
        ReportFatal("'Include' can only be used at the top level (not inside a Function, Method or Type)");
    SourceFile* file = FindSourceFile(source);
    if (file == nullptr) ReportFatal("Include file does not exist.");
    if (inRoutine)
        IncludePart(state, *file);
    else
        IncludeFile(state, *file);
}
