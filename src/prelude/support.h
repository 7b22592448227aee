// Support code that only some programs need. It is written into the main header behind the fixed
// prelude for those programs and leaves all others as they are.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "prelude/output.h"

enum class Support : unsigned char {
    ArraySize,     // check of an array size that is worked out when the program runs
    ResultSize,    // comparison of the size of an array that a call gave with the declared one
    ArrayPassing,  // row pointers for two-dimensional arguments, taking over returned arrays
    BoolArray,     // KVBool, whose arrays can be passed as bool*
    ElementSlots,  // KVSlot<T>, an owning pointer that copies and compares by value
    TextInOrder,   // Strings put together or compared when their operands are calls
    ReadNow,       // an operand that is worked out before the one behind it
    StringSelect,  // index of the matching label for Select over String and Double
    SafeIndex,     // bounds check where the lambda text cannot compile
    IndexInOrder,  // the same where the order of indices can be seen
    SequenceWalk,  // KVSeqWalk, a loop over a Sequence that its body changes
    InputEnd,      // ends a program that asks for numbers behind the end of its input
    AskedStep,     // KVStep, the step of a For that runs code of the program
    SafeOperands,  // checked division and remainder of operands of two types, remainder of Doubles
    FixedArray,    // KVArray, an array inside the frame of its routine; under -fast
    Misuse,        // what modules say of what they are given and cannot use
    NoMisuse,      // that they say nothing
    AnyObject,     // KVAnyObject, an object of any Type, which it knows
    TakenObject,   // what is done with one
    Presence,      // KVPresence, whether a Method's object is still there; debug builds
    Count,
};

// Marks the support code as used by this program.
void RequireSupport(Support support);
bool SupportUsed(Support support);
// What a file needs and uses counts for the program.
void AddUsesOf(const FileOutput& out);

// Notes that the text being produced names something that only the main header declares, fixed prelude
// included; RequireSupport does so. Whoever wants to know it of a text compares the count before and after.
void NotePreludeUse();
std::size_t PreludeUses();

// The text of all marked support code, in the order of the enum; of a program in several units without the objects that
// it makes, which one of them has.
std::string SupportText();
std::string SupportObjects();

// The code of Sequences, `text` in this mode, which keeps its items in an `items`. Asked when the whole program is known:
// where Sequences are walked while they change, their items tell the loops of it.
std::string SequenceText(std::string_view text, std::string_view items);

// A text with the names of the checked division and remainder, and of what ends a program that has failed, in their
// places.
std::string FillNames(std::string_view text);

// The function that ends a program behind the text of a run-time error.
std::string_view EndOfFailure();
