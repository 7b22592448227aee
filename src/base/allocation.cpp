// Memory for a translation: hundreds of thousands of short texts and small records that live for a line or for
// the whole run. Blocks are cut from large chunks and kept by size when they are freed, one list per size and
// thread; nothing goes back to the system before the end. The largest blocks are left to malloc.
#include <algorithm>
#include <array>
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

// In front of every block, in the unit before it.
struct alignas(unit) Header {
    std::size_t units = 0;  // size of the block with its header; 0 when malloc has given it
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
};

thread_local Pool pool;

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

FreeBlock*& FreedOf(std::size_t units) {
    if (units <= finest) return pool.freed[units];
    const std::size_t power = PowerFor(units);
    return pool.freedLarge[power][units * 8 / (std::size_t{1} << power) - 5];
}

void* BehindHeader(void* memory, std::size_t units) {
    if (memory == nullptr) {
        if (const std::new_handler report = std::get_new_handler()) report();
        throw std::bad_alloc();
    }
    return new (memory) Header{units} + 1;
}

// Small programs get along with the first chunk. Those that need more need much more, and being given one large
// page by the system takes a fraction of the time of five hundred small ones.
char* NewChunk(std::size_t wanted, std::size_t& size) {
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

void* FromChunk(std::size_t units) {
    const std::size_t size = units * unit;
    if (pool.left < size) {
        std::size_t got = 0;
        char* chunk = NewChunk(size, got);
        if (chunk == nullptr) return nullptr;
        pool.at = chunk;
        pool.left = got;
    }
    void* memory = pool.at;
    pool.at += size;
    pool.left -= size;
    return memory;
}

void* Allocate(std::size_t size) {
    if (size > (largest - 1) * unit) {
        const bool possible = size <= SIZE_MAX - sizeof(Header);
        return BehindHeader(possible ? std::malloc(size + sizeof(Header)) : nullptr, 0);
    }
    std::size_t units = (size + sizeof(Header) + unit - 1) / unit;
    if (units > finest) units = LargeSize(units);
    FreeBlock*& first = FreedOf(units);
    if (first == nullptr) return BehindHeader(FromChunk(units), units);
    FreeBlock* block = first;
    first = block->next;
    return block;
}

void Free(void* block) {
    if (block == nullptr) return;
    Header* header = static_cast<Header*>(block) - 1;
    if (header->units == 0) return std::free(header);
    FreeBlock*& first = FreedOf(header->units);
    first = new (block) FreeBlock{first};
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }

#endif
