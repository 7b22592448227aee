// Code that is not Korvel may write past the C++ streams or start programs: every line goes out at once.
struct KVLineOutput {
    KVLineOutput() { std::setvbuf(stdout, nullptr, _IOLBF, 4096); }
};
static KVLineOutput __kvLineOutput;

