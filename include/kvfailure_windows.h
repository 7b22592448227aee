// Faults that end the program on Windows. A part of kvfailure.cpp.
#ifndef KV_FAILURE_WINDOWS_H
#define KV_FAILURE_WINDOWS_H

#include <exception>

#include <windows.h>

#include "kvfailure_causes.h"
#include "kvfailure_exceptions.h"

namespace {

const char* TextOf(const EXCEPTION_RECORD& record) {
    switch (record.ExceptionCode) {
        case EXCEPTION_ACCESS_VIOLATION:
            return IsNull(reinterpret_cast<const void*>(record.ExceptionInformation[1])) ? nullText
                                                                                         : memoryText;
        case EXCEPTION_STACK_OVERFLOW:
            return deepText;
        case EXCEPTION_INT_DIVIDE_BY_ZERO:
            return divisionText;
        case EXCEPTION_ILLEGAL_INSTRUCTION:
            return IsTrap(record.ExceptionAddress) ? nullText : codeText;
        default:
            return nullptr;
    }
}

void TellFault(const char* text) {
    if (said) return;
    said = true;
    if (__kvBeforeFailure != nullptr) __kvBeforeFailure();
    SayError(text);
    TellDebugger();
}

#ifdef _WIN64
char otherStack[256 * 1024];

// A full stack has no room to say anything.
void TellOnOtherStack(CONTEXT& thread, void (*tell)()) {
    const auto top = reinterpret_cast<DWORD64>(otherStack + sizeof otherStack);
    thread.Rsp = top / 16 * 16 - 40;  // a return address, and above it the room that is the callee's
    thread.Rip = reinterpret_cast<DWORD64>(tell);
}

void EndByFullStack() {
    TellFault(deepText);
    TerminateProcess(GetCurrentProcess(), EXCEPTION_STACK_OVERFLOW);
}
#endif

// Before the C library makes a signal of it. Exceptions of C++ come here, too.
LONG WINAPI HandleFault(EXCEPTION_POINTERS* fault) {
#ifdef _WIN64
    if (fault->ExceptionRecord->ExceptionCode == EXCEPTION_STACK_OVERFLOW) {
        TellOnOtherStack(*fault->ContextRecord, EndByFullStack);
        return EXCEPTION_CONTINUE_EXECUTION;
    }
#endif
    if (const char* text = TextOf(*fault->ExceptionRecord)) TellFault(text);
    return EXCEPTION_CONTINUE_SEARCH;
}

__attribute__((constructor(101))) void Begin() {
    ULONG room = 65536;  // of the stack, for what is to be said when it is full
    SetThreadStackGuarantee(&room);
    std::set_terminate(EndByException);
    AddVectoredExceptionHandler(1, HandleFault);
}

}  // namespace

#endif
