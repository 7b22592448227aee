// A loop over a Sequence that its body changes. The item of a round is a copy, written back when the body
// has altered it. Who inserts or removes tells the walk first, so that every item that stays is met once;
// items that are new at the end are not met.
template<typename T>
class KVSeqWalk {
public:
    T item;
    explicit KVSeqWalk(KVSeq<T>& walked)
        : item(), _seq(walked), _original(), _index(0), _end(walked.Length()), _here(false) { _load(); }
    ~KVSeqWalk() { Store(); }
    bool HasItem() const { return _index < _end && _index < _seq.Length(); }
    void Next() { Store(); ++_index; _load(); }
    void Store() {
        if(!_here || _index >= _seq.Length() || item == _original) return;
        _seq._items[_index] = item;
        _original = item;
    }
    void Leave() { Store(); _here = false; }
    int Inserting(int at) {
        Store();
        if(at <= _index) { ++_index; ++_end; }
        return at;
    }
    void InsertingFirst() { Inserting(0); }
    int Removing(int at) {
        Store();
        if(at < 0 || at >= _seq.Length()) return at;
        if(at == _index) _here = false;
        if(at <= _index) --_index;
        if(at < _end) --_end;
        return at;
    }
    const T& RemovingValue(const T& value) {
        Store();
        Removing(_seq.Find(value));
        return value;
    }
    int Setting(int at) {
        Store();
        if(at == _index) _here = false;
        return at;
    }
private:
    KVSeq<T>& _seq;
    T _original;
    int _index, _end;
    bool _here;  // the item still has its place in the Sequence
    void _load() {
        _here = HasItem();
        if(!_here) return;
        item = _seq._items[_index];
        _original = item;
    }
    KVSeqWalk(const KVSeqWalk&);
    KVSeqWalk& operator=(const KVSeqWalk&);
};

