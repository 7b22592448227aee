// No code that kvt does not see asks for the objects in the lists one by one.
template<typename T> using KVInstances = KVInstanceList;
struct KVCreatedList { void push_back(void*) {} };
template<typename T> struct KVCreated : KVCreatedList {};
