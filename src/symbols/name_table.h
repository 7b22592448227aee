// A table by name. Names are words, which are found without a look at their texts. The entries stay where they are, and
// are walked in the order in which they came.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "base/token.h"

// The tables of the program that are asked about nearly every name, a bit of Word::tables for each.
namespace mark {
constexpr unsigned char none = 0;
constexpr unsigned char classes = 1;
constexpr unsigned char functions = 2;
constexpr unsigned char externFunctions = 4;
constexpr unsigned char globals = 8;
constexpr unsigned char constants = 16;
constexpr unsigned char fields = 32;
constexpr unsigned char userlibs = 64;
constexpr unsigned char meanings = 128;
}  // namespace mark

// A table with a mark of its own knows most names that it does not have by a look at the word.
template <class Value>
class NameTable {
    using Entry = std::pair<const Token, Value>;
    using Entries = std::vector<std::unique_ptr<Entry>>;

public:
    template <class Item>
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Item;
        using difference_type = std::ptrdiff_t;
        using pointer = Item*;
        using reference = Item&;

        Iterator() = default;
        explicit Iterator(typename Entries::const_iterator place) : at(place) {}
        Item& operator*() const { return **at; }
        Iterator& operator++() {
            ++at;
            return *this;
        }
        friend bool operator==(Iterator a, Iterator b) { return a.at == b.at; }
        friend bool operator!=(Iterator a, Iterator b) { return a.at != b.at; }

    private:
        typename Entries::const_iterator at;
    };

    NameTable() = default;
    explicit NameTable(unsigned char itsMark) : ownMark(itsMark) {}

    // Null when there is none.
    Value* Find(Token name) {
        const std::size_t i = IndexOf(*name);
        return i == missing ? nullptr : &entries[i]->second;
    }
    const Value* Find(Token name) const {
        const std::size_t i = IndexOf(*name);
        return i == missing ? nullptr : &entries[i]->second;
    }
    bool Has(Token name) const { return IndexOf(*name) != missing; }
    // The entry of the name, and whether it has come about by this; one that was there stays what it is.
    template <class Given = Value>
    std::pair<Value&, bool> Add(Token name, Given&& value = Value()) {
        if (Value* known = Find(name)) return {*known, false};
        names.push_back(&*name);
        name->tables = static_cast<unsigned char>(name->tables | ownMark);
        entries.push_back(std::make_unique<Entry>(name, std::forward<Given>(value)));
        if (names.size() * 2 > places.size() && names.size() > few)
            Spread();
        else if (!places.empty())
            Place(names.size() - 1);
        return {entries.back()->second, true};
    }
    // That of the name, made when there is none.
    Value& operator[](Token name) {
        Value* known = Find(name);
        return known != nullptr ? *known : Add(name).first;
    }

    std::size_t size() const { return names.size(); }
    Iterator<Entry> begin() { return Iterator<Entry>(entries.begin()); }
    Iterator<Entry> end() { return Iterator<Entry>(entries.end()); }
    Iterator<const Entry> begin() const { return Iterator<const Entry>(entries.begin()); }
    Iterator<const Entry> end() const { return Iterator<const Entry>(entries.end()); }

private:
    static constexpr std::size_t missing = static_cast<std::size_t>(-1);
    static constexpr std::size_t few = 8;  // are looked through one by one

    unsigned char ownMark = mark::none;
    std::vector<const Word*> names;  // of the entries
    Entries entries;
    std::vector<std::uint32_t> places;  // where there are more: behind the number of the entry in the first
                                        // free place from that of its name on; 0 in free ones

    std::size_t PlaceOf(const Word& name) const {
        return name.id * std::size_t{0x9E3779B1} & (places.size() - 1);
    }

    std::size_t IndexOf(const Word& name) const {
        if ((name.tables & ownMark) != ownMark) return missing;
        if (places.empty()) {
            for (std::size_t i = 0; i < names.size(); ++i)
                if (names[i] == &name) return i;
            return missing;
        }
        for (std::size_t at = PlaceOf(name); places[at] != 0; at = (at + 1) & (places.size() - 1))
            if (names[places[at] - 1] == &name) return places[at] - 1;
        return missing;
    }

    void Place(std::size_t i) {
        std::size_t at = PlaceOf(*names[i]);
        while (places[at] != 0) at = (at + 1) & (places.size() - 1);
        places[at] = static_cast<std::uint32_t>(i + 1);
    }

    void Spread() {
        places.assign(places.empty() ? 4 * few : 2 * places.size(), 0);
        for (std::size_t i = 0; i < names.size(); ++i) Place(i);
    }
};

// Names with nothing beside them.
struct Listed {};
using NameSet = NameTable<Listed>;
