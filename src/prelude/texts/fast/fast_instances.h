// The objects of a Type in their order. All Types share this code; a Type adds its name to it. A removed
// object leaves an empty slot, so that loops under way keep their places; empty slots go when no loop is.
struct KVObject {
    static const size_t unlisted = (size_t)-1;
    size_t _slot;  // its place in the list, or near it after Insert
    KVObject() : _slot((size_t)unlisted) {}
    KVObject(const KVObject&) : _slot((size_t)unlisted) {}
    KVObject& operator=(const KVObject&) { return *this; }
};
#if defined(__GNUC__)
#define KV_OUTLINE __attribute__((noinline))  // compiled once for all Types
#else
#define KV_OUTLINE
#endif
struct KVInstanceList {  // all zero at the start of the program, before anything runs
    KVObject** slots;
    size_t used, room;
    size_t removed;  // empty slots
    size_t wasted;   // steps over empty slots since they went last
    size_t walks;    // loops under way

    size_t size() const { return used; }
    size_t Find(KVObject* o) {
        const size_t at = o->_slot;
        return at < used && slots[at] == o ? at : Search(o, at);
    }
    KV_OUTLINE size_t Search(KVObject* o, size_t at) {
        if(at == (size_t)KVObject::unlisted) return used;
        for(size_t d = 1; d <= at || at + d < used; ++d) {
            if(at + d < used && slots[at + d] == o) return o->_slot = at + d;
            if(d <= at && at - d < used && slots[at - d] == o) return o->_slot = at - d;
        }
        return used;
    }
    KV_OUTLINE void MakeRoom() {
        if(removed > used / 2) Tidy();
        if(used < room) return;
        room = room ? room * 2 : 16;
        KVObject** larger = new KVObject*[room];
        std::copy(slots, slots + used, larger);
        delete[] slots;
        slots = larger;
    }
    void push_back(KVObject* o) {
        if(used == room) MakeRoom();
        o->_slot = used;
        slots[used++] = o;
    }
    KV_OUTLINE void Forget(KVObject* o) {
        const size_t at = Find(o);
        if(at < used) {
            slots[at] = nullptr;
            ++removed;
            if(!walks && __kvTidyLists) while(used && !slots[used - 1]) { --used; --removed; }
        }
        if(KVSeqCount<void>::live) __kvScrubSeqs(o);
    }
    KV_OUTLINE void Tidy() {
        if(walks || !__kvTidyLists) return;
        size_t kept = 0;
        for(size_t i = 0; i < used; ++i) if(slots[i]) { slots[kept] = slots[i]; slots[kept]->_slot = kept; ++kept; }
        used = kept;
        removed = wasted = 0;
    }
    KVObject* Passed(KVObject* o, size_t steps) {
        wasted += steps;
        if(wasted > used + 64) Tidy();
        return o;
    }
    KV_OUTLINE KVObject* From(size_t at) {
        const size_t start = at;
        while(at < used && !slots[at]) ++at;
        if(at == start) return at < used ? slots[at] : nullptr;
        return Passed(at < used ? slots[at] : nullptr, at - start);
    }
    KV_OUTLINE KVObject* Until(size_t end) {  // the last one in front of `end`
        const size_t start = end;
        while(end > 0 && !slots[end - 1]) --end;
        if(end == start) return end > 0 ? slots[end - 1] : nullptr;
        return Passed(end > 0 ? slots[end - 1] : nullptr, start - end);
    }
    KVObject* After(KVObject* o) { const size_t at = Find(o); return at < used ? From(at + 1) : nullptr; }
    KVObject* Before(KVObject* o) { const size_t at = Find(o); return at < used ? Until(at) : nullptr; }
    KV_OUTLINE void Move(KVObject* o, KVObject* target, size_t behind) {
        if(!o || !target || target == o) return;
        const size_t from = Find(o);
        if(from < used) {
            std::copy(slots + from + 1, slots + used, slots + from);
            slots[--used] = nullptr;
        }
        size_t to = Find(target);
        if(to >= used) return;
        to += behind;
        if(used == room) MakeRoom();
        std::copy_backward(slots + to, slots + used, slots + used + 1);
        ++used;
        slots[to] = o;
        o->_slot = to;
    }
    KV_OUTLINE size_t Entered() {  // the end of a loop that begins
        if(removed > used / 2) Tidy();
        ++walks;
        return used;
    }
};
// One loop over a Type, up to the number of slots at its start.
struct KVWalk {
    KVInstanceList& list;
    size_t at, end;
    explicit KVWalk(KVInstanceList& list) : list(list), at(0), end(list.Entered()) {}
    KVWalk(const KVWalk&) = delete;
    ~KVWalk() { --list.walks; }
    KVObject* Next() {
        while(at < end) if(KVObject* o = list.slots[at++]) return o;
        return nullptr;
    }
};
