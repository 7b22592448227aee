// Of kvdebugger.cpp and what belongs to it: what the debugger's side in the program knows, and how it answers kv.
#ifndef KV_DEBUGGER_TALK_H
#define KV_DEBUGGER_TALK_H

#include "kvdebugger.h"

#include <deque>
#include <map>
#include <set>

#include <signal.h>

namespace kvdebug {

typedef std::vector<std::string> Words;

struct Frame {
    const char* routine;
    const char* file;
    int line;
    std::size_t locals;  // of the routines outside of it
};

enum class Mode { Run, Into, Over, Out };

struct Debugger {
    std::string unread;
    std::vector<Frame> frames;  // outermost first
    std::vector<Value> locals;
    std::vector<Value> told;  // values that kv may ask about, by number, while the program stands
    std::deque<std::vector<bool>::reference> flags;  // those of them that have no address

    std::map<std::string, std::set<int>> breaks;  // by file
    std::vector<bool> breakLines;                 // of any file
    std::vector<std::string> skipped;             // folders whose files no step leads into
    Mode mode;
    Frame from;         // where the step began
    std::size_t depth;  // and how deep

    volatile sig_atomic_t hasMail;
    bool pauses;
};
extern Debugger* debugger;

// ---- The line to kv -------------------------------------------------------------------------------------------------

// Takes it by the name that the environment has for it. From then on what comes sets `hasMail`.
void OpenLine(const char* name);
// Writes a line.
void Say(const std::string& text);
// Waits for what comes and adds it to `unread`. Without kv the program goes no further.
void ReadMore();
// Waits for that at most so long; -1: as long as it takes.
bool HasMore(int milliseconds);
// From now on whoever waits for input calls this when something comes meanwhile.
void HearBesideInput(void (*hear)());

// ---- Answers --------------------------------------------------------------------------------------------------------

// A text as JSON has it. Bytes that are no UTF-8 are kv's to mend.
std::string Quoted(const std::string& text);
std::string Place(const Frame& frame);

// Answers a question of kv's; what is none is passed over.
void Answer(const Words& words);

}  // namespace kvdebug

#endif
