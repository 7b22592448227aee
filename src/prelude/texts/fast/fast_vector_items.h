// Inline C++ may take a Sequence's items for what they are, and destructors of Elements tell of every copy.
template<typename T> using KVItems = std::vector<T>;
template<typename T> using KVSortsItems = std::true_type;
template<typename T, typename Compare> void __kvSort(std::vector<T>& items, bool asc, std::true_type) {
    if(asc) std::sort(items.begin(), items.end(), [](const T& a, const T& b) { T item = a; return Compare::Of(item, b) < 0; });
    else std::sort(items.begin(), items.end(), [](const T& a, const T& b) { T item = a; return Compare::Of(item, b) > 0; });
}
