// Lists and loops over them for code that kvt does not see.
template<typename T> struct KVItemWalk {
    KVInstanceList* list;
    size_t at, end;
    KVItemWalk(KVInstanceList* list, size_t at, size_t end) : list(list), at(at), end(end) { Skip(); }
    KVItemWalk(const KVItemWalk& o) : list(o.list), at(o.at), end(o.end) { if(list) ++list->walks; }
    KVItemWalk& operator=(const KVItemWalk&) = delete;
    ~KVItemWalk() { if(list) --list->walks; }
    void Skip() { while(at < end && !list->slots[at]) ++at; }
    void operator++() { ++at; Skip(); }
    bool operator!=(const KVItemWalk& o) const { return at != o.at; }
    T* operator*() const { return static_cast<T*>(list->slots[at]); }
};
template<typename T> struct KVInstances : KVInstanceList {
    T* operator[](size_t i) const { return static_cast<T*>(slots[i]); }
    KVItemWalk<T> begin() { const size_t end = Entered(); return KVItemWalk<T>(this, 0, end); }
    KVItemWalk<T> end() { return KVItemWalk<T>(nullptr, used, used); }
};
// The objects that variables were declared with, in the order of creation.
struct KVCreatedList {  // all zero at the start of the program
    std::vector<void*>* kept;
    std::vector<void*>& Items() { return *(kept ? kept : kept = new std::vector<void*>); }
    void push_back(void* p) { Items().push_back(p); }
    size_t size() { return Items().size(); }
};
template<typename T> struct KVCreated : KVCreatedList {
    T*& operator[](size_t i) { return begin()[i]; }
    T** begin() { return reinterpret_cast<T**>(Items().data()); }
    T** end() { return begin() + size(); }
};
