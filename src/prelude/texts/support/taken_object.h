// It becomes one of its Type again, or Null where another Type is wanted.
template<typename T> KVAnyObject::operator T*() const {
    if(_object == nullptr || _type == __kvTypeMark<T>()) return static_cast<T*>(_object);
#ifdef KV_MISUSE
    KV_MISUSE(true, "an object of another Type than it is taken for counts as Null");
#endif
    return nullptr;
}
inline bool operator==(const KVAnyObject& a, const KVAnyObject& b) { return a._object == b._object; }
inline bool operator==(const KVAnyObject& a, std::nullptr_t) { return a._object == nullptr; }
inline bool operator==(std::nullptr_t, const KVAnyObject& a) { return a._object == nullptr; }
template<typename T> bool operator==(const KVAnyObject& a, T* b) { return a._object == b; }
template<typename T> bool operator==(T* a, const KVAnyObject& b) { return a == b._object; }
template<typename T> bool operator!=(const KVAnyObject& a, const T& b) { return !(a == b); }
template<typename T> bool operator!=(T* a, const KVAnyObject& b) { return !(a == b); }
inline std::ostream& operator<<(std::ostream& out, const KVAnyObject& any) { return out << any._object; }
