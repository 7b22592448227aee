#include "base/token.h"
#include "base/run.h"

#include "base/token_text.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>

namespace {

Word MakeWord(std::string_view text, std::size_t id) {
    Word word;
    word.id = static_cast<std::uint32_t>(id);
    word.text = text;
    word.keyword = FindKeyword(text);
    if (text.size() == 1 && !IsNameByte(text[0])) word.sign = text[0];
    word.braced = text.size() > 1 && text[0] == '"' && text.find('{') != std::string_view::npos;
    return word;
}

template <typename Number>
std::uint64_t Load(const char* bytes) {
    Number number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

// All bytes of a text of less than eight, some of them twice.
std::uint64_t LoadFew(std::string_view text) {
    const std::size_t size = text.size();
    const char* end = text.data() + size;
    if (size >= 4) return Load<std::uint32_t>(text.data()) << 32 | Load<std::uint32_t>(end - 4);
    if (size >= 2) return Load<std::uint16_t>(text.data()) << 16 | Load<std::uint16_t>(end - 2);
    return size == 1 ? static_cast<unsigned char>(text[0]) : 0;
}

// Eight bytes at a time; tokens are short.
inline std::uint64_t HashOf(std::string_view text) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15U;
    std::uint64_t hash = text.size();
    const auto mix = [&hash](std::uint64_t bytes) {
        hash = (hash ^ bytes) * factor;
        hash ^= hash >> 32;
    };
    for (; text.size() >= 8; text.remove_prefix(8)) mix(Load<std::uint64_t>(text.data()));
    mix(LoadFew(text));
    return hash;
}

// A table with open addressing: a word stands in the first free slot from that of its hash on.
class Pool {
public:
    Pool() : slots(1024) {
        for (int c = 0; c < 256; ++c) {
            const char character = static_cast<char>(c);
            single[static_cast<std::size_t>(c)] =
                &words.emplace_back(MakeWord({&character, 1}, words.size()));
        }
    }

    const Word& Find(char character) const { return *single[static_cast<unsigned char>(character)]; }

    bool Knows(std::string_view text) {
        return text.size() == 1 || SlotOf(HashOf(text), text).word != nullptr;
    }

    const Word& Find(std::string_view text) {
        if (text.size() == 1) return Find(text[0]);
        const std::uint64_t hash = HashOf(text);
        Slot& slot = SlotOf(hash, text);
        if (slot.word != nullptr) return *slot.word;
        const Word& word = words.emplace_back(MakeWord(text, words.size()));
        slot = {hash, &word};
        if (++used * 2 > slots.size()) Grow();
        return word;
    }

    std::size_t Count() const { return words.size(); }

private:
    struct Slot {
        std::uint64_t hash = 0;
        const Word* word = nullptr;
    };
    std::deque<Word> words;  // in order of appearance, which is why they never move
    std::vector<Slot> slots;
    std::size_t used = 0;
    std::array<const Word*, 256> single{};

    Slot& SlotOf(std::uint64_t hash, std::string_view text) {
        const std::size_t mask = slots.size() - 1;
        std::size_t at = hash & mask;
        while (slots[at].word != nullptr && (slots[at].hash != hash || slots[at].word->text != text))
            at = (at + 1) & mask;
        return slots[at];
    }

    void Grow() {
        std::vector<Slot> old(slots.size() * 2);
        old.swap(slots);
        for (const Slot& slot : old)
            if (slot.word != nullptr) SlotOf(slot.hash, slot.word->text) = slot;
    }
};

Pool& ThePool() {
    static Pool& pool = *new Pool;  // never destroyed: tokens may outlive everything else
    return pool;
}

const PartOfRun partOfRun(ThePool());

}  // namespace

const Word& WordOf(std::string_view text) { return ThePool().Find(text); }
const Word& WordOf(char character) { return ThePool().Find(character); }
bool IsKnownWord(std::string_view text) { return ThePool().Knows(text); }
std::size_t WordCount() { return ThePool().Count(); }
