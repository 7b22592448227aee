// Where a Sequence keeps its items: in a std::vector when the compiler optimises. When it does not, the machine code of
// std::vector for every Type and Element is most of its work; then these few functions stand in for it.
#ifdef __OPTIMIZE__
template<typename T> using KVItems = std::vector<T>;
template<typename T> using KVSortsItems = std::is_trivially_copyable<T>;
#else
struct KVRowBase {  // what needs no knowledge of the items
    char* _bytes = nullptr;
    size_t _used = 0, _room = 0;
    size_t size() const { return _used; }
    bool empty() const { return _used == 0; }
    void _swap(KVRowBase& o) { std::swap(_bytes, o._bytes); std::swap(_used, o._used); std::swap(_room, o._room); }
    void _make(size_t room, size_t size) { _bytes = static_cast<char*>(::operator new(room * size)); _room = room; }
    void _makeGap(size_t at, size_t size, void (*move)(char* to, char* from)) {
        char* before = _bytes;
        if(_used == _room) {
            _make(_room ? _room * 2 : 4, size);
            for(size_t i = 0; i < at; ++i) move(_bytes + i * size, before + i * size);
        }
        for(size_t i = _used; i > at; --i) move(_bytes + i * size, before + (i - 1) * size);
        if(before != _bytes) ::operator delete(before);
        ++_used;
    }
};
template<typename T> class KVRow : public KVRowBase {
    static void _move(char* to, char* from) { T* item = reinterpret_cast<T*>(from); new(to) T(static_cast<T&&>(*item)); item->~T(); }
public:
    typedef T* iterator;
    KVRow() {}
    KVRow(const KVRow& o) : KVRowBase() {
        if(o._used) _make(o._used, sizeof(T));
        for(; _used < _room; ++_used) new(end()) T(begin(o)[_used]);
    }
    KVRow(KVRow&& o) : KVRowBase() { _swap(o); }
    KVRow& operator=(KVRow o) { _swap(o); return *this; }
    ~KVRow() { clear(); ::operator delete(_bytes); }
    static T* begin(const KVRow& o) { return reinterpret_cast<T*>(o._bytes); }
    T* begin() { return begin(*this); }
    T* end() { return begin() + _used; }
    T& operator[](size_t i) { return begin()[i]; }
    bool operator==(const KVRow& o) const {
        if(_used != o._used) return false;
        for(size_t i = 0; i < _used; ++i) if(!(begin(*this)[i] == begin(o)[i])) return false;
        return true;
    }
    void clear() { while(_used > 0) begin()[--_used].~T(); }
    void push_back(const T& item) { insert(end(), item); }
    void insert(T* place, const T& item) {
        const size_t at = place - begin();
        T copy(item);  // which may be one of these
        _makeGap(at, sizeof(T), _move);
        new(begin() + at) T(static_cast<T&&>(copy));
    }
    void erase(T* place) { erase(place, place + 1); }
    void erase(T* from, T* to) {
        while(to != end()) *from++ = static_cast<T&&>(*to++);
        while(end() != from) begin()[--_used].~T();
    }
    template<typename Place> void assign(Place from, Place to) { clear(); for(; from != to; ++from) push_back(*from); }
    void swap(KVRow& o) { _swap(o); }
};
template<typename T> using KVItems = typename std::conditional<std::is_arithmetic<T>::value || std::is_same<T, std::string>::value, std::vector<T>, KVRow<T>>::type;
template<typename T> using KVSortsItems = std::false_type;
#endif
template<typename T, typename Compare> void __kvSort(KVItems<T>& items, bool asc, std::true_type) {
    if(asc) std::sort(items.begin(), items.end(), [](const T& a, const T& b) { T item = a; return Compare::Of(item, b) < 0; });
    else std::sort(items.begin(), items.end(), [](const T& a, const T& b) { T item = a; return Compare::Of(item, b) > 0; });
}
// The machine code of std::sort is large. Items with Strings and the like stay where they are while their places are
// sorted, by code that all of them share. It compares what std::sort would compare of the items, in the same order, so
// equal ones end up in the same places.
struct KVPlaceLess {
    int (*compare)(void* item, const void* a, const void* b);
    void* item;  // a copy of a, for Compare may change it; one for all, so that it need not find memory each time
    bool asc;
    bool operator()(const void* a, const void* b) const { const int c = compare(item, a, b); return asc ? c < 0 : c > 0; }
};
inline void __kvSortPlaces(char* first, size_t count, size_t size, KVPlaceLess less, void (*move)(void* to, void* from)) {
    std::vector<char*> places;
    places.reserve(count);
    for(size_t i = 0; i < count; ++i) places.push_back(first + i * size);
    std::sort(places.begin(), places.end(), less);
    for(size_t i = 0; i < count; ++i) {
        char* const start = first + i * size;
        if(places[i] == start) continue;
        move(less.item, start);  // makes room for what follows
        char* to = start;
        for(char* from; (from = places[(to - first) / size]) != start; to = from) {
            move(to, from);
            places[(to - first) / size] = to;
        }
        move(to, less.item);
        places[(to - first) / size] = to;
    }
}
template<typename T, typename Compare> int __kvCompare(void* item, const void* a, const void* b) {
    *static_cast<T*>(item) = *static_cast<const T*>(a);
    return Compare::Of(*static_cast<T*>(item), *static_cast<const T*>(b));
}
template<typename T> void __kvMove(void* to, void* from) { *static_cast<T*>(to) = static_cast<T&&>(*static_cast<T*>(from)); }
template<typename T, typename Compare> void __kvSort(KVItems<T>& items, bool asc, std::false_type) {
    if(items.empty()) return;
    T item = items[0];
    __kvSortPlaces(reinterpret_cast<char*>(&items[0]), items.size(), sizeof(T), KVPlaceLess{__kvCompare<T, Compare>, &item, asc}, __kvMove<T>);
}
