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
    BeginPiece(*state.out, Piece::Kind::Include).rest.Make().file = included.source;
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

// Its mistakes count whenever a file that includes it is told.
void TellMistakes(const SourceFile& file) {
    NoteMistakesOf(file.declared, Telling::Second);
    NoteMistakesOf(file.translated, Telling::Second);
}

void TellWhereIncluded(const SourceFile& file) {
    {
        const TellOnly first(Telling::First);
        TellMistakes(file);
    }
    const TellOnly second(Telling::Second);
    NoteChapter(file.declared, Telling::Second);
    NoteChapter(file.translated, Telling::Second);
}

void IncludeFile(State& state, SourceFile& file) {
    EmitIncludeLine(state, file.output);
    if (file.begun != nullptr) {
        file.begun->metAgain = true;
        return TellMistakes(file);
    }
    NoteInclude(file.output);
    TellWhereIncluded(file);
    TranslateFile(file);
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
