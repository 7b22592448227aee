// An item of a Bool array: a bool of its own, so that the array can be handed on as bool*.
struct KVBool {
    bool v;
    KVBool(bool value = false) : v(value) {}
    KVBool(const std::vector<bool>::reference& bit) : v(bit) {}
    operator bool&() { return v; }
    operator bool() const { return v; }
};
template<typename T> struct __kvStored;
template<> struct __kvStored<bool> { typedef KVBool type; };
template<typename T> struct __kvPassed;
template<> struct __kvPassed<KVBool> { typedef bool type; };

