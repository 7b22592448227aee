// What the system tells of a fault, in words. A part of kvfailure.cpp.
#ifndef KV_FAILURE_CAUSES_H
#define KV_FAILURE_CAUSES_H

#include <cstdint>

namespace {

const uintptr_t nullPage = 65536;
const char nullText[] = "the program used an object that is Null";
const char deepText[] = "calls went too deep";
const char memoryText[] =
    "the program used memory that is not its own (an index outside of its array, an object that is gone?)";
const char divisionText[] = "division by zero";
const char abortText[] = "the program was aborted";
const char codeText[] = "the program came to code that cannot be executed";

// g++ puts this instruction where it can see that an object is Null.
bool IsTrap(const void* address) {
#if defined(__x86_64__) || defined(__i386__)
    const unsigned char* code = static_cast<const unsigned char*>(address);
    return code[0] == 0x0f && code[1] == 0x0b;
#else
    (void)address;
    return false;
#endif
}

bool IsNull(const void* address) { return reinterpret_cast<uintptr_t>(address) < nullPage; }

}  // namespace

#endif
