// What a Type has beside its Fields and Methods.
template<typename T> struct KVTracked {
    static KVInstances<T> _instances;
    static T* First() { return static_cast<T*>(_instances.From(0)); }
    static T* Last() { return static_cast<T*>(_instances.Until(_instances.used)); }
    T* Before() { return static_cast<T*>(_instances.Before(static_cast<T*>(this))); }
    T* After() { return static_cast<T*>(_instances.After(static_cast<T*>(this))); }
    void InsertAfter(T* target) { _instances.Move(static_cast<T*>(this), target, 1); }
    void InsertBefore(T* target) { _instances.Move(static_cast<T*>(this), target, 0); }
};
template<typename T> KVInstances<T> KVTracked<T>::_instances;
