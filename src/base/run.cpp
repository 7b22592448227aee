#include "base/run.h"

std::vector<std::function<void()>>& PartsOfRun() {
    static std::vector<std::function<void()>> parts;
    return parts;
}

void RenewRun() {
    for (const std::function<void()>& renew : PartsOfRun()) renew();
}
