// An array item that holds an Element behind a pointer: made with the array, copied and compared by
// value, and freed with it. Nothing but the pointer is stored, so that the array passes as T**.
template<typename T>
class KVSlot {
public:
    KVSlot() : item(new T()) {}
    KVSlot(const KVSlot& other) : item(new T(*other)) {}
    KVSlot(KVSlot&& other) noexcept : item(other.item) { other.item = nullptr; }
    explicit KVSlot(T* adopted) : item(adopted) {}
    ~KVSlot() { delete item; }
    KVSlot& operator=(KVSlot other) noexcept { std::swap(item, other.item); return *this; }
    T* operator->() const { return item; }
    T& operator*() const { return *item; }
    operator T*() const { return item; }
    friend bool operator==(const KVSlot& a, const KVSlot& b) { return *a == *b; }
private:
    T* item;
};
template<typename T> struct __kvPassed<KVSlot<T>> { typedef T* type; };
// Take over an array of Elements that a Function hands back, the Elements included.
template<typename T>
std::vector<KVSlot<T>> __kvTakeSlots(T** items) {
    std::vector<KVSlot<T>> taken;
    taken.reserve(__kvArraySize(items));
    for(size_t i = 0; i < __kvArraySize(items); ++i) taken.emplace_back(items[i]);
    __kvFreeArray(items);
    return taken;
}
template<typename T>
std::vector<std::vector<KVSlot<T>>> __kvTakeSlots2(T*** rows) {
    std::vector<std::vector<KVSlot<T>>> taken;
    for(size_t i = 0; i < __kvArraySize(rows); ++i) taken.push_back(__kvTakeSlots(rows[i]));
    __kvFreeArray(rows);
    return taken;
}
template<typename T>
std::vector<std::vector<std::vector<KVSlot<T>>>> __kvTakeSlots3(T**** planes) {
    std::vector<std::vector<std::vector<KVSlot<T>>>> taken;
    for(size_t i = 0; i < __kvArraySize(planes); ++i) taken.push_back(__kvTakeSlots2(planes[i]));
    __kvFreeArray(planes);
    return taken;
}

