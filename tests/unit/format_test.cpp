// The usual form of a program's text.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "case_file.h"
#include "kv/format/format.h"
#include "lexer/lexer.h"
#include "library/korvel.h"

namespace {

TEST(Format, Table) {
    const struct {
        const char *text, *usual;
    } rows[] = {
        {"\xEF\xBB\xBF"
         "function Main ; a  \r\n\tprint   1|print 2\r\nENDFUNCTION",
         "\xEF\xBB\xBF"
         "Function Main ; a  \r\n    Print 1 | Print 2\r\nEndFunction"},
        {"if a=-1 and b <>2 then x=y-1 else Move -1\nnext=next-1\np\\next = 1",
         "If a = -1 And b <> 2 Then x = y - 1 Else Move -1\nnext = next-1\np\\next = 1"},
        {"Type T\nPrivate\nprivate\nfield step :int\nmethod F( a:Int,b:Int )\nfor Local i=step to 3 step "
         "step\n"
         "print i,  \"a ; b\"   ; c\n  ; d\nnext\nendmethod\nendtype",
         "Type T\n    Private\n    private\n    Field step :int\n    Method F(a:Int, b:Int)\n"
         "        For Local i = step to 3 Step step\n            Print i, \"a ; b\"   ; c\n            ; d\n"
         "        Next\n    EndMethod\nEndType"},
        {"select x\ncase 1\nif y\nz=1\nelse\nz=2\nendif\ndefault\nEndSelect",
         "Select x\n    Case 1\n        If y\n            z = 1\n        Else\n            z = 2\n        "
         "EndIf\n"
         "    Default\nEndSelect"},
        {"Function F\nInlineCpp\n  int  x ;\nEndInlineCpp\nExtern\nFunction g()\nEndExtern\n  x = 1 + _\n    "
         "step\n"
         "y = 1 ~~\n +  2",
         "Function F\n    InlineCpp\n  int  x ;\n    EndInlineCpp\nExtern\n    Function g()\nEndExtern\n"
         "x = 1 + _\n  step\ny = 1 ~~\n +  2"},
        // What is left open ends with the routine, what is closed twice is not missed.
        {"Function F\nWhile a\nNext\nEndIf\nIf b\nEndFunction\nPrint \"a\nFunction G\nEndFunction",
         "Function F\n    While a\n    Next\n    EndIf\n    If b\nEndFunction\nPrint \"a\nFunction "
         "G\nEndFunction"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Formatted(row.text), row.usual);
        EXPECT_EQ(Formatted(row.usual), row.usual);
    }
}

// The C++ without what stands before its lines.
std::string Text(const std::vector<korvel::GeneratedFile>& files) {
    std::string text;
    for (const korvel::GeneratedFile& file : files) {
        std::istringstream lines(file.text);
        for (std::string line; std::getline(lines, line);) {
            const std::size_t first = line.find_first_not_of(" \t");
            if (first != std::string::npos) text += line.substr(first) + "\n";
        }
    }
    return text;
}

// The same program without indentation, with blanks where none matter.
std::string Spoilt(const std::string& text) {
    std::string spoilt;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const bool isTouched =
            line.find_first_of("~\"") == std::string::npos && CommentStart(line) == std::string::npos;
        for (std::size_t at = isTouched ? line.find(", ") : std::string::npos; at != std::string::npos;
             at = line.find(", ", at + 3))
            line.replace(at, 2, " ,");
        spoilt += line + "\n";
    }
    return spoilt;
}

korvel::Result Translated(const Case& program, std::string (*change)(const std::string&)) {
    korvel::Request request;
    request.installation = STAGE_ROOT;
    request.source = "/nowhere/" + program.mainFile;
    for (const auto& [path, text] : program.files) {
        const bool isSource = std::filesystem::path(path).extension() == ".kvl";
        request.overlays.push_back({"/nowhere/" + path, isSource ? change(text) : text});
    }
    return korvel::Translate(request);
}

TEST(Format, LeavesTheMeaningOfAllCasesAlone) {
    int programs = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SOURCE_ROOT "/tests/cases")) {
        if (entry.path().extension() != ".kvl") continue;
        for (const Case& program : ReadCases(entry.path().string())) {
            const korvel::Result before = Translated(program, Spoilt);
            if (!korvel::IsSound(before)) continue;
            const korvel::Result after = Translated(program, [](const std::string& text) {
                const std::string usual = Formatted(Spoilt(text));
                EXPECT_EQ(Formatted(usual), usual);
                return usual;
            });
            EXPECT_EQ(Text(before.files), Text(after.files)) << program.place;
            ++programs;
        }
    }
    EXPECT_GT(programs, 150);
    korvel::Reset();
}

}  // namespace
