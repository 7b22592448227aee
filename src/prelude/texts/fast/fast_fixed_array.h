// An array of known size that lies where it is declared.
template<typename T, size_t N> struct KVArray {
    T items[N];
    size_t size() const { return N; }
    bool empty() const { return false; }
    T* data() { return items; }
    T& operator[](size_t i) { return items[i]; }
    T& at(size_t i) { return items[i]; }
    const T& operator[](size_t i) const { return items[i]; }
    T* begin() { return items; }
    T* end() { return items + N; }
    const T* begin() const { return items; }
    const T* end() const { return items + N; }
};
// Such an array and such tables as arguments, see the code for arrays on their way between routines.
template<typename T> struct __kvPassed;
template<typename T> struct __kvRowList;
template<typename T> struct __kvPlaneList;
template<typename T, size_t N>
typename __kvPassed<T>::type* __kvItems(KVArray<T, N>& items) {
    return reinterpret_cast<typename __kvPassed<T>::type*>(items.items);
}
template<typename T, size_t N, size_t M>
__kvRowList<typename __kvPassed<T>::type> __kvRows(KVArray<KVArray<T, M>, N>& table) {
    __kvRowList<typename __kvPassed<T>::type> list;
    for(size_t i = 0; i < N; ++i) list.rows.push_back(__kvItems(table[i]));
    return list;
}
template<typename T, size_t N, size_t M, size_t K>
__kvPlaneList<typename __kvPassed<T>::type> __kvRows(KVArray<KVArray<KVArray<T, K>, M>, N>& table) {
    __kvPlaneList<typename __kvPassed<T>::type> list;
    for(size_t i = 0; i < N; ++i) list.planes.push_back(__kvRows(table[i]));
    return list;
}

