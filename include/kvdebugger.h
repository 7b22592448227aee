// What a program made for the debugger of kv tells it: variables while they live, the parts of values, and tables of
// places, Types and Globals. Nothing is noted unless a debugger listens (kvdebugger.cpp, which is linked).
#ifndef KV_DEBUGGER_H
#define KV_DEBUGGER_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "kvdebug.h"

namespace kvdebug {

class Items;

// What can be done with values of a C++ type.
struct Handler {
    // Kinds: 'n' whole number, 'd' Double, 'b' Bool, 's' String, 'o' object of a Type, 'e' Element, 'l' list of items,
    // '?' anything else.
    char (*show)(void* at, std::string& text);
    void (*list)(void* at, Items& items);
    bool (*set)(void* at, const char* text);  // false: it cannot be changed
};

struct Value {
    const char* name;  // null: an item, which has a number
    const char* type;  // in Korvel's words; null: the kind says enough
    const Handler* handler;
    void* at;
};

template <class T>
const Handler& HandlerOf();

// Takes the parts of something, one by one; of items only those that are asked for.
class Items {
public:
    std::size_t first, count;  // asked for
    std::size_t total;         // there are
    virtual void Take(const Value& value, std::size_t number) = 0;
    virtual void TakeText(std::size_t number, char kind, const std::string& text) = 0;

    template <class T>
    void Item(const char* name, const char* type, T& value) {
        Take({name, type, &HandlerOf<T>(), Address(value)}, total++);
    }
    // An object of a list, which has a place in it.
    template <class T>
    void Item(std::size_t number, T& value) {
        Take({nullptr, nullptr, &HandlerOf<T>(), Address(value)}, number);
    }
    std::size_t End() const { return count < total - std::min(first, total) ? first + count : total; }

    template <class T>
    static void* Address(T& value) {
        return const_cast<void*>(
            static_cast<const volatile void*>(&reinterpret_cast<const volatile char&>(value)));
    }

protected:
    Items(std::size_t from, std::size_t atMost) : first(from), count(atMost), total(0) {}
    ~Items() = default;
};

// ---- What C++ types are, asked when all of the program has been read ------------------------------------------------

struct AnyClass {};      // nothing is known of it
struct FieldedClass {};  // a Type or Element
struct Sequence {};
struct Slot {};  // of an array of Elements
struct Flag {};  // what stands for a bool

template <int rank>
struct Rank : Rank<rank - 1> {};
template <>
struct Rank<0> {};

template <class T>
auto KindOfClass(Rank<4>)
    -> decltype(std::declval<T&>()._kvDebugFields(std::declval<Items&>()), FieldedClass());
template <class T>
auto KindOfClass(Rank<3>) -> decltype(std::declval<T&>()._items.size(), Sequence());
template <class T>
auto KindOfClass(Rank<2>) -> decltype(std::declval<T&>().operator->(), Slot());
template <class T>
auto KindOfClass(Rank<1>) -> decltype(static_cast<bool>(std::declval<T&>()), Flag());
template <class T>
AnyClass KindOfClass(Rank<0>);

template <class T>
auto IsAlive(T* object, Rank<1>) -> decltype(T::_instances.size(), bool()) {
    return std::find(T::_instances.begin(), T::_instances.end(), object) != T::_instances.end();
}
template <class T>
bool IsAlive(T* object, Rank<0>) {
    return object != nullptr;
}

template <class T>
auto PlaceOf(T* object, Rank<1>) -> decltype(T::_instances.size()) {
    return static_cast<std::size_t>(std::find(T::_instances.begin(), T::_instances.end(), object) -
                                    T::_instances.begin());
}

// "{x = 1, y = 2.5}"
std::string PartsOf(void* at, void (*list)(void* at, Items& items));
std::string NumberText(double value);
bool ReadNumber(const char* text, double& value);

// ---- Values: how they are shown, listed and changed -----------------------------------------------------------------

template <class T, class Kind>
struct OfClass {
    static char Show(T&, std::string& text) {
        text = "[object]";
        return '?';
    }
    static void List(T&, Items&) {}
    static bool Set(T&, const char*) { return false; }
};

template <class T>
char ShowObject(T* object, std::string& text, Rank<1>, decltype(T::_instances)* = nullptr) {
    text = T::_kvDebugName();
    text += IsAlive(object, Rank<1>()) ? "#" + std::to_string(PlaceOf(object, Rank<1>())) : " (removed)";
    return 'o';
}
template <class T>
void ListValue(void* at, Items& items);
template <class T>
char ShowObject(T* element, std::string& text, Rank<0>) {
    text = T::_kvDebugName() + PartsOf(element, ListValue<T>);
    return 'e';
}

template <class T>
struct OfClass<T, FieldedClass> {
    static char Show(T& value, std::string& text) { return ShowObject(&value, text, Rank<1>()); }
    static void List(T& value, Items& items) {
        if (IsAlive(&value, Rank<1>())) value._kvDebugFields(items);
    }
    static bool Set(T&, const char*) { return false; }
};

template <class T>
struct Values : OfClass<T, decltype(KindOfClass<T>(Rank<4>()))> {};

template <class T>
struct OfNumber {
    static char Show(T& value, std::string& text) {
        const bool isDouble = std::is_floating_point<T>::value;
        text = isDouble ? NumberText(static_cast<double>(value)) : std::to_string(value);
        return isDouble ? 'd' : 'n';
    }
    static void List(T&, Items&) {}
    static bool Set(T& value, const char* text) {
        double number = 0;
        if (!ReadNumber(text, number)) return false;
        value = static_cast<T>(number);
        return true;
    }
};

template <class T>
struct OfFlag {
    static char Show(T& value, std::string& text) {
        text = static_cast<bool>(value) ? "True" : "False";
        return 'b';
    }
    static void List(T&, Items&) {}
    static bool Set(T& value, const char* text) {
        double number = 0;
        const bool read = ReadNumber(text, number);
        if (read) value = number != 0;
        return read;
    }
};
template <class T>
struct OfClass<T, Flag> : OfFlag<T> {};

// What stands in a list, by number.
template <class T>
void PutItem(Items& items, std::size_t number, T& item) {
    items.Item(number, item);
}
inline void PutItem(Items& items, std::size_t number, std::vector<bool>::reference&& item) {
    items.TakeText(number, 'b', item ? "True" : "False");
}
template <class T>
struct Values<std::vector<T>> {
    static char Show(std::vector<T>& list, std::string& text) {
        text = "[" + std::to_string(list.size()) + "]";
        return 'l';
    }
    static void List(std::vector<T>& list, Items& items) {
        items.total = list.size();
        for (std::size_t i = items.first; i < items.End(); ++i) PutItem(items, i, list[i]);
    }
    static bool Set(std::vector<T>&, const char*) { return false; }
};
template <class T>
struct OfClass<T, Sequence> {
    typedef Values<decltype(std::declval<T&>()._items)> Inside;
    static char Show(T& value, std::string& text) { return Inside::Show(value._items, text); }
    static void List(T& value, Items& items) { Inside::List(value._items, items); }
    static bool Set(T&, const char*) { return false; }
};
template <class T, std::size_t size>
struct Values<T[size]> {
    static char Show(T (&)[size], std::string& text) {
        text = "[" + std::to_string(size) + "]";
        return 'l';
    }
    static void List(T (&list)[size], Items& items) {
        items.total = size;
        for (std::size_t i = items.first; i < items.End(); ++i) items.Item(i, list[i]);
    }
    static bool Set(T (&)[size], const char*) { return false; }
};

template <class T>
struct OfClass<T, Slot> {
    typedef typename std::remove_reference<decltype(*std::declval<T&>())>::type Inside;
    static char Show(T& value, std::string& text) { return Values<Inside>::Show(*value, text); }
    static void List(T& value, Items& items) { Values<Inside>::List(*value, items); }
    static bool Set(T&, const char*) { return false; }
};

// Of objects, of Elements in arrays, and what is left: arrays that somebody has handed over.
template <class T, class Kind>
struct OfPointer {
    static char Show(T* value, std::string& text) {
        text = value == nullptr ? "Null" : "[array]";
        return '?';
    }
    static void List(T*, Items&) {}
};
template <class T>
struct OfPointer<T, FieldedClass> {
    static char Show(T* value, std::string& text) {
        if (value != nullptr) return Values<T>::Show(*value, text);
        text = "Null";
        return 'o';
    }
    static void List(T* value, Items& items) {
        if (value != nullptr) Values<T>::List(*value, items);
    }
};
template <class T>
struct Values<T*> {
    typedef OfPointer<T, decltype(KindOfClass<T>(Rank<4>()))> Inside;
    static char Show(T*& value, std::string& text) { return Inside::Show(value, text); }
    static void List(T*& value, Items& items) { Inside::List(value, items); }
    static bool Set(T*&, const char*) { return false; }
};
template <>
struct Values<void*> : OfClass<void*, AnyClass> {};
template <>
struct Values<const char*> : OfClass<const char*, AnyClass> {};

template <>
struct Values<bool> : OfFlag<bool> {};
template <>
struct Values<std::string> {
    static char Show(std::string& value, std::string& text) {
        text = value;
        return 's';
    }
    static void List(std::string&, Items&) {}
    static bool Set(std::string& value, const char* text) {
        value = text;
        return true;
    }
};
#define KV_DEBUG_NUMBER(type) \
    template <>               \
    struct Values<type> : OfNumber<type> {};
KV_DEBUG_NUMBER(char)
KV_DEBUG_NUMBER(signed char)
KV_DEBUG_NUMBER(unsigned char)
KV_DEBUG_NUMBER(short)
KV_DEBUG_NUMBER(unsigned short)
KV_DEBUG_NUMBER(int)
KV_DEBUG_NUMBER(unsigned)
KV_DEBUG_NUMBER(long)
KV_DEBUG_NUMBER(unsigned long)
KV_DEBUG_NUMBER(long long)
KV_DEBUG_NUMBER(unsigned long long)
KV_DEBUG_NUMBER(float)
KV_DEBUG_NUMBER(double)
#undef KV_DEBUG_NUMBER

// Bodies of these are made at the end of the program, when every class is known.
template <class T>
char ShowValue(void* at, std::string& text) {
    return Values<T>::Show(*static_cast<T*>(at), text);
}
template <class T>
void ListValue(void* at, Items& items) {
    Values<T>::List(*static_cast<T*>(at), items);
}
template <class T>
bool SetValue(void* at, const char* text) {
    return Values<T>::Set(*static_cast<T*>(at), text);
}
inline bool SetNothing(void*, const char*) { return false; }

template <class T>
const Handler& HandlerOf() {
    typedef typename std::remove_cv<T>::type Plain;
    static const Handler handler = {ShowValue<Plain>, ListValue<Plain>,
                                    std::is_const<T>::value ? SetNothing : SetValue<Plain>};
    return handler;
}

// ---- Variables of the routines under way ----------------------------------------------------------------------------

// Returns how many there were before.
std::size_t NoteLocal(const Value& value);
void ForgetLocals(std::size_t left);

// Lives as long as the variable that is declared before it.
class Local {
public:
    template <class T>
    Local(const char* name, const char* type, T& value) : before(0) {
        if (KV_DEBUG_LISTENS) before = NoteLocal({name, type, &HandlerOf<T>(), Items::Address(value)});
    }
    ~Local() {
        if (KV_DEBUG_LISTENS) ForgetLocals(before);
    }
    Local(const Local&) = delete;
    Local& operator=(const Local&) = delete;

private:
    std::size_t before;
};

// ---- Tables of the program ------------------------------------------------------------------------------------------

struct Places {
    const char *routine, *file, *lines;
};
struct TypeRow {
    const char* name;
    void (*list)(Items& items);
};
struct Program {
    const Places* places;  // the last of a table is empty
    const TypeRow* types;
    void (*listGlobals)(Items& items);
};
extern const Program program;

// All objects of a Type; they have the numbers of their places in its list.
template <class T>
void ListObjects(Items& items) {
    std::size_t alive = 0;
    for (std::size_t i = 0; i < T::_instances.size(); ++i) {
        if (T::_instances[i] == nullptr) continue;
        if (alive >= items.first && alive - items.first < items.count) items.Item(i, *T::_instances[i]);
        ++alive;
    }
    items.total = alive;
}

}  // namespace kvdebug

#endif
