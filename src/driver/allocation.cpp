// Memory for a translation: hundreds of thousands of short texts and small records that live for a line or for
// the whole run. Blocks are cut from large chunks and kept by size when they are freed, one list per size and
// thread; nothing goes back to the system before the end. Larger blocks are left to malloc.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <new>

#if !defined(__SANITIZE_ADDRESS__)  // the sanitizer has to see every block

namespace {

constexpr std::size_t unit = 16;  // sizes are rounded up to it, and every block is aligned to it
constexpr std::size_t chunkSize = 256 * 1024;
constexpr std::size_t largest = 1024;

// In front of every block, in the unit before it.
struct alignas(unit) Header {
    std::size_t units = 0;  // size of the block with its header; 0 when malloc has given it
};

struct FreeBlock {
    FreeBlock* next;
};

struct Pool {
    std::array<FreeBlock*, (largest + sizeof(Header)) / unit + 1> freed{};
    char* at = nullptr;  // what is left of the chunk
    std::size_t left = 0;
};

thread_local Pool pool;

void* BehindHeader(void* memory, std::size_t units) {
    if (memory == nullptr) throw std::bad_alloc();
    return new (memory) Header{units} + 1;
}

void* FromChunk(std::size_t units) {
    const std::size_t size = units * unit;
    if (pool.left < size) {
        pool.at = static_cast<char*>(std::malloc(chunkSize));
        pool.left = pool.at != nullptr ? chunkSize : 0;
        if (pool.at == nullptr) throw std::bad_alloc();
    }
    void* memory = pool.at;
    pool.at += size;
    pool.left -= size;
    return BehindHeader(memory, units);
}

void* Allocate(std::size_t size) {
    if (size > largest) {
        const bool possible = size <= SIZE_MAX - sizeof(Header);
        return BehindHeader(possible ? std::malloc(size + sizeof(Header)) : nullptr, 0);
    }
    const std::size_t units = (size + sizeof(Header) + unit - 1) / unit;
    FreeBlock*& first = pool.freed[units];
    if (first == nullptr) return FromChunk(units);
    FreeBlock* block = first;
    first = block->next;
    return block;
}

void Free(void* block) {
    if (block == nullptr) return;
    Header* header = static_cast<Header*>(block) - 1;
    if (header->units == 0) return std::free(header);
    FreeBlock*& first = pool.freed[header->units];
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
