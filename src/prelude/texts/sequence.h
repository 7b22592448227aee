// Korvel Sequence container (vector-backed, holds any element type).
// For Sequences of Type objects, every live Sequence is registered so that when
// an object is deleted (Remove) its destructor scrubs the pointer from all
// Sequences - no dangling references. Scrubbed slots become null and are
// skipped by iteration and the cursor.
struct KVSeqBase { virtual void _scrub(void* p) { (void)p; } virtual ~KVSeqBase() {} };
inline std::vector<KVSeqBase*>& __kvAllSeqs() { static std::vector<KVSeqBase*> v; return v; }
template<typename T>
class KVSeq : public KVSeqBase {
public:
    @Items@<T> _items;
    size_t _cursor = 0;
    KVSeq() { __kvAllSeqs().push_back(this); }
    ~KVSeq() {
        auto it = std::find(__kvAllSeqs().begin(), __kvAllSeqs().end(), this);
        if(it != __kvAllSeqs().end()) __kvAllSeqs().erase(it);
    }
    // 'dead' = a scrubbed (null) slot; only pointer element types can be dead
    bool _isDead(const T& v, std::true_type) const { return v == nullptr; }
    bool _isDead(const T&, std::false_type) const { return false; }
    bool _isDead(const T& v) const { return _isDead(v, std::is_pointer<T>()); }
    void _scrubImpl(void* p, std::true_type) { for(auto& e : _items) if((void*)e == p) e = nullptr; }
    void _scrubImpl(void* p, std::false_type) { (void)p; }
    void _scrub(void* p) { _scrubImpl(p, std::is_pointer<T>()); }
#include "prelude/texts/sequence_members.inc"
    void FromArray(const std::vector<T>& arr) { _items.assign(arr.begin(), arr.end()); _cursor = 0; }
    // Sort: the transpiler picks SortNatural (primitives) or SortCompare (Types/Elements)
    void _compactNulls(std::true_type) { _items.erase(std::remove(_items.begin(), _items.end(), (T)nullptr), _items.end()); }
    void _compactNulls(std::false_type) {}
    void SortNatural(bool asc) {
        std::sort(_items.begin(), _items.end(), [asc](const T& a, const T& b) { return asc ? (a < b) : (b < a); });
    }
    void _cmpSort(bool asc, std::true_type) {  // pointer element (Type): a->Compare(b)
        _compactNulls(std::true_type());
        std::sort(_items.begin(), _items.end(), [asc](const T& a, const T& b) { int c = a->KVL_Compare(b); return asc ? (c < 0) : (c > 0); });
    }
    void _cmpSort(bool asc, std::false_type) {  // value element (Element): a.Compare(b)
        std::sort(_items.begin(), _items.end(), [asc](const T& a, const T& b) { T tmp = a; int c = tmp.KVL_Compare(b); return asc ? (c < 0) : (c > 0); });
    }
    void SortCompare(bool asc) { _cmpSort(asc, std::is_pointer<T>()); }
    typename std::vector<T>::iterator begin() { return _items.begin(); }
    typename std::vector<T>::iterator end() { return _items.end(); }
};

