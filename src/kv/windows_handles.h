// What the parts that call Windows share.
#pragma once

#include <windows.h>

#include <string>

// How long is waited at a time, so that what goes on can be told meanwhile.
const DWORD tickMilliseconds = 100;

inline std::string LastProblem() { return "Windows error " + std::to_string(GetLastError()); }

inline void CloseIfOpen(HANDLE handle) {
    if (handle != nullptr && handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
}
