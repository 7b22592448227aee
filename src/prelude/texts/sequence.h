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
    std::vector<T> _items;
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
    void Add(const T& v) { _items.push_back(v); }
    void InsertAt(int i, const T& v) {
        if(i < 0) i = 0;
        if((size_t)i > _items.size()) i = (int)_items.size();
        _items.insert(_items.begin() + i, v);
    }
    void Set(int i, const T& v) { if(i >= 0 && (size_t)i < _items.size()) _items[i] = v; }
    T Get(int i) { if(i >= 0 && (size_t)i < _items.size()) return _items[i]; return T(); }
    int Length() { return (int)_items.size(); }
    void Clear() { _items.clear(); _cursor = 0; }
    void DeleteAt(int i) { if(i >= 0 && (size_t)i < _items.size()) _items.erase(_items.begin() + i); }
    void DeleteValue(const T& v) {
        auto it = std::find(_items.begin(), _items.end(), v);
        if(it != _items.end()) _items.erase(it);
    }
    T First() {
        for(size_t i = 0; i < _items.size(); i++) if(!_isDead(_items[i])) { _cursor = i; return _items[i]; }
        _cursor = _items.size(); return T();
    }
    T Last() {
        for(size_t i = _items.size(); i > 0; i--) if(!_isDead(_items[i-1])) { _cursor = i-1; return _items[i-1]; }
        _cursor = 0; return T();
    }
    T Next() {
        for(size_t i = _cursor + 1; i < _items.size(); i++) if(!_isDead(_items[i])) { _cursor = i; return _items[i]; }
        _cursor = _items.size(); return T();
    }
    T Before() {
        for(size_t i = _cursor; i > 0; i--) if(!_isDead(_items[i-1])) { _cursor = i-1; return _items[i-1]; }
        return T();
    }
    // Either end, membership and whole-list operations
    void AddFirst(const T& v) { _items.insert(_items.begin(), v); }
    int IsEmpty() { return _items.empty() ? 1 : 0; }
    int Find(const T& v) { for(size_t i = 0; i < _items.size(); i++) if(_items[i] == v) return (int)i; return -1; }
    int Contains(const T& v) { return Find(v) >= 0 ? 1 : 0; }
    T RemoveFirst() { for(size_t i = 0; i < _items.size(); i++) if(!_isDead(_items[i])) { T v = _items[i]; _items.erase(_items.begin() + i); return v; } return T(); }
    T RemoveLast() { for(size_t i = _items.size(); i > 0; i--) if(!_isDead(_items[i-1])) { T v = _items[i-1]; _items.erase(_items.begin() + (i-1)); return v; } return T(); }
    void Reverse() { std::reverse(_items.begin(), _items.end()); }
    void Swap(KVSeq<T>& other) { _items.swap(other._items); size_t tc = _cursor; _cursor = other._cursor; other._cursor = tc; }
    std::vector<T> ToArray() { std::vector<T> out; for(size_t i = 0; i < _items.size(); i++) if(!_isDead(_items[i])) out.push_back(_items[i]); return out; }
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

