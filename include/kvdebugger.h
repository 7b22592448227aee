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
    const void* (*first)(void* at);  // of an array: its first item, or that of its first row; else null
    bool opens;                      // arrays may be found among its parts, which no object has
    bool (*set)(void* at, const char* text);  // false: it cannot be changed
};

struct Value {
    const char* name;  // null: an item, which has a number
    const char* type;  // in Korvel's words; null: the kind says enough
    const Handler* handler;
    void* at;  // null: the object is Null
};

template <class T>
const Handler& HandlerOf();

// "{x = 1, y = 2.5}"
std::string PartsOf(void* at, void (*list)(void* at, Items& items));
std::string NumberText(double value);
bool ReadNumber(const char* text, long double& value);
// The array that the variables, Globals or objects of the program have there; false where none is known.
bool FindArray(const void* first, Value& array);

// Takes the parts of something, one by one; of items only those that are asked for.
class Items {
public:
    std::size_t first, count;  // asked for
    std::size_t total;         // there are
    virtual void Take(const Value& value, std::size_t number) = 0;
    virtual void TakeFlag(std::size_t number, std::vector<bool>::reference flag) = 0;

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

}  // namespace kvdebug

#include "kvdebugger_values.h"

namespace kvdebug {

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
    // `this`, which is no variable, and Null where a Method is called on a Null object.
    template <class T>
    Local(const char* name, const char* type, T*&& self) : before(0) {
        if (KV_DEBUG_LISTENS) before = NoteLocal({name, type, &HandlerOf<T>(), self});
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

// Of no routine and file: the names that are known everywhere. Of no routine: what `its` means in these lines.
struct Places {
    const char *routine, *file, *lines, *names;
};
struct TypeRow {
    const char* name;
    void (*list)(Items& items);
};
struct Program {
    const Places* places;  // the last of a table is empty
    const TypeRow* types;
    void (*listGlobals)(Items& items);
    void (*listConsts)(Items& items);
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
