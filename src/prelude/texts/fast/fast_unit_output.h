// Code that is not Korvel parts the C++ streams from those of C: every item goes out at once.
struct KVUnitOutput {
    KVUnitOutput() { std::cout << std::unitbuf; }
};
