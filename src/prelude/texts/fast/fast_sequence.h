// Korvel Sequence container (vector-backed, holds any element type).
// Live Sequences of Type objects are registered so that when an object is deleted
// (Remove) the pointer is scrubbed from all of them - no dangling references.
// Scrubbed slots become null and are skipped by iteration and the cursor.
// Sequences of values need no register. A copy is not registered.
struct KVSeqBase {
    size_t _place;  // in the register, behind its end when not registered
    virtual void _scrub(void* p) = 0;
    virtual ~KVSeqBase() {}
};
inline std::vector<KVSeqBase*>& __kvAllSeqs() { static std::vector<KVSeqBase*>* v = new std::vector<KVSeqBase*>; return *v; }
template<typename Unused> struct KVSeqCount { static size_t live; };
template<typename Unused> size_t KVSeqCount<Unused>::live = 0;
inline void __kvScrubSeqs(void* p) {
    for(size_t i = 0; i < __kvAllSeqs().size(); ++i) __kvAllSeqs()[i]->_scrub(p);
}
template<typename T, bool Pointers> struct KVSeqItems { @Items@<T> _items; };
template<typename T> struct KVSeqItems<T, true> : KVSeqBase {
    @Items@<T> _items;
    KVSeqItems() { _place = KVSeqCount<void>::live++; __kvAllSeqs().push_back(this); }
    KVSeqItems(const KVSeqItems& o) : KVSeqBase(), _items(o._items) { _place = (size_t)-1; }
    KVSeqItems& operator=(const KVSeqItems& o) { _items = o._items; return *this; }
    ~KVSeqItems() {
        auto& all = __kvAllSeqs();
        if(_place >= all.size()) return;
        all[_place] = all.back();
        all[_place]->_place = _place;
        all.pop_back();
        --KVSeqCount<void>::live;
    }
    void _scrub(void* p) { for(auto& e : _items) if((void*)e == p) e = nullptr; }
};
template<typename T>
class KVSeq : public KVSeqItems<T, std::is_pointer<T>::value> {
public:
    using KVSeqItems<T, std::is_pointer<T>::value>::_items;
    size_t _cursor = 0;
    // 'dead' = a scrubbed (null) slot; only pointer element types can be dead
    bool _isDead(const T& v, std::true_type) const { return v == nullptr; }
    bool _isDead(const T&, std::false_type) const { return false; }
    bool _isDead(const T& v) const { return _isDead(v, std::is_pointer<T>()); }
#include "prelude/texts/sequence_members.inc"
    template<typename A> void FromArray(const A& arr) { _items.assign(arr.begin(), arr.end()); _cursor = 0; }
    // Sort: the transpiler picks SortNatural (primitives) or SortCompare (Types/Elements)
    void _compactNulls(std::true_type) { _items.erase(std::remove(_items.begin(), _items.end(), (T)nullptr), _items.end()); }
    void _compactNulls(std::false_type) {}
    void SortNatural(bool asc) {
        if(asc) std::sort(_items.begin(), _items.end(), [](const T& a, const T& b) { return a < b; });
        else std::sort(_items.begin(), _items.end(), [](const T& a, const T& b) { return b < a; });
    }
    struct _Compare {
        static int Of(T& a, const T& b, std::true_type) { return a->KVL_Compare(b); }  // pointer element (Type)
        static int Of(T& a, const T& b, std::false_type) { return a.KVL_Compare(b); }  // value element (Element)
        static int Of(T& a, const T& b) { return Of(a, b, std::is_pointer<T>()); }
    };
    void SortCompare(bool asc) {
        _compactNulls(std::is_pointer<T>());
        __kvSort<T, _Compare>(_items, asc, KVSortsItems<T>());
    }
    typename KVItems<T>::iterator begin() { return _items.begin(); }
    typename KVItems<T>::iterator end() { return _items.end(); }
};

