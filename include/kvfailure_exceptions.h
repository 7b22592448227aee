// What is said when an exception of C++ ends the program. A part of kvfailure.cpp.
#ifndef KV_FAILURE_EXCEPTIONS_H
#define KV_FAILURE_EXCEPTIONS_H

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>

#include <cxxabi.h>

#include "kvfailure.h"
#include "kvfailure_lines.h"
#include "kvfailure_places.h"

namespace {

// All has been said, and the routines are still there to be looked at.
void TellDebugger() {
    if (__kvDebuggers<void>::atFailure != nullptr) __kvDebuggers<void>::atFailure(failure);
}

bool said = false;  // what ends the program now has been told

// The number behind the mark, as the C++ library has it: "(which is 7)".
bool NumberBehind(const char* text, const char* mark, unsigned long long& number) {
    const char* at = std::strstr(text, mark);
    return at != nullptr && std::sscanf(at + std::strlen(mark), " (which is %llu)", &number) == 1;
}

void SayOutOfRange(const char* what) {
    unsigned long long index = 0, size = 0;
    const bool isText = std::strncmp(what, "basic_string", 12) == 0;
    const bool known =
        NumberBehind(what, isText ? "__pos" : "__n", index) && NumberBehind(what, "size()", size);
    if (!known) return SayError(what);
    Line line;
    line << "error: ";
    if (isText)
        line << "position " << index << " is behind the end of a text of " << size << " bytes";
    else if (index > ~0ULL / 2)
        line << "index -" << ~index + 1 << " is outside of an array of " << size;
    else
        line << "index " << index << " is outside of an array of " << size;
    line.End();
}

// Within a handler of the exception.
void SayException() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        SayError("memory ran out");
    } catch (const std::length_error&) {
        SayError("memory ran out: an array, Sequence or text cannot become so large");
    } catch (const std::out_of_range& problem) {
        SayOutOfRange(problem.what());
    } catch (const std::invalid_argument& problem) {
        SayError(problem.what());
    } catch (const std::exception& problem) {
        Line line;
        (line << "error: an exception of C++ ended the program: " << problem.what()).End();
    } catch (...) {
        SayError("an exception of C++ ended the program");
    }
}

[[noreturn]] void EndByException() {
    if (!said) {
        said = true;
        if (__cxxabiv1::__cxa_current_exception_type() != nullptr)
            SayException();
        else
            SayError("an exception of C++ ended the program");
        SayPlaces();
        TellDebugger();
    }
    std::abort();
}

}  // namespace

#endif
