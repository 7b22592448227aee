// Where a Sequence keeps its items: in a std::vector when the compiler optimises. When it does not, the machine code of
// std::vector and std::sort for every Type and Element is most of its work; then these few functions stand in for them.
#ifdef __OPTIMIZE__
template<typename T> using KVItems = std::vector<T>;
template<typename T, typename Less> void __kvSort(std::vector<T>& items, Less less) { std::sort(items.begin(), items.end(), less); }
#else
template<typename T> class KVRow {
    T* _first;
    size_t _used, _room;
    static T* _new(size_t room) { return room ? static_cast<T*>(::operator new(room * sizeof(T))) : nullptr; }
    static void _move(T* from, T* to) { new(to) T(static_cast<T&&>(*from)); from->~T(); }
public:
    typedef T* iterator;
    KVRow() : _first(nullptr), _used(0), _room(0) {}
    KVRow(const KVRow& o) : _first(_new(o._used)), _used(0), _room(o._used) {
        for(; _used < _room; ++_used) new(_first + _used) T(o._first[_used]);
    }
    KVRow(KVRow&& o) : KVRow() { swap(o); }
    KVRow& operator=(KVRow o) { swap(o); return *this; }
    ~KVRow() { clear(); ::operator delete(_first); }
    size_t size() const { return _used; }
    bool empty() const { return _used == 0; }
    T* begin() { return _first; }
    T* end() { return _first + _used; }
    T& operator[](size_t i) { return _first[i]; }
    bool operator==(const KVRow& o) const {
        if(_used != o._used) return false;
        for(size_t i = 0; i < _used; ++i) if(!(_first[i] == o._first[i])) return false;
        return true;
    }
    void clear() { while(_used > 0) _first[--_used].~T(); }
    void push_back(const T& item) { insert(end(), item); }
    void insert(T* place, const T& item) {
        const size_t at = place - _first;
        T copy(item);  // which may be one of these
        T* before = _first;
        if(_used == _room) {
            _room = _room ? _room * 2 : 4;
            _first = _new(_room);
            for(size_t i = 0; i < at; ++i) _move(before + i, _first + i);
        }
        for(size_t i = _used; i > at; --i) _move(before + i - 1, _first + i);
        if(before != _first) ::operator delete(before);
        new(_first + at) T(static_cast<T&&>(copy));
        ++_used;
    }
    void erase(T* place) { erase(place, place + 1); }
    void erase(T* from, T* to) {
        while(to != end()) *from++ = static_cast<T&&>(*to++);
        while(end() != from) _first[--_used].~T();
    }
    template<typename Place> void assign(Place from, Place to) { clear(); for(; from != to; ++from) push_back(*from); }
    void swap(KVRow& o) {
        T* first = _first; _first = o._first; o._first = first;
        const size_t used = _used; _used = o._used; o._used = used;
        const size_t room = _room; _room = o._room; o._room = room;
    }
};
template<typename T> using KVItems = typename std::conditional<std::is_arithmetic<T>::value || std::is_same<T, std::string>::value, std::vector<T>, KVRow<T>>::type;
struct KVPlaceLess {
    bool (*less)(const void*, const void*, const void*);
    const void* how;
    bool operator()(const void* a, const void* b) const { return less(how, a, b); }
};
inline void __kvSortPlaces(std::vector<const void*>& places, KVPlaceLess less) { std::sort(places.begin(), places.end(), less); }
template<typename T, typename Less> struct KVTypedLess {
    static bool Of(const void* how, const void* a, const void* b) {
        return (*static_cast<const Less*>(how))(*static_cast<const T*>(a), *static_cast<const T*>(b));
    }
};
// Compares what std::sort would compare, in the same order, so equal items end up in the same places.
template<typename T, typename Less> void __kvSort(KVItems<T>& items, Less less) {
    std::vector<const void*> places;
    for(size_t i = 0; i < items.size(); ++i) places.push_back(&items[i]);
    __kvSortPlaces(places, KVPlaceLess{KVTypedLess<T, Less>::Of, &less});
    KVItems<T> sorted;
    for(size_t i = 0; i < places.size(); ++i) sorted.push_back(*static_cast<const T*>(places[i]));
    items.swap(sorted);
}
#endif
