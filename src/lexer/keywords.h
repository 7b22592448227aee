// The words that the translator looks for, in any letter case.
#pragma once

#include <cstddef>
#include <string_view>

enum class Keyword : unsigned char {
    None,  // any other text
    // statements
    AutoCall,
    Case,
    Const,
    Continue,
    Default,
    EachSeq,
    Element,
    Else,
    ElseIf,
    End,
    EndElement,
    EndExtern,
    EndFunction,
    EndIf,
    EndInlineCpp,
    EndMethod,
    EndPreCalc,
    EndSelect,
    EndType,
    EndWith,
    Exit,
    Extern,
    Field,
    For,
    Forever,
    Function,
    Global,
    If,
    Import,
    Include,
    InlineCpp,
    Input,
    Linker,
    Local,
    Method,
    Next,
    NextSeq,
    PreCalc,
    Print,
    Private,
    Public,
    Remove,
    Repeat,
    Return,
    Select,
    SeqAdd,
    SeqAddFirst,
    SeqClear,
    SeqDelete,
    SeqDeleteAt,
    SeqFromArray,
    SeqInsert,
    SeqReverse,
    SeqSet,
    SeqSort,
    SeqSwap,
    StopCall,
    Type,
    Until,
    UseConsole,
    Wend,
    While,
    With,
    // parts of statements
    As,
    Each,
    EachIn,
    In,
    Its,
    Of,
    Sequence,
    Step,
    Then,
    To,
    // operators, see IsOperatorWord
    And,
    BitAnd,
    BitNot,
    BitOr,
    BitXor,
    Mod,
    Not,
    Or,
    Shl,
    Shr,
    // operands
    After,
    Before,
    Create,
    False,
    First,
    Insert,
    Last,
    New,
    Null,
    SeqRemoveFirst,
    SeqRemoveLast,
    This,
    True,
};

constexpr std::size_t keywordCount = static_cast<std::size_t>(Keyword::True) + 1;

constexpr std::size_t IndexOf(Keyword keyword) { return static_cast<std::size_t>(keyword); }

// The keyword in lower case; empty for None.
std::string_view TextOf(Keyword keyword);

// Which keyword the text is.
Keyword FindKeyword(std::string_view text);
