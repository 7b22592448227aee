// Size of an array that is worked out when the program runs.
inline int __kvSize(long long size, const char* name) {
    if(size >= 0 && size <= 2147483647LL) return (int)size;
    std::cout.flush();
    std::cerr << "Array size " << (size < 0 ? "cannot be negative: " : "is too large: ") << name << "[" << size << "]" << std::endl;
    @End@(1);
}
