// Pipes and sockets, by the descriptors that C has for them; -1 is none.
#pragma once

#include <string>
#include <vector>

namespace debug {

void Close(int& descriptor);

// Adds what is there. False when nothing was; at the end the descriptor is closed.
bool Read(int& from, std::string& text);

// Takes off the text's beginning what can be written at once; all of it where nobody reads any more.
void WriteSome(int to, std::string& text);

// What is waited for: something to read, or room to write.
struct Awaited {
    int descriptor;
    bool writes;
    bool hasCome;
};

// From now on standard input can be waited for: what is read ahead of it is nothing.
void PrepareInput();

// Waits at most so many milliseconds, or -1: as long as it takes. False: none of them has come.
bool Await(std::vector<Awaited>& all, int milliseconds);

}  // namespace debug
