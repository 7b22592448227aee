#include "base/token.h"
#include "base/run.h"

#include "base/text_hash.h"
#include "base/token_text.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>

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

// The words that a thread has asked for last: most come again soon, and the table of all outgrows every cache.
struct RecentWords {
    static constexpr std::size_t size = 2048;
    unsigned run = 0;
    std::array<const Word*, size> words{};
};
thread_local RecentWords recent;
unsigned runs = 0;

// A table with open addressing: a word stands in the first free slot from that of its hash on. Threads may look for
// words at the same time: none waits for another one unless it has to add a word.
class Pool {
public:
    Pool() : table(&tables.emplace_back(1024)) {
        for (int c = 0; c < 256; ++c) {
            const char character = static_cast<char>(c);
            single[static_cast<std::size_t>(c)] =
                &words.emplace_back(MakeWord({&character, 1}, words.size()));
        }
    }

    const Word& Find(char character) const { return *single[static_cast<unsigned char>(character)]; }

    bool Knows(std::string_view text) {
        return text.size() == 1 || CurrentTable().Find(TextHash(text), text) != nullptr;
    }

    const Word& Find(std::string_view text) {
        if (text.size() == 1) return Find(text[0]);
        if (recent.run != run) recent = {run, {}};
        const std::uint64_t hash = TextHash(text);
        const Word*& last = recent.words[hash % RecentWords::size];
        if (last != nullptr && last->text == text) return *last;
        const Word* known = CurrentTable().Find(hash, text);
        last = known != nullptr ? known : &Add(hash, text);
        return *last;
    }

    void ForgetOutgrown() {
        while (tables.size() > 1) tables.pop_front();
    }

    std::size_t Count() const { return words.size(); }
    const Word& WithId(std::uint32_t id) const { return words[id]; }

private:
    // The hash is there before the word.
    struct Slot {
        std::uint64_t hash = 0;
        std::atomic<const Word*> word{nullptr};
    };
    struct Table {
        std::vector<Slot> slots;

        explicit Table(std::size_t size) : slots(size) {}

        // Null for a word that is not there. A slot is looked at once: another thread may fill a free one meanwhile.
        const Word* Find(std::uint64_t hash, std::string_view text) const {
            const std::size_t mask = slots.size() - 1;
            for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
                const Word* word = slots[at].word.load(std::memory_order_acquire);
                if (word == nullptr || (slots[at].hash == hash && word->text == text)) return word;
            }
        }
        // For a word that is not there. One thread at a time.
        void Put(std::uint64_t hash, const Word* word) {
            const std::size_t mask = slots.size() - 1;
            std::size_t at = hash & mask;
            while (slots[at].word.load(std::memory_order_relaxed) != nullptr) at = (at + 1) & mask;
            slots[at].hash = hash;
            slots[at].word.store(word, std::memory_order_release);
        }
    };
    std::deque<Word> words;    // in order of appearance, which is why they never move
    std::deque<Table> tables;  // those before the last one may still be looked through
    std::atomic<Table*> table;
    std::atomic_flag adding = ATOMIC_FLAG_INIT;
    std::size_t used = 0;
    unsigned run = ++runs;
    std::array<const Word*, 256> single{};

    Table& CurrentTable() { return *table.load(std::memory_order_acquire); }

    // Ends when it goes, also when there is no memory left.
    struct Turn {
        std::atomic_flag& taken;

        explicit Turn(std::atomic_flag& flag) : taken(flag) {
            while (taken.test_and_set(std::memory_order_acquire)) {
            }
        }
        ~Turn() { taken.clear(std::memory_order_release); }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
    };

    // One thread at a time. Another one may have added the word by then.
    const Word& Add(std::uint64_t hash, std::string_view text) {
        const Turn turn(adding);
        const Word* word = CurrentTable().Find(hash, text);
        if (word == nullptr) {
            word = &words.emplace_back(MakeWord(text, words.size()));
            CurrentTable().Put(hash, word);
            if (++used * 4 > tables.back().slots.size() * 3) Grow();
        }
        return *word;
    }

    void Grow() {
        const std::vector<Slot>& old = tables.back().slots;
        Table& larger = tables.emplace_back(old.size() * 2);
        for (const Slot& slot : old)
            if (const Word* word = slot.word.load()) larger.Put(slot.hash, word);
        table.store(&larger, std::memory_order_release);
    }
};

// The pool of the run.
struct RunPool {
    std::unique_ptr<Pool> pool = std::make_unique<Pool>();
};

RunPool& TheRunPool() {
    static RunPool& pool = *new RunPool;  // never destroyed: tokens may outlive everything else
    return pool;
}

Pool& ThePool() { return *TheRunPool().pool; }

const PartOfRun partOfRun(TheRunPool());

}  // namespace

const Word& WordOf(std::string_view text) { return ThePool().Find(text); }
const Word& WordOf(char character) { return ThePool().Find(character); }
bool IsKnownWord(std::string_view text) { return ThePool().Knows(text); }
void ForgetOutgrownTables() { ThePool().ForgetOutgrown(); }
const Word& WordWithId(std::uint32_t id) { return ThePool().WithId(id); }
std::size_t WordCount() { return ThePool().Count(); }
