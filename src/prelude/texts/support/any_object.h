// An object of any Type.
#ifndef KV_ANY_OBJECT
#define KV_ANY_OBJECT
template<typename T> const void* __kvTypeMark() { static char mark; return &mark; }
struct KVAnyObject {
    void* _object;
    const void* _type;
    constexpr KVAnyObject(std::nullptr_t = nullptr) : _object(nullptr), _type(nullptr) {}
    template<typename T> KVAnyObject(T* object) : _object(object), _type(__kvTypeMark<T>()) {}
    template<typename T> operator T*() const;
    explicit operator bool() const { return _object != nullptr; }
};
#endif
