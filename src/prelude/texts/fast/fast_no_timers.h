// This program arms no timer.
#define __kvSchedPoll() ((void)0)
inline void __kvStopCall(const std::string&) {}

