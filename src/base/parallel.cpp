#include "base/parallel.h"

#include <atomic>
#include <exception>
#include <system_error>
#include <thread>

// Some compilers for Windows come without threads.
#if defined(__GLIBCXX__) && !defined(_GLIBCXX_HAS_GTHREADS)

static void OnBothCores(const std::function<void()>& work) { work(); }

#else

static void OnBothCores(const std::function<void()>& work) {
    std::thread second;
    try {
        if (std::thread::hardware_concurrency() > 1) second = std::thread(work);
    } catch (const std::system_error&) {
        // There is none to be had: the first core does it all.
    }
    work();
    if (second.joinable()) second.join();
}

#endif

void InParallel(std::size_t count, const std::function<void(std::size_t)>& job) {
    std::atomic<std::size_t> next{0};
    std::atomic_flag hasFailed = ATOMIC_FLAG_INIT;
    std::exception_ptr failure;
    const auto work = [&] {
        try {
            for (std::size_t i = next++; i < count; i = next++) job(i);
        } catch (...) {
            if (!hasFailed.test_and_set()) failure = std::current_exception();
            next = count;
        }
    };
    OnBothCores(work);
    if (failure != nullptr) std::rethrow_exception(failure);
}
