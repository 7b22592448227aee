// Arrays on their way between routines. An array handed back by a Function is a pointer; its size
// stands in front of the items, and whoever receives it takes the items over and frees the block.
template<typename T> struct __kvStored { typedef T type; };  // an item as variables keep it
template<typename T> struct __kvPassed { typedef T type; };  // an item as parameters see it
const size_t __kvHeader = 16;                                // keeps the items aligned
template<typename T>
T* __kvNewArray(long long n) {
    size_t count = n > 0 ? (size_t)n : 0;
    if(count > ((size_t)-1 - __kvHeader) / sizeof(T)) throw std::bad_alloc();
    char* block = static_cast<char*>(::operator new(__kvHeader + count * sizeof(T)));
    *reinterpret_cast<size_t*>(block) = count;
    T* items = reinterpret_cast<T*>(block + __kvHeader);
    for(size_t i = 0; i < count; ++i) new (static_cast<void*>(items + i)) T();
    return items;
}
template<typename T>
T** __kvNewArray2(long long n, long long m) {
    T** rows = __kvNewArray<T*>(n);
    for(long long i = 0; i < n; ++i) rows[i] = __kvNewArray<T>(m);
    return rows;
}
template<typename T>
T*** __kvNewArray3(long long n, long long m, long long k) {
    T*** planes = __kvNewArray<T**>(n);
    for(long long i = 0; i < n; ++i) planes[i] = __kvNewArray2<T>(m, k);
    return planes;
}
template<typename T>
size_t __kvArraySize(T* items) {
    return items ? *reinterpret_cast<size_t*>(reinterpret_cast<char*>(items) - __kvHeader) : 0;
}
template<typename T>
void __kvFreeArray(T* items) {
    if(!items) return;
    for(size_t i = __kvArraySize(items); i > 0; --i) items[i - 1].~T();
    ::operator delete(static_cast<void*>(reinterpret_cast<char*>(items) - __kvHeader));
}
// The items of a Sequence as an array handed back by a Function would come.
template<typename T>
T* __kvFresh(const std::vector<T>& items) {
    T* fresh = __kvNewArray<T>((long long)items.size());
    for(size_t i = 0; i < items.size(); ++i) fresh[i] = items[i];
    return fresh;
}
template<typename T>
T** __kvFreshSlots(const std::vector<T>& items) {
    T** fresh = __kvNewArray<T*>((long long)items.size());
    for(size_t i = 0; i < items.size(); ++i) fresh[i] = new T(items[i]);
    return fresh;
}
// The 2 and 3 are numbers of dimensions: an array of objects is a T** of one dimension.
template<typename T>
std::vector<typename __kvStored<T>::type> __kvTakeArray(T* items) {
    std::vector<typename __kvStored<T>::type> taken;
    taken.reserve(__kvArraySize(items));
    for(size_t i = 0; i < __kvArraySize(items); ++i) taken.push_back(std::move(items[i]));
    __kvFreeArray(items);
    return taken;
}
template<typename T>
std::vector<std::vector<typename __kvStored<T>::type>> __kvTakeArray2(T** rows) {
    std::vector<std::vector<typename __kvStored<T>::type>> taken;
    for(size_t i = 0; i < __kvArraySize(rows); ++i) taken.push_back(__kvTakeArray(rows[i]));
    __kvFreeArray(rows);
    return taken;
}
template<typename T>
std::vector<std::vector<std::vector<typename __kvStored<T>::type>>> __kvTakeArray3(T*** planes) {
    std::vector<std::vector<std::vector<typename __kvStored<T>::type>>> taken;
    for(size_t i = 0; i < __kvArraySize(planes); ++i) taken.push_back(__kvTakeArray2(planes[i]));
    __kvFreeArray(planes);
    return taken;
}
// The items of an array variable, or of a taken array until the end of the full expression.
template<typename T>
typename __kvPassed<T>::type* __kvItems(std::vector<T>& items) {
    return reinterpret_cast<typename __kvPassed<T>::type*>(items.data());
}
template<typename T>
typename __kvPassed<T>::type* __kvItems(std::vector<T>&& items) { return __kvItems(items); }
// Pointers to the rows of a table; they live to the end of the full expression.
template<typename T>
struct __kvRowList {
    std::vector<T*> rows;
    operator T**() { return rows.data(); }
};
template<typename T>
struct __kvPlaneList {
    std::vector<__kvRowList<T>> planes;
    std::vector<T**> heads;
    operator T***() {
        heads.clear();
        for(size_t i = 0; i < planes.size(); ++i) heads.push_back(planes[i].rows.data());
        return heads.data();
    }
};
template<typename T>
__kvRowList<typename __kvPassed<T>::type> __kvRows(std::vector<std::vector<T>>& table) {
    __kvRowList<typename __kvPassed<T>::type> list;
    for(size_t i = 0; i < table.size(); ++i) list.rows.push_back(__kvItems(table[i]));
    return list;
}
template<typename T>
__kvPlaneList<typename __kvPassed<T>::type> __kvRows(std::vector<std::vector<std::vector<T>>>& table) {
    __kvPlaneList<typename __kvPassed<T>::type> list;
    for(size_t i = 0; i < table.size(); ++i) list.planes.push_back(__kvRows(table[i]));
    return list;
}
template<typename T>
__kvRowList<typename __kvPassed<T>::type> __kvRows(std::vector<std::vector<T>>&& table) { return __kvRows(table); }
template<typename T>
__kvPlaneList<typename __kvPassed<T>::type> __kvRows(std::vector<std::vector<std::vector<T>>>&& table) {
    return __kvRows(table);
}
template<typename T, size_t N, size_t M>
__kvRowList<T> __kvRows(T (&table)[N][M]) {
    __kvRowList<T> list;
    for(size_t i = 0; i < N; ++i) list.rows.push_back(table[i]);
    return list;
}
template<typename T, size_t N, size_t M, size_t K>
__kvPlaneList<T> __kvRows(T (&table)[N][M][K]) {
    __kvPlaneList<T> list;
    for(size_t i = 0; i < N; ++i) list.planes.push_back(__kvRows(table[i]));
    return list;
}

