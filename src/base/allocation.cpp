// Memory for a translation: hundreds of thousands of short texts and small records that live for a line or for
// the whole run. Blocks of one size lie side by side in spans, which are cut from large chunks, and are kept in a list
// for their size when they are freed; nothing goes back to the system before the end. The largest blocks are left to malloc.
// A thread has a pool to itself, and the next thread takes it over. Blocks go back to the pool that they are from,
// whoever frees them: what one thread makes for another one, again and again, is the same memory each time. Pages that hold
// nothing in a pool that nobody has go to whoever needs some.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

#include "base/chunks.h"

// Sanitizers have to see every block. gcc tells by a macro that there is one, clang by a question.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KVT_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || __has_feature(thread_sanitizer)
#define KVT_SANITIZED
#endif
#endif

#if !defined(KVT_SANITIZED)

namespace {

constexpr std::size_t unit = 16;  // sizes are rounded up to it, and every block is aligned to it
constexpr std::size_t firstChunk = 1U << 18U;
constexpr std::size_t largestSpan = 16 * page;
constexpr std::size_t finest = 64;      // up to so many units every size has its list
constexpr std::size_t ownSpan = 2048;   // from so many units on a block has a span to itself
constexpr std::size_t largest = 65536;  // and up to so many every power of two has four lists
constexpr std::size_t listCount = finest + 1 + 4 * std::size_t{10};

struct Pool;

// Of a page in which blocks begin.
struct PageOfBlocks {
    Pool* pool = nullptr;     // null when malloc has given the chunk, for one block
    std::uint32_t units = 0;  // of each of the blocks
};

// In front of every chunk.
struct Chunk {
    std::array<PageOfBlocks, chunkSize / page> pages{};
};
constexpr std::size_t chunkHeader = (sizeof(Chunk) + page - 1) / page * page;

struct FreeBlock {
    FreeBlock* next;
};

// Blocks of one size.
struct BlockList {
    FreeBlock* freed = nullptr;
    char *at = nullptr, *end = nullptr;  // what is left of the last span
    std::size_t nextSpan = page;         // its size
};

// Pages that have no span yet.
struct Rest {
    std::size_t size;
    Rest* next;
};

struct Pool {
    std::array<BlockList, listCount> lists{};
    Rest* rests = nullptr;
    int chunks = 0;
    std::atomic<FreeBlock*> returned{nullptr};  // by other threads
    std::atomic<bool> isTaken{false};
    Pool* next = nullptr;  // of all pools
};

Pool firstPool;
std::atomic<Pool*> pools{&firstPool};
thread_local Pool* own = nullptr;  // of the thread, from its first block on

// Gives the thread's pool back when the thread ends.
struct PoolOwner {
    PoolOwner() = default;
    ~PoolOwner() {
        Pool* const pool = own;
        own = nullptr;
        pool->isTaken.store(false, std::memory_order_release);
    }
    PoolOwner(const PoolOwner&) = delete;
    PoolOwner& operator=(const PoolOwner&) = delete;
};

// One that nobody has any more, or a new one. Null when there is no memory.
Pool* TakePool() {
    for (Pool* pool = pools.load(std::memory_order_acquire); pool != nullptr; pool = pool->next)
        if (!pool->isTaken.exchange(true, std::memory_order_acquire)) return pool;
    void* const memory = std::malloc(sizeof(Pool));
    if (memory == nullptr) return nullptr;
    Pool* const pool = new (memory) Pool;
    pool->isTaken.store(true, std::memory_order_relaxed);
    pool->next = pools.load(std::memory_order_relaxed);
    while (!pools.compare_exchange_weak(pool->next, pool, std::memory_order_release)) {
    }
    return pool;
}

// The next size that has a list: above the finest ones, five to eight eighths of a power of two.
struct Size {
    std::size_t units = 0, list = 0;

    explicit Size(std::size_t wanted) : units(wanted), list(wanted) {
        if (wanted <= finest) return;
        std::size_t power = finest * 2;
        list = finest + 1;
        for (; power < wanted; power *= 2) list += 4;
        const std::size_t eighth = power / 8;
        const std::size_t eighths = (wanted + eighth - 1) / eighth;
        units = eighths * eighth;
        list += eighths - 5;
    }
};

// Chunks begin at multiples of their size.
std::size_t OffsetInChunk(const void* block) {
    return reinterpret_cast<std::uintptr_t>(block) & (chunkSize - 1);
}
Chunk& ChunkOf(void* block) {
    return *reinterpret_cast<Chunk*>(static_cast<char*>(block) - OffsetInChunk(block));
}
PageOfBlocks& PageOf(void* block) { return ChunkOf(block).pages[OffsetInChunk(block) / page]; }

void AddRest(Pool& pool, char* at, std::size_t size) {
    if (size >= page) pool.rests = new (at) Rest{size, pool.rests};
}

// Small programs get along with the first chunk. Those that need more need much more.
bool AddChunk(Pool& pool) {
    const bool isFirst = pool.chunks++ == 0;
    const std::size_t size = isFirst ? firstChunk : chunkSize;
    void* const memory = isFirst ? Aligned(size) : LargeChunk(pool.chunks);
    if (memory == nullptr) return false;
    new (memory) Chunk;
    AddRest(pool, static_cast<char*>(memory) + chunkHeader, size - chunkHeader);
    return true;
}

struct Pages {
    char* at = nullptr;
    std::size_t size = 0;
};

// As many as are wanted, or fewer where a rest has no more, but `least`. None where there are not so many.
Pages PagesOfRests(Pool& pool, std::size_t least, std::size_t wanted) {
    for (Rest** link = &pool.rests; *link != nullptr; link = &(*link)->next) {
        const Rest rest = **link;
        if (rest.size < least) continue;
        char* const pages = reinterpret_cast<char*>(*link);
        if (rest.size < wanted + page) {
            *link = rest.next;
            return {pages, rest.size / page * page};
        }
        *link = new (pages + wanted) Rest{rest.size - wanted, rest.next};
        return {pages, wanted};
    }
    return {};
}

// Large blocks that nobody has now can be anything.
void TakeFreedSpans(Pool& pool) {
    for (std::size_t list = Size(ownSpan).list; list < listCount; ++list)
        for (FreeBlock* block = std::exchange(pool.lists[list].freed, nullptr); block != nullptr;) {
            FreeBlock* const following = block->next;
            AddRest(pool, reinterpret_cast<char*>(block), PageOf(block).units * unit);
            block = following;
        }
}

void TakeBack(Pool& pool) {
    for (FreeBlock* block = pool.returned.exchange(nullptr, std::memory_order_acquire); block != nullptr;) {
        FreeBlock* const following = block->next;
        FreeBlock*& first = pool.lists[Size(PageOf(block).units).list].freed;
        block->next = first;
        first = block;
        block = following;
    }
}

// Of the pools whose threads have ended.
void TakeRestsOfOthers(Pool& pool) {
    for (Pool* other = pools.load(std::memory_order_acquire); other != nullptr; other = other->next) {
        if (other->isTaken.exchange(true, std::memory_order_acquire)) continue;
        TakeBack(*other);
        TakeFreedSpans(*other);
        while (Rest* const rest = other->rests) {
            other->rests = rest->next;
            rest->next = std::exchange(pool.rests, rest);
        }
        other->isTaken.store(false, std::memory_order_release);
    }
}

Pages TakePages(Pool& pool, std::size_t least, std::size_t wanted) {
    Pages pages = PagesOfRests(pool, least, wanted);
    for (const auto findMore : {TakeFreedSpans, TakeRestsOfOthers}) {
        if (pages.at != nullptr) return pages;
        findMore(pool);
        pages = PagesOfRests(pool, least, wanted);
    }
    if (pages.at != nullptr) return pages;
    const bool tooSmall = pool.chunks == 0 && least > firstChunk - chunkHeader;
    if (!AddChunk(pool) || (tooSmall && !AddChunk(pool))) return {};
    return PagesOfRests(pool, least, wanted);
}

// The more blocks of a size there are, the more are made at once.
bool BeginSpan(Pool& pool, BlockList& list, std::size_t units) {
    const bool isOwn = units >= ownSpan;
    const std::size_t least = (units * unit + page - 1) / page * page;
    const std::size_t wanted = isOwn ? least : std::max(list.nextSpan, least);
    const Pages span = TakePages(pool, least, wanted);
    if (span.at == nullptr) return false;
    for (std::size_t at = 0; at < span.size; at += page)
        PageOf(span.at + at) = {&pool, static_cast<std::uint32_t>(units)};
    list.at = span.at;
    list.end = span.at + span.size;
    list.nextSpan = std::min(wanted * 2, largestSpan);
    return true;
}

// The thread has no pool yet. Whoever asks for memory behind its end takes one more for good.
Pool* BeginThread() {
    Pool* const pool = TakePool();
    if (pool == nullptr) return nullptr;
    own = pool;
    thread_local const PoolOwner owner;
    return pool;
}

[[noreturn]] void FailAllocation() {
    if (const std::new_handler report = std::get_new_handler()) report();
    throw std::bad_alloc();
}

void* FromMalloc(std::size_t size) {
    void* const memory = size <= SIZE_MAX - 2 * chunkHeader ? Aligned(size + chunkHeader) : nullptr;
    if (memory == nullptr) FailAllocation();
    void* const block = static_cast<char*>(memory) + chunkHeader;
    ::new (&PageOf(block)) PageOfBlocks;
    return block;
}

void* FromSpan(Pool& pool, const Size& size) {
    BlockList& list = pool.lists[size.list];
    if (list.freed == nullptr && pool.returned.load(std::memory_order_relaxed) != nullptr) TakeBack(pool);
    if (FreeBlock* const block = list.freed) {
        list.freed = block->next;
        return block;
    }
    const bool isLeft = static_cast<std::size_t>(list.end - list.at) >= size.units * unit;
    if (!isLeft && !BeginSpan(pool, list, size.units)) FailAllocation();
    return std::exchange(list.at, list.at + size.units * unit);
}

void* Allocate(std::size_t size) {
    if (size > (largest - 1) * unit) return FromMalloc(size);
    Pool* const pool = own != nullptr ? own : BeginThread();
    if (pool == nullptr) FailAllocation();
    const Size rounded(size == 0 ? 1 : (size + unit - 1) / unit);
    BlockList& list = pool->lists[rounded.list];
    FreeBlock* const block = list.freed;
    if (block == nullptr) return FromSpan(*pool, rounded);
    list.freed = block->next;
    return block;
}

void Free(void* block) {
    if (block == nullptr) return;
    const PageOfBlocks blocks = PageOf(block);
    Pool* const pool = blocks.pool;
    if (pool == nullptr) return FreeAligned(&ChunkOf(block));
    if (pool == own) {
        FreeBlock*& first = pool->lists[Size(blocks.units).list].freed;
        first = new (block) FreeBlock{first};
        return;
    }
    FreeBlock* const freed = new (block) FreeBlock{pool->returned.load(std::memory_order_relaxed)};
    while (!pool->returned.compare_exchange_weak(freed->next, freed, std::memory_order_release)) {
    }
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }

#endif
