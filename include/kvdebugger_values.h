// How values of each C++ type are shown, listed and changed.
#ifndef KV_DEBUGGER_VALUES_H
#define KV_DEBUGGER_VALUES_H

#include <cmath>
#include <limits>

#include "kvdebugger.h"

struct KVAnyObject;

namespace kvdebug {

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

// Types have objects, Elements none.
template <class T>
auto IsType(Rank<1>) -> decltype(T::_instances.size(), std::true_type());
template <class T>
std::false_type IsType(Rank<0>);

template <class T>
auto PlaceOf(T* object, Rank<1>) -> decltype(T::_instances.size()) {
    return static_cast<std::size_t>(std::find(T::_instances.begin(), T::_instances.end(), object) -
                                    T::_instances.begin());
}

// ---- Values: how they are shown, listed and changed -----------------------------------------------------------------

// What most values are not.
struct Simple {
    static const bool opens = false;
    template <class T>
    static void List(T&, Items&) {}
    template <class T>
    static const void* First(T&) {
        return nullptr;
    }
    template <class T>
    static bool Set(T&, const char*) {
        return false;
    }
};

inline char ShowNull(std::string& text) {
    text = "Null";
    return 'o';
}

template <class T, class Kind>
struct OfClass : Simple {
    static char Show(T&, std::string& text) {
        text = "[object]";
        return '?';
    }
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
struct OfClass<T, FieldedClass> : Simple {
    static const bool opens = !decltype(IsType<T>(Rank<1>()))::value;
    static char Show(T& value, std::string& text) { return ShowObject(&value, text, Rank<1>()); }
    static void List(T& value, Items& items) {
        if (IsAlive(&value, Rank<1>())) value._kvDebugFields(items);
    }
};

template <class T>
struct Values : OfClass<T, decltype(KindOfClass<T>(Rank<4>()))> {};

template <class T>
struct OfNumber : Simple {
    static char Show(T& value, std::string& text) {
        const bool isDouble = std::is_floating_point<T>::value;
        text = isDouble ? NumberText(static_cast<double>(value)) : std::to_string(value);
        return isDouble ? 'd' : 'n';
    }
    static bool Set(T& value, const char* text) {
        typedef std::numeric_limits<T> Limits;
        long double number = 0;
        if (!ReadNumber(text, number)) return false;
        if (Limits::is_integer) number = std::trunc(number);
        const bool fits = number >= static_cast<long double>(Limits::lowest()) &&
                          number <= static_cast<long double>(Limits::max());
        if (fits) value = static_cast<T>(number);
        return fits;
    }
};

template <class T>
struct OfFlag : Simple {
    static char Show(T& value, std::string& text) {
        text = static_cast<bool>(value) ? "True" : "False";
        return 'b';
    }
    static bool Set(T& value, const char* text) {
        long double number = 0;
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
    items.TakeFlag(number, item);
}
template <class T>
const void* FirstOf(std::vector<T>& list);
inline const void* FirstOf(std::vector<bool>&) { return nullptr; }

template <class T>
struct Values<std::vector<T>> : Simple {
    static const bool opens = Values<T>::opens;
    static char Show(std::vector<T>& list, std::string& text) {
        text = "[" + std::to_string(list.size()) + "]";
        return 'l';
    }
    static void List(std::vector<T>& list, Items& items) {
        items.total = list.size();
        for (std::size_t i = items.first; i < items.End(); ++i) PutItem(items, i, list[i]);
    }
    static const void* First(std::vector<T>& list) { return FirstOf(list); }
};
template <class T>
const void* FirstOf(std::vector<T>& list) {
    if (list.empty()) return nullptr;
    const void* const inside = Values<T>::First(list[0]);
    return inside != nullptr ? inside : list.data();
}

// What the items of a Sequence are, also where they tell loops of changes.
template <class T>
std::vector<T> AsVector(std::vector<T>&);
template <class T>
struct OfClass<T, Sequence> : Simple {
    typedef Values<decltype(AsVector(std::declval<T&>()._items))> Inside;
    static char Show(T& value, std::string& text) { return Inside::Show(value._items, text); }
    static void List(T& value, Items& items) { Inside::List(value._items, items); }
};
template <class T, std::size_t size>
struct Values<T[size]> : Simple {
    static const bool opens = Values<T>::opens;
    static char Show(T (&)[size], std::string& text) {
        text = "[" + std::to_string(size) + "]";
        return 'l';
    }
    static void List(T (&list)[size], Items& items) {
        items.total = size;
        for (std::size_t i = items.first; i < items.End(); ++i) items.Item(i, list[i]);
    }
    static const void* First(T (&list)[size]) {
        const void* const inside = Values<T>::First(list[0]);
        return inside != nullptr ? inside : list;
    }
};

template <class T>
struct OfClass<T, Slot> : Simple {
    typedef typename std::remove_reference<decltype(*std::declval<T&>())>::type Inside;
    static const bool opens = Values<Inside>::opens;
    static char Show(T& value, std::string& text) { return Values<Inside>::Show(*value, text); }
    static void List(T& value, Items& items) { Values<Inside>::List(*value, items); }
};

// Of objects, of Elements in arrays, and what is left: arrays that a routine has been given. Whose they are says how many
// items they have.
template <class T>
struct Rows {
    static const void* First(T* items) { return items; }
};
template <class T>
struct Rows<T*> {
    typedef decltype(KindOfClass<T>(Rank<4>())) Kind;
    static const void* First(T** items) {
        const bool isTable = !std::is_same<Kind, FieldedClass>::value && !std::is_void<T>::value;
        return isTable && items != nullptr ? Rows<T>::First(items[0]) : items;
    }
};
template <class T, class Kind>
struct OfPointer : Simple {
    static char Show(T* value, std::string& text) {
        Value array = {};
        if (FindArray(Rows<T>::First(value), array)) return array.handler->show(array.at, text);
        text = value == nullptr ? "[0]" : "[array]";
        return '?';
    }
    static void List(T* value, Items& items) {
        Value array = {};
        if (FindArray(Rows<T>::First(value), array)) array.handler->list(array.at, items);
    }
};
template <class T>
struct OfPointer<T, FieldedClass> : Simple {
    static const bool opens = Values<T>::opens;
    static char Show(T* value, std::string& text) {
        return value == nullptr ? ShowNull(text) : Values<T>::Show(*value, text);
    }
    static void List(T* value, Items& items) {
        if (value != nullptr) Values<T>::List(*value, items);
    }
};
template <class T>
struct Values<T*> : Simple {
    typedef OfPointer<T, decltype(KindOfClass<T>(Rank<4>()))> Inside;
    static const bool opens = Inside::opens;
    static char Show(T*& value, std::string& text) { return Inside::Show(value, text); }
    static void List(T*& value, Items& items) { Inside::List(value, items); }
};
template <>
struct Values<void*> : OfClass<void*, AnyClass> {};
template <>
struct Values<KVAnyObject> : OfClass<KVAnyObject, AnyClass> {};
template <>
struct Values<const char*> : OfClass<const char*, AnyClass> {};

template <>
struct Values<bool> : OfFlag<bool> {};
template <>
struct Values<std::string> : Simple {
    static char Show(std::string& value, std::string& text) {
        text = value;
        return 's';
    }
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

// Bodies of these are made at the end of the program, when every class is known. An address is looked at before it becomes
// a reference, of which C++ takes for granted that it is none of nothing.
template <class T>
char ShowValue(void* at, std::string& text) {
    return at == nullptr ? ShowNull(text) : Values<T>::Show(*static_cast<T*>(at), text);
}
template <class T>
void ListValue(void* at, Items& items) {
    if (at != nullptr) Values<T>::List(*static_cast<T*>(at), items);
}
template <class T>
const void* FirstItem(void* at) {
    return at == nullptr ? nullptr : Values<T>::First(*static_cast<T*>(at));
}
template <class T>
bool SetValue(void* at, const char* text) {
    return at != nullptr && Values<T>::Set(*static_cast<T*>(at), text);
}
inline bool SetNothing(void*, const char*) { return false; }

template <class T>
const Handler& HandlerOf() {
    typedef typename std::remove_cv<T>::type Plain;
    static const Handler handler = {ShowValue<Plain>, ListValue<Plain>, FirstItem<Plain>,
                                    Values<Plain>::opens,
                                    std::is_const<T>::value ? SetNothing : SetValue<Plain>};
    return handler;
}

}  // namespace kvdebug

#endif
