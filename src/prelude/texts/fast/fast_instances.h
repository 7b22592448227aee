// The objects of a Type in their order. All Types share this code; a Type adds its name to it. A removed
// object leaves an empty slot, so that loops under way keep their places; empty slots go when no loop is.
struct KVObject {
    static const size_t unlisted = (size_t)-1;
    size_t _slot;  // its place in the list, or near it after Insert
    KVObject() : _slot((size_t)unlisted) {}
    KVObject(const KVObject&) : _slot((size_t)unlisted) {}
    KVObject& operator=(const KVObject&) { return *this; }
};
struct KVInstanceList {  // all zero at the start of the program, before anything runs
    KVObject** slots;
    size_t used, room;
    size_t removed;  // empty slots
    size_t wasted;   // steps over empty slots since they went last
    size_t walks;    // loops under way

    size_t Find(KVObject* o) {
        const size_t at = o->_slot;
        if(at < used && slots[at] == o) return at;
        if(at == (size_t)KVObject::unlisted) return used;
        for(size_t d = 1; d <= at || at + d < used; ++d) {
            if(at + d < used && slots[at + d] == o) return o->_slot = at + d;
            if(d <= at && at - d < used && slots[at - d] == o) return o->_slot = at - d;
        }
        return used;
    }
    void Grow() {
        room = room ? room * 2 : 16;
        KVObject** larger = new KVObject*[room];
        std::copy(slots, slots + used, larger);
        delete[] slots;
        slots = larger;
    }
    void Add(KVObject* o) {
        if(used == room) {
            if(removed > used / 2) Tidy();
            if(used == room) Grow();
        }
        o->_slot = used;
        slots[used++] = o;
    }
    void Forget(KVObject* o) {
        const size_t at = Find(o);
        if(at < used) {
            slots[at] = nullptr;
            ++removed;
            if(!walks && __kvTidyLists) while(used && !slots[used - 1]) { --used; --removed; }
        }
        if(KVSeqCount<void>::live) __kvScrubSeqs(o);
    }
    void Tidy() {
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
    KVObject* From(size_t at) {
        const size_t start = at;
        while(at < used && !slots[at]) ++at;
        if(at == start) return at < used ? slots[at] : nullptr;
        return Passed(at < used ? slots[at] : nullptr, at - start);
    }
    KVObject* Until(size_t end) {  // the last one in front of `end`
        const size_t start = end;
        while(end > 0 && !slots[end - 1]) --end;
        if(end == start) return end > 0 ? slots[end - 1] : nullptr;
        return Passed(end > 0 ? slots[end - 1] : nullptr, start - end);
    }
    KVObject* After(KVObject* o) { const size_t at = Find(o); return at < used ? From(at + 1) : nullptr; }
    KVObject* Before(KVObject* o) { const size_t at = Find(o); return at < used ? Until(at) : nullptr; }
    void Move(KVObject* o, KVObject* target, size_t behind) {
        if(!target || target == o) return;
        const size_t from = Find(o);
        if(from < used) {
            std::copy(slots + from + 1, slots + used, slots + from);
            slots[--used] = nullptr;
        }
        size_t to = Find(target);
        if(to >= used) return;
        to += behind;
        if(used == room) Grow();
        std::copy_backward(slots + to, slots + used, slots + used + 1);
        ++used;
        slots[to] = o;
        o->_slot = to;
    }
};
// One loop over a Type, up to the number of slots at its start.
struct KVWalkBase {
    KVInstanceList* list;
    size_t at, end;
    explicit KVWalkBase(size_t end) : list(nullptr), at(end), end(end) {}
    explicit KVWalkBase(KVInstanceList& walked) : list(&walked), at(0), end(0) {
        if(walked.removed > walked.used / 2) walked.Tidy();
        ++walked.walks;
        end = walked.used;
        Skip();
    }
    KVWalkBase(const KVWalkBase& o) : list(o.list), at(o.at), end(o.end) { if(list) ++list->walks; }
    KVWalkBase& operator=(const KVWalkBase&) = delete;
    ~KVWalkBase() { if(list) --list->walks; }
    void Skip() { while(at < end && !list->slots[at]) ++at; }
    void operator++() { ++at; Skip(); }
    bool operator!=(const KVWalkBase& o) const { return at != o.at; }
};
template<typename T> struct KVWalk : KVWalkBase {
    explicit KVWalk(size_t end) : KVWalkBase(end) {}
    explicit KVWalk(KVInstanceList& list) : KVWalkBase(list) {}
    T* operator*() const { return static_cast<T*>(list->slots[at]); }
};
template<typename T> struct KVInstances : KVInstanceList {
    void push_back(KVObject* o) { Add(o); }
    size_t size() const { return used; }
    T* operator[](size_t i) const { return static_cast<T*>(slots[i]); }
    KVWalk<T> begin() { return KVWalk<T>(*this); }
    KVWalk<T> end() { return KVWalk<T>(used); }
};
template<typename T> struct KVTracked : KVObject {
    static KVInstances<T> _instances;
    static T* First() { return static_cast<T*>(_instances.From(0)); }
    static T* Last() { return static_cast<T*>(_instances.Until(_instances.used)); }
    T* Before() { return static_cast<T*>(_instances.Before(this)); }
    T* After() { return static_cast<T*>(_instances.After(this)); }
    void InsertAfter(T* target) { _instances.Move(this, target, 1); }
    void InsertBefore(T* target) { _instances.Move(this, target, 0); }
};
template<typename T> KVInstances<T> KVTracked<T>::_instances;
// The objects that variables were declared with, in the order of creation; kept for inline C++ alone.
template<typename T> struct KVCreated {
    std::vector<void*> items;
    void push_back(T* p) { if(__kvKeepCreated) items.push_back((void*)p); }
    size_t size() const { return items.size(); }
    T*& operator[](size_t i) { return reinterpret_cast<T**>(items.data())[i]; }
    T** begin() { return reinterpret_cast<T**>(items.data()); }
    T** end() { return begin() + items.size(); }
};

