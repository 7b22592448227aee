// Writing to the error stream. No memory is asked for, for there may be none. A part of kvfailure.cpp.
#ifndef KV_FAILURE_LINES_H
#define KV_FAILURE_LINES_H

#include <cstddef>
#include <cstring>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

void Say(const char* text, std::size_t size) {
    while (size > 0) {
        const int written = static_cast<int>(::write(2, text, static_cast<unsigned>(size)));
        if (written <= 0) return;
        text += written;
        size -= static_cast<std::size_t>(written);
    }
}

const char failureMark[] = "error: ";
char failure[2000] = "";  // the line that has told what failed

class Line {
public:
    Line& operator<<(const char* text) { return Add(text, std::strlen(text)); }
    Line& operator<<(unsigned long long number) {
        char digits[24];
        std::size_t at = sizeof digits;
        do {
            digits[--at] = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number > 0);
        return Add(digits + at, sizeof digits - at);
    }
    Line& Add(const char* text, std::size_t length) {
        if (length > sizeof bytes - 1 - used) length = sizeof bytes - 1 - used;
        std::memcpy(bytes + used, text, length);
        used += length;
        return *this;
    }
    void End() {
        if (std::strncmp(bytes, failureMark, sizeof failureMark - 1) == 0) {
            std::memcpy(failure, bytes, used);
            failure[used] = '\0';
        }
        bytes[used++] = '\n';
        Say(bytes, used);
        used = 0;
    }

private:
    char bytes[2000];
    std::size_t used = 0;
};

void SayError(const char* what) {
    Line line;
    (line << "error: " << what).End();
}

void SayWarning(const char* what) {
    Line line;
    (line << "warning: " << what).End();
}

}  // namespace

#endif
