#include "lexer/lexer.h"

#include <gtest/gtest.h>

#include "lexer/cpp_lines.h"
#include "symbols/name_characters.h"

namespace {

struct SplitRow {
    std::string line;
    Tokens tokens;
};

TEST(Lexer, CutsLines) {
    const SplitRow rows[] = {
        {"", {}},
        {" \t ", {}},
        {"; only a comment", {}},
        {"a(b)", {"a", "(", "b", ")"}},
        {"x=-1", {"x", "=", "-", "1"}},
        {"a <= b <> c", {"a", "<", "=", "b", "<", ">", "c"}},
        {"Print \"a;b\" ; note", {"Print", "\"a;b\""}},
        {"x\"y\"z", {"x", "\"y\"", "z"}},
        {"\"a\\\" b", {"\"a\\\"", "b"}},
        {"x = $ff + $G", {"x", "=", "$ff", "+", "$", "G"}},
        {"$1Fg h", {"$1Fg", "h"}},
        {"$1F.5", {"$1F", ".", "5"}},
        {"name$ = \"x\"", {"name", "$", "=", "\"x\""}},
        {"v = 1.5.2", {"v", "=", "1.5", ".", "2"}},
        {"v = .5", {"v", "=", ".", "5"}},
        {"3. a.b a1.5", {"3", ".", "a", ".", "b", "a1", ".", "5"}},
        {"my_var a_ _", {"my_var", "a_", "_"}},
        {"'quoted' p\\hp", {"'", "quoted", "'", "p", "\\", "hp"}},
        {"gr\xC3\xB6\xC3\x9F"
         "e = \"\xE2\x82\xAC\"",
         {"gr\xC3\xB6\xC3\x9F"
          "e",
          "=", "\"\xE2\x82\xAC\""}},
        {std::string("a\0b c", 5), {std::string("a\0b", 3), "c"}},
        {"s = \"abc", {"s", "=", "\"abc"}},
        {"a = b)]", {"a", "=", "b", ")", "]"}},
    };
    for (const SplitRow& row : rows) EXPECT_EQ(Split(row.line), row.tokens) << row.line;
}

TEST(Lexer, KeepsIndentCommentsAndCounts) {
    Lexer lexer;
    EXPECT_EQ(lexer.LexLine("\t\t   x = 1 ; note", true, true, false), 4);
    EXPECT_EQ(lexer.GetIndent(), 5U);
    EXPECT_EQ(lexer.GetToken(3), "// note");
    EXPECT_EQ(lexer.GetToken(-1), "");
    EXPECT_EQ(lexer.GetToken(4), "");
    EXPECT_EQ(lexer.lineNumber, 1);
    EXPECT_EQ(lexer.lineText, "\t\t   x = 1 ; note");

    EXPECT_EQ(lexer.LexLine("y", false, false, false), 1);
    EXPECT_EQ(lexer.lineNumber, 1) << "a line that was counted already";
    EXPECT_EQ(lexer.lineText, "\t\t   x = 1 ; note");
    EXPECT_EQ(lexer.GetIndent(), 0U);
}

TEST(Lexer, CutsContinuationsAndFindsComments) {
    const struct {
        std::string line, cut, comment;
    } rows[] = {
        {"a = b + _", "a = b + ", ""},
        {"a_b = _ ; see my_note", "a_b = ", "// see my_note"},
        {"Print \"_;_\", _", "Print \"_;_\", ", ""},
        {"x = 1 ; ends in \\", "x = 1 ", "// ends in \\ ."},
        {"x = 1 ;really?"
         "?/",
         "x = 1 ",
         "//really?"
         "?/ ."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CutAtContinuation(row.line), row.cut) << row.line;
        EXPECT_EQ(CommentOf(row.line), row.comment) << row.line;
    }
}

// Those of code, not of literals, comments and macros; of the branches of an #if one counts.
TEST(Lexer, CountsTheBracesOfInlineCpp) {
    const struct {
        std::vector<std::string> lines;
        int opened;
    } rows[] = {
        {{"if (a) { for (;;) {", "}"}, 1},
        {{"} else {"}, 0},
        {{"f(\"{\\\"{\", '{', '\\'', \"\"); // {", "/* {", "{ */ }"}, -1},
        {{"auto a = u8R\"x({)\"{", "{ )x\"; {"}, 1},
        {{"#define OPEN { \\", "{ {", "#if A", "if (a) {", "#else", "if (b) {", "#endif"}, 1},
    };
    for (const auto& row : rows) {
        CppLines cpp;
        int opened = 0;
        for (const std::string& line : row.lines) {
            cpp.Read(line);
            opened += cpp.Braces();
        }
        EXPECT_EQ(opened, row.opened) << row.lines[0];
    }
}

TEST(Names, HoldLettersOfAnyLanguageInValidUtf8) {
    for (const char* name : {"größe", "Ünit", "名前", "_é2", "x\u0301", "𝒳"})
        EXPECT_TRUE(IsNameText(name)) << name;
    for (const char* text : {"", "2é", "a“b”", "a\u00a0b", "→", "😀", "€", "\u0301x", "\u200bx", "a\xff",
                             "\xc3", "a\xc1\xa1", "\xed\xa0\x80", "\xf0\x80\x83\xa9"})
        EXPECT_FALSE(IsNameText(text)) << text;
}

}  // namespace
