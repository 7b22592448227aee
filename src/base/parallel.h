// The second core.
#pragma once

#include <cstddef>
#include <functional>

// The second thread has to start before it can help.
constexpr std::size_t filesWorthAThread = 8;

// Calls job(0) to job(count - 1), on both cores where there are two. The calls must not depend on each other,
// and none may end the run. What one of them throws is thrown here, when both cores are done.
void InParallel(std::size_t count, const std::function<void(std::size_t)>& job);
