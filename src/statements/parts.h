// Files included inside a routine ("parts"). Their statements are translated as if they stood in the routine, into
// its piece, because what is open around them may still change their text:
//     #include "part.cpp"
// When the routine ends the text goes to the part's .cpp. A part that is included again where its text comes out
// otherwise (another loop is open, a debugger is shown other Locals) has that text in the routine itself.
#pragma once

#include "statements/state.h"

// The part whose Include has been met in the open routine; it ends with the object.
class OpenPart {
public:
    OpenPart(State& routine, FileOutput& out);
    ~OpenPart();
    OpenPart(const OpenPart&) = delete;
    OpenPart& operator=(const OpenPart&) = delete;

    // Translates its statements; blocks that it leaves open end the run.
    void Read(const std::string& source);

private:
    State& state;
    PlaceInFile place;  // the routine's
    std::size_t number = 0;
};

// The open routine ends: its slots are as they are to be, and its parts get their texts.
void SettleText(State& state);
