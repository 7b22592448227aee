// A loop over a Sequence that changes meanwhile. The item of a round is a copy, written back when the body
// has altered it: before others look at the Sequence, or change it. The Sequence tells the walk what comes and
// goes. Where all items are replaced, the walk finds its place again by them. Every item that stays is met once;
// those that are added meanwhile are not met. The loop ends when the Sequence goes.
template<typename T>
class KVSeqWalk : private KVWalkBase {
public:
    T item;
    struct Absence {
        KVSeqWalk& walk;
        ~Absence() { walk.Back(); }
    };
    explicit KVSeqWalk(KVSeq<T>& walked)
        : KVWalkBase(&walked._items), item(), _seq(walked), _original(), _next(), _last(), _index(0), _end(walked.Length()), _length(_end), _here(false), _replaced(false), _added() {
        _load();
    }
    ~KVSeqWalk() { Store(); }
    bool HasItem() const { return _index < _end && _index < _size(); }
    void Next() {
        Store();
        do ++_index; while(!_added.empty() && std::find(_added.begin(), _added.end(), _index) != _added.end());
        _load();
    }
    void Store() {
        Back();
        if(!_here || item == _original) return;
        _seq._items[_index] = item;
        _original = item;
        _mark();
    }
    Absence Away() {
        Store();
        _mark();
        return {*this};
    }
    void Back() {
        const int more = _size() - _length;
        _replaced = false;
        if(more == 0) {
            if(_here && !_holds(_index, _original)) _reload();
            return;
        }
        const bool stayed = _here && _holds(_index, _original);
        if(!stayed && _here && _holds(_index + more, _original)) _index += more;
        else if(!stayed && _here && more > 0) _reload();
        else if(!stayed) {
            _index = _placeOfNext(more) - 1;
            _here = false;
        }
        _follow(more);
    }
    void Leave() { Store(); _added.clear(); _here = false; }
    // The argument of a call that changes the Sequence, behind which the item is stored.
    template<typename A> const A& Storing(const A& argument) { Store(); return argument; }
    // The same of a Sequence that may not be the one that is walked any more.
    void Leave(KVSeq<T>& seq) { if(&seq == &_seq) Leave(); }
    void Store(KVSeq<T>& seq) { if(&seq == &_seq) Store(); }
    template<typename A> const A& Storing(KVSeq<T>& seq, const A& argument) { Store(seq); return argument; }
private:
    KVSeq<T>& _seq;
    T _original, _next, _last;  // the item as the Sequence has it, the one behind it, the last one to be met
    int _index, _end, _length;
    bool _here;  // the item still has its place in the Sequence
    bool _replaced;  // there may be other items since the walk last looked, which it has not been told of
    std::vector<int> _added;  // places of what was put in front of items to come
    int _size() const { return this->walked == nullptr ? 0 : _seq.Length(); }
    void Inserted(int at) {
        if(_replaced) return;
        for(size_t i = 0; i < _added.size(); ++i) if(_added[i] >= at) ++_added[i];
        if(at > _index && at < _end) _added.push_back(at);
        if(at <= _index) ++_index;
        if(at < _end) ++_end;
        ++_length;
    }
    void Removed(int at) {
        if(_replaced) return;
        _added.resize(std::remove(_added.begin(), _added.end(), at) - _added.begin());
        for(size_t i = 0; i < _added.size(); ++i) if(_added[i] > at) --_added[i];
        if(at == _index) _here = false;
        if(at <= _index) --_index;
        if(at < _end) --_end;
        --_length;
    }
    void Replacing() {
        if(!_replaced) _mark();
        _replaced = true;
    }
    bool _holds(int at, const T& value) const { return at >= 0 && at < _size() && _seq._items[at] == value; }
    void _mark() {
        if(_index + 1 < _end && _index + 1 < _size()) _next = _seq._items[_index + 1];
        if(_end > 0 && _end <= _size()) _last = _seq._items[_end - 1];
    }
    void _load() {
        _length = _size();
        _here = HasItem();
        if(!_here) return;
        item = _seq._items[_index];
        _original = item;
        _mark();
    }
    // The item was changed where it stands; an item that the body has just altered is newer.
    void _reload() {
        if(item == _original) item = _seq._items[_index];
        _original = _seq._items[_index];
    }
    // Where the item behind this one is now, when this one is gone or was before.
    int _placeOfNext(int more) const {
        const int was = _index + 1;
        if(was >= _end) return was;
        for(int i = 0; i <= (more < 0 ? -more : more); ++i) {
            if(_holds(was - i, _next)) return was - i;
            if(more > 0 && _holds(was + i, _next)) return was + i;
        }
        return more < 0 && _here ? was - 1 : was;
    }
    void _follow(int more) {
        _added.clear();
        _length = _size();
        if(_end > 0 && !_holds(_end - 1, _last) && (more < 0 || _holds(_end - 1 + more, _last))) _end += more;
        _mark();
    }
    KVSeqWalk(const KVSeqWalk&);
    KVSeqWalk& operator=(const KVSeqWalk&);
};

