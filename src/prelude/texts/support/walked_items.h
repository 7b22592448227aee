// The items of a Sequence, which tell the loops that walk over them what comes and goes, whoever changes them, and
// when they go themselves, together with the object that holds them.
struct KVWalkBase {
    const void* walked;
    KVWalkBase* outer;
    static KVWalkBase*& Innermost() { static KVWalkBase* innermost = nullptr; return innermost; }
    KVWalkBase(const void* items) : walked(items), outer(Innermost()) { Innermost() = this; }
    KVWalkBase(const KVWalkBase&) = delete;
    virtual ~KVWalkBase() { Innermost() = outer; }
    virtual void Inserted(int at) = 0;
    virtual void Removed(int at) = 0;
    virtual void Replacing() = 0;  // anything may become of them
    template<typename Tell> static void ForAll(const void* items, Tell tell) {
        for(KVWalkBase* walk = Innermost(); walk != nullptr; walk = walk->outer) if(walk->walked == items) tell(*walk);
    }
};
template<typename T>
class KVWalkedItems : public @Items@<T> {
    typedef @Items@<T> Items;
    typedef typename Items::iterator Place;
    void _inserted(int at) { KVWalkBase::ForAll(this, [at](KVWalkBase& walk) { walk.Inserted(at); }); }
    void _removed(int at) { KVWalkBase::ForAll(this, [at](KVWalkBase& walk) { walk.Removed(at); }); }
    void _replacing() { KVWalkBase::ForAll(this, [](KVWalkBase& walk) { walk.Replacing(); }); }
public:
    KVWalkedItems() {}
    KVWalkedItems(const KVWalkedItems& o) : Items(o) {}
    KVWalkedItems(KVWalkedItems&& o) : Items(std::move(o)) { o._replacing(); }
    KVWalkedItems& operator=(const KVWalkedItems& o) { _replacing(); Items::operator=(o); return *this; }
    KVWalkedItems& operator=(KVWalkedItems&& o) { _replacing(); o._replacing(); Items::operator=(std::move(o)); return *this; }
    ~KVWalkedItems() { KVWalkBase::ForAll(this, [](KVWalkBase& walk) { walk.walked = nullptr; }); }
    void push_back(const T& item) { Items::push_back(item); _inserted((int)this->size() - 1); }
    template<typename... Parts> void emplace_back(Parts&&... parts) {
        Items::emplace_back(std::forward<Parts>(parts)...);
        _inserted((int)this->size() - 1);
    }
    Place insert(Place place, const T& item) {
        const int at = (int)(place - this->begin());
        Items::insert(place, item);
        _inserted(at);
        return this->begin() + at;
    }
    Place insert(Place place, T&& item) { return insert(place, static_cast<const T&>(item)); }
    Place erase(Place place) {
        const int at = (int)(place - this->begin());
        Items::erase(place);
        _removed(at);
        return this->begin() + at;
    }
    Place erase(Place from, Place to) {
        const int at = (int)(from - this->begin());
        _replacing();
        Items::erase(from, to);
        return this->begin() + at;
    }
    // What inline C++ does otherwise is found by the items.
    using Items::operator=;
    using Items::insert;
    using Items::erase;
    using Items::assign;
    using Items::swap;
    void clear() { _replacing(); Items::clear(); }
    template<typename From> void assign(From from, From to) { _replacing(); Items::assign(from, to); }
    void swap(KVWalkedItems& o) { _replacing(); o._replacing(); Items::swap(o); }
};
