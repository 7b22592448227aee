// Bounds checks. __kvCheckIndex returns its index when it is in range; __kvAt checks the indices of one
// access from the first dimension to the last and yields the item. What tells of a failure stands apart,
// so that little code is left at each access.
#if defined(__GNUC__)
#define KV_APART __attribute__((noinline, cold, noreturn))
#define KV_INSIDE inline __attribute__((always_inline))
#else
#define KV_APART
#define KV_INSIDE inline
#endif
template<typename Unused>
KV_APART void __kvIndexError(long long index, long long size, const char* name, int dimension, int dimensions) {
    std::cerr << "Array bounds error: " << name << "[" << index << "]" << (dimension + 1 < dimensions ? "[...]" : "")
              << " dimension " << dimension << " out of range [0, " << (size - 1) << "]" << std::endl;
    @End@(1);
}
KV_INSIDE long long __kvCheckIndex(long long index, long long size, const char* name, int dimension, int dimensions) {
    if((unsigned long long)index >= (unsigned long long)size) __kvIndexError<void>(index, size, name, dimension, dimensions);
    return index;
}
template<typename A>
KV_INSIDE auto __kvAt(const char* name, A&& items, long long i, long long n) -> decltype((items[0])) {
    __kvCheckIndex(i, n, name, 0, 1);
    return items[i];
}
template<typename A>
KV_INSIDE auto __kvAt(const char* name, A&& items, long long i, long long n, long long j, long long m) -> decltype((items[0][0])) {
    __kvCheckIndex(i, n, name, 0, 2);
    __kvCheckIndex(j, m, name, 1, 2);
    return items[i][j];
}
template<typename A>
KV_INSIDE auto __kvAt(const char* name, A&& items, long long i, long long n, long long j, long long m, long long k, long long l)
    -> decltype((items[0][0][0])) {
    __kvCheckIndex(i, n, name, 0, 3);
    __kvCheckIndex(j, m, name, 1, 3);
    __kvCheckIndex(k, l, name, 2, 3);
    return items[i][j][k];
}

// The same for arrays that know their sizes.
template<typename A>
KV_INSIDE auto __kvPick(const char* name, A&& items, long long i) -> decltype((items[0])) {
    return __kvAt(name, items, i, (long long)items.size());
}
template<typename A>
KV_INSIDE auto __kvPick(const char* name, A&& items, long long i, long long j) -> decltype((items[0][0])) {
    __kvCheckIndex(i, (long long)items.size(), name, 0, 2);
    __kvCheckIndex(j, (long long)items[i].size(), name, 1, 2);
    return items[i][j];
}
template<typename A>
KV_INSIDE auto __kvPick(const char* name, A&& items, long long i, long long j, long long k) -> decltype((items[0][0][0])) {
    __kvCheckIndex(i, (long long)items.size(), name, 0, 3);
    __kvCheckIndex(j, (long long)items[i].size(), name, 1, 3);
    __kvCheckIndex(k, (long long)items[i][j].size(), name, 2, 3);
    return items[i][j][k];
}
