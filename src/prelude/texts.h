// The fixed code of generated programs, kept as readable files in texts/ and embedded by embed.cmake.
// Every text ends with a line end; an empty last line belongs to the text.
#pragma once

#include <string_view>

namespace texts {

extern const std::string_view includes;      // the standard headers of every generated header
extern const std::string_view safeDivision;  // safe mode only
extern const std::string_view sequence;
extern const std::string_view scheduler;
extern const std::string_view iteration;  // programs with Types or Elements

// Their counterparts under -fast, see fast_prelude.cpp.
extern const std::string_view fastOutput;
extern const std::string_view fastBeforeFailure;  // in fastOutput, when a program says where it failed
extern const std::string_view fastLineOutput;     // programs whose output kvt does not know whole
extern const std::string_view fastUnitOutput;     // programs that part the C++ streams from those of C
// The object that each of these three makes, once in the program.
extern const std::string_view fastOutputObject;
extern const std::string_view fastLineOutputObject;
extern const std::string_view fastUnitOutputObject;
extern const std::string_view fastItems;
extern const std::string_view fastVectorItems;  // programs that can tell what holds the items
extern const std::string_view fastSequence;
extern const std::string_view fastScheduler;
extern const std::string_view fastNoTimers;
extern const std::string_view fastInstances;
extern const std::string_view fastSeenLists;  // programs with code that may look at the lists of Types
extern const std::string_view fastUnseenLists;
extern const std::string_view fastTracked;
extern const std::string_view fastSafeIndex;  // for Support::SafeIndex

// The closing part of a class, hole C: its C++ name (see fill.h).
extern const std::string_view classTracking;  // the comment on the group
extern const std::string_view classConstructor;
extern const std::string_view classLeaving;     // what the destructor does
extern const std::string_view classNavigation;  // also closes the body and defines the instance list
extern const std::string_view fastClassLeaving;
extern const std::string_view fastClassNavigation;

// One for each row of Support.
extern const std::string_view arraySize;
extern const std::string_view resultSize;
extern const std::string_view arrayPassing;
extern const std::string_view boolArray;
extern const std::string_view elementSlots;
extern const std::string_view textInOrder;
extern const std::string_view indexInOrder;
extern const std::string_view readNow;
extern const std::string_view stringSelect;
extern const std::string_view safeIndex;
extern const std::string_view sequenceWalk;
extern const std::string_view walkedItems;
extern const std::string_view inputEnd;
extern const std::string_view inputEndObject;
extern const std::string_view misuse;
extern const std::string_view noMisuse;
extern const std::string_view safeOperands;
extern const std::string_view askedStep;
extern const std::string_view fastFixedArray;  // only programs translated with -fast ask for it
extern const std::string_view anyObject;       // its class, which included headers have as well
extern const std::string_view takenObject;
extern const std::string_view presence;

}  // namespace texts
