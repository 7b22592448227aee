// Memory for a translation: hundreds of thousands of short texts and small records that live for a line or for
// the whole run. Blocks are cut from large chunks and kept by size when they are freed, one list per size and
// pool; nothing goes back to the system before the end. The largest blocks are left to malloc.
// A thread has a pool to itself, and the next thread takes it over. Blocks go back to the pool that they are from,
// whoever frees them: what one thread makes for another one, again and again, is the same memory each time.
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

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
constexpr std::size_t laterChunk = 1U << 22U;
constexpr std::size_t largePage = 1U << 21U;
constexpr std::size_t finest = 65;      // up to so many units every size has its list
constexpr std::size_t largest = 65536;  // and up to so many every power of two has four
constexpr std::size_t largestPower = 16;

struct Pool;

// In front of every block, in the unit before it.
struct alignas(unit) Header {
    Pool* pool = nullptr;   // null when malloc has given it
    std::size_t units = 0;  // size of the block with its header
};

struct FreeBlock {
    FreeBlock* next;
};

struct Pool {
    std::array<FreeBlock*, finest + 1> freed{};  // by units
    std::array<std::array<FreeBlock*, 4>, largestPower + 1> freedLarge{};
    char* at = nullptr;  // what is left of the chunk
    std::size_t left = 0;
    bool begun = false;
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

// The exponent of the first power of two that is not below the number.
std::size_t PowerFor(std::size_t units) {
    std::size_t power = 0;
    while ((std::size_t{1} << power) < units) ++power;
    return power;
}

// The next size that has a list: five to eight eighths of a power of two.
std::size_t LargeSize(std::size_t units) {
    const std::size_t eighth = (std::size_t{1} << PowerFor(units)) / 8;
    return (units + eighth - 1) / eighth * eighth;
}

FreeBlock*& FreedOf(Pool& pool, std::size_t units) {
    if (units <= finest) return pool.freed[units];
    const std::size_t power = PowerFor(units);
    return pool.freedLarge[power][units * 8 / (std::size_t{1} << power) - 5];
}

void* BehindHeader(void* memory, Pool* pool, std::size_t units) {
    if (memory == nullptr) {
        if (const std::new_handler report = std::get_new_handler()) report();
        throw std::bad_alloc();
    }
    return new (memory) Header{pool, units} + 1;
}

// Small programs get along with the first chunk. Those that need more need much more, and being given one large
// page by the system takes a fraction of the time of five hundred small ones.
char* NewChunk(Pool& pool, std::size_t wanted, std::size_t& size) {
    size = std::max(firstChunk, wanted);
#if defined(__linux__)
    if (pool.begun) {
        size = laterChunk;
        void* chunk = std::aligned_alloc(largePage, size);
        if (chunk != nullptr) madvise(chunk, size, MADV_HUGEPAGE);  // a wish: without it all works the same
        return static_cast<char*>(chunk);
    }
#endif
    pool.begun = true;
    return static_cast<char*>(std::malloc(size));
}

void* FromChunk(Pool& pool, std::size_t units) {
    const std::size_t size = units * unit;
    if (pool.left < size) {
        std::size_t got = 0;
        char* chunk = NewChunk(pool, size, got);
        if (chunk == nullptr) return nullptr;
        pool.at = chunk;
        pool.left = got;
    }
    void* memory = pool.at;
    pool.at += size;
    pool.left -= size;
    return memory;
}

void TakeBack(Pool& pool) {
    for (FreeBlock* block = pool.returned.exchange(nullptr, std::memory_order_acquire); block != nullptr;) {
        FreeBlock* const following = block->next;
        FreeBlock*& first = FreedOf(pool, (reinterpret_cast<Header*>(block) - 1)->units);
        block->next = first;
        first = block;
        block = following;
    }
}

// The thread has no pool yet. Whoever asks for memory behind its end takes one more for good.
Pool* BeginThread() {
    Pool* const pool = TakePool();
    if (pool == nullptr) return nullptr;
    own = pool;
    thread_local const PoolOwner owner;
    return pool;
}

void* Allocate(std::size_t size) {
    if (size > (largest - 1) * unit) {
        const bool possible = size <= SIZE_MAX - sizeof(Header);
        return BehindHeader(possible ? std::malloc(size + sizeof(Header)) : nullptr, nullptr, 0);
    }
    std::size_t units = (size + sizeof(Header) + unit - 1) / unit;
    if (units > finest) units = LargeSize(units);
    Pool* const pool = own != nullptr ? own : BeginThread();
    if (pool == nullptr) return BehindHeader(nullptr, nullptr, 0);
    FreeBlock*& first = FreedOf(*pool, units);
    if (first == nullptr && pool->returned.load(std::memory_order_relaxed) != nullptr) TakeBack(*pool);
    if (first == nullptr) return BehindHeader(FromChunk(*pool, units), pool, units);
    FreeBlock* block = first;
    first = block->next;
    return block;
}

void Free(void* block) {
    if (block == nullptr) return;
    Header* header = static_cast<Header*>(block) - 1;
    Pool* const pool = header->pool;
    if (pool == nullptr) return std::free(header);
    if (pool == own) {
        FreeBlock*& first = FreedOf(*pool, header->units);
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
