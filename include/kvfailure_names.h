// Routines of the program as their names in C++ tell them. A part of kvfailure.cpp.
#ifndef KV_FAILURE_NAMES_H
#define KV_FAILURE_NAMES_H

#include <cstddef>
#include <cstring>

#include "kvfailure_lines.h"

namespace {

struct Word {
    const char* text;
    std::size_t size;
};

bool StartsWith(const char* text, const char* start) {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

Word WithoutPrefix(Word word) {
    const bool prefixed = word.size > 4 && StartsWith(word.text, "KVL_");
    return prefixed ? Word{word.text + 4, word.size - 4} : word;
}

// "6KVL_Do" moves on behind it.
bool TakeWord(const char*& mangled, Word& word) {
    std::size_t size = 0;
    const char* at = mangled;
    for (; *at >= '0' && *at <= '9'; ++at) size = size * 10 + static_cast<std::size_t>(*at - '0');
    if (size == 0 || size > std::strlen(at)) return false;
    word = {at, size};
    mangled = at + size;
    return true;
}

// "_ZN11KVL_TPlayer8KVL_MoveEi", "_Z8KVL_Drawv", with a lambda or a local inside it "_ZZ..."; a Function that nobody
// else can call has its plain name.
struct Name {
    explicit Name(const char* text) : first{text, std::strlen(text)}, rest(text + first.size) {
        if (!StartsWith(text, "_Z")) return;
        rest = text + 2;
        inside = *rest == 'Z';
        while (*rest == 'Z' || *rest == 'L') ++rest;
        nested = *rest == 'N';
        while (*rest == 'N' || *rest == 'K' || *rest == 'L') ++rest;
        if (!TakeWord(rest, first)) first.size = 0;
    }
    Word first;
    const char* rest;  // behind it
    bool nested = false;
    bool inside = false;  // of something that stands in the routine of this name
};

bool IsNameless(const Name& name) {
    return name.first.size == 0 || StartsWith(name.first.text, "operator()");
}

// Of a routine, which comes next.
bool IsPart(const Name& name) { return name.inside || IsNameless(name); }

// Of the support code or the C++ library. Parts of these have no line of their own once they are a part of another
// routine: the tables give the line of whatever stands before.
bool IsOwn(const Name& name) {
    if (name.first.size == 0) return *name.rest == 'S';
    const char* text = name.first.text;
    if (StartsWith(text, "KVL_"))
        return *name.rest == 'I' || std::memchr(text, '<', name.first.size) != nullptr;
    return StartsWith(text, "KV") || StartsWith(text, "__kv");
}

void SayRoutine(Line& line, Name name) {
    Word first = WithoutPrefix(name.first), second;
    if (IsNameless(name)) return;
    if (first.size == 4 && StartsWith(first.text, "main")) {
        line << " in Function Main";
    } else if (StartsWith(first.text, "__") || StartsWith(first.text, "_GLOBAL__")) {
        line << " in the value of a Global";
    } else if (name.nested && TakeWord(name.rest, second)) {
        second = WithoutPrefix(second);
        ((line << " in Method ").Add(first.text, first.size) << "\\").Add(second.text, second.size);
    } else if (name.nested) {
        (line << (*name.rest == 'D' ? " in the destructor of " : " in the constructor of "))
            .Add(first.text, first.size);
    } else {
        (line << " in Function ").Add(first.text, first.size);
    }
}

}  // namespace

#endif
