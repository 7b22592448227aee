// Files included inside a routine ("parts"). Their statements are translated as if they stood in the routine, into
// its piece, because what is open around them may still change their text:
//     #include "part.cpp"
// When the routine ends the text goes to the part's .cpp. A part that is included again where its text comes out
// otherwise (another loop is open, a debugger is shown other Locals) has that text in the routine itself.
#pragma once

#include "statements/state.h"

// What of the state belongs to the file that the statements stand in.
struct PlaceInFile {
    std::string traceText, lineComment, commentText, closerMessage;
    int lineIndent = 0, currentLine = 0, closerLine = 0;
    std::size_t currentStatement = 0, firstBlock = 0;
    bool inOneLineIf = false;
    std::optional<StatementPlaces> ifsLeftOpen;
    Passing passing = Passing::Nothing;
};

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

// The open routine ends: its parts get their texts.
void SettleParts(State& state);
