#include "prelude/fill.h"

#include <cstdio>
#include <cstdlib>

static std::string_view ValueOf(std::string_view name, std::initializer_list<Hole> holes) {
    for (const Hole& hole : holes)
        if (hole.name == name) return hole.value;
    std::fprintf(stderr, "kvt: internal error: no value for hole '%.*s'\n", static_cast<int>(name.size()),
                 name.data());
    std::abort();
}

std::string Fill(std::string_view text, std::initializer_list<Hole> holes) {
    std::string filled;
    filled.reserve(text.size() + text.size() / 4);
    for (;;) {
        const std::size_t open = text.find('@');
        filled.append(text.substr(0, open));
        if (open == std::string_view::npos) return filled;
        const std::size_t close = text.find('@', open + 1);
        filled.append(ValueOf(text.substr(open + 1, close - open - 1), holes));
        text.remove_prefix(close == std::string_view::npos ? text.size() : close + 1);
    }
}
