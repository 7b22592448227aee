// Whether the object of a Method that is under way is still there. The object knows its Methods under way.
struct KVMethodRun;
struct KVPresence {
    KVMethodRun* runs = nullptr;  // innermost first
    KVPresence() {}
    KVPresence(const KVPresence&) {}
    KVPresence& operator=(const KVPresence&) { return *this; }
    ~KVPresence();
};
struct KVMethodRun {
    KVPresence* object;  // null when it has been removed
    KVMethodRun* outer;
    explicit KVMethodRun(KVPresence* own) : object(own), outer(own ? own->runs : nullptr) { if(own) own->runs = this; }
    KVMethodRun(const KVMethodRun&) = delete;
    ~KVMethodRun() { if(object) object->runs = outer; }
};
inline KVPresence::~KVPresence() { for(KVMethodRun* run = runs; run; run = run->outer) run->object = nullptr; }
