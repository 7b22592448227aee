// Inline C++ may take a Sequence's items for what they are, and destructors of Elements tell of every copy.
template<typename T> using KVItems = std::vector<T>;
template<typename T, typename Less> void __kvSort(std::vector<T>& items, Less less) { std::sort(items.begin(), items.end(), less); }
