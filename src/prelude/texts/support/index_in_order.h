// Checks the indices of one access one after the other, in the order in which they are worked out.
template<typename A>
struct __kvPicker {
    const char* name;
    A& items;
    int dimension, dimensions;
    auto Item(long long i) -> decltype((items[0])) {
        return items[__kvCheckIndex(i, (long long)items.size(), name, dimension, dimensions)];
    }
    auto Row(long long i) -> __kvPicker<typename std::remove_reference<decltype(items[0])>::type> {
        return {name, Item(i), dimension + 1, dimensions};
    }
};
template<typename A>
__kvPicker<typename std::remove_reference<A>::type> __kvPickIn(const char* name, int dimensions, A&& items) {
    return {name, items, 0, dimensions};
}

