// Code that is not Korvel may write past the C++ streams or start programs: every line goes out at once.
#include <cstdio>
struct KVLineOutput {
    KVLineOutput() {
#ifdef _WIN32
        std::cout << std::unitbuf;  // its C library has no buffers of one line
#else
        std::setvbuf(stdout, nullptr, _IOLBF, 4096);
#endif
    }
};
