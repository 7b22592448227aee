// Memory from the system, for allocation.cpp.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>

#if defined(__linux__)
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>
#elif defined(_WIN32)
#include <malloc.h>
#endif

constexpr std::size_t page = 4096;
constexpr std::size_t chunkSize =
    1U << 22U;  // chunks are aligned to it, which leads from a block to its chunk

// Aligned to the size of a chunk. Null when there is none.
inline void* Aligned(std::size_t size) {
#if defined(_WIN32)
    return _aligned_malloc(size, chunkSize);
#else
    return std::aligned_alloc(chunkSize, (size + page - 1) / page * page);
#endif
}
inline void FreeAligned(void* memory) {
#if defined(_WIN32)
    _aligned_free(memory);
#else
    std::free(memory);
#endif
}

#if defined(__linux__)

// Being given one large page by the system takes a fraction of the time of five hundred small ones. It is a wish:
// without it all works the same.
inline void* LargePages() {
    void* const memory = Aligned(chunkSize);
    if (memory != nullptr) madvise(memory, chunkSize, MADV_HUGEPAGE);
    return memory;
}

// The chunk that comes next. The system clears its pages, which takes long, on the other core meanwhile.
inline std::atomic<void*> readyChunk{nullptr};
inline std::atomic<bool> isMakingReady{false};

inline void* MakeReady(void*) {
#if defined(MADV_POPULATE_WRITE)
    void* const memory = LargePages();
    if (memory != nullptr) madvise(memory, chunkSize, MADV_POPULATE_WRITE);
    readyChunk.store(memory, std::memory_order_release);
#endif
    isMakingReady.store(false, std::memory_order_release);
    return nullptr;
}

inline void BeginToMakeReady() {
    static const bool hasTwoCores = sysconf(_SC_NPROCESSORS_ONLN) > 1;
    if (!hasTwoCores || isMakingReady.exchange(true, std::memory_order_acquire)) return;
    pthread_t thread{};
    if (readyChunk.load(std::memory_order_relaxed) == nullptr &&
        pthread_create(&thread, nullptr, MakeReady, nullptr) == 0)
        pthread_detach(thread);
    else
        isMakingReady.store(false, std::memory_order_release);
}

// The thread has had so many before.
inline void* LargeChunk(int chunks) {
    void* const ready = readyChunk.exchange(nullptr, std::memory_order_acquire);
    constexpr int few = 3;  // who needs more than that needs more still
    if (chunks > few) BeginToMakeReady();
    return ready != nullptr ? ready : LargePages();
}

#else

inline void* LargeChunk(int) { return Aligned(chunkSize); }

#endif
