// Helper functions for Type iteration
template<typename T>
inline T __Before__(std::vector<T>& list, T instance) {
    auto it = std::find(list.begin(), list.end(), instance);
    if (it != list.begin() && it != list.end()) {
        return *(it - 1);
    }
    return nullptr;
}

template<typename T>
inline T __After__(std::vector<T>& list, T instance) {
    auto it = std::find(list.begin(), list.end(), instance);
    if (it != list.end() && (it + 1) != list.end()) {
        return *(it + 1);
    }
    return nullptr;
}

