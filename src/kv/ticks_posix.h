// As long as it lives, calls that wait are interrupted ten times a second.
#pragma once

#include <signal.h>
#include <sys/time.h>

#include <cstring>

class Ticks {
public:
    explicit Ticks(bool wanted) : wanted_(wanted) {
        if (!wanted_) return;
        struct sigaction action;
        std::memset(&action, 0, sizeof action);
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, &before_);
        Every(100000);
    }
    ~Ticks() {
        if (!wanted_) return;
        Every(0);
        sigaction(SIGALRM, &before_, nullptr);
    }
    Ticks(const Ticks&) = delete;
    Ticks& operator=(const Ticks&) = delete;

private:
    static void Every(int microseconds) {
        struct itimerval timer = {};
        timer.it_interval.tv_usec = timer.it_value.tv_usec = microseconds;
        setitimer(ITIMER_REAL, &timer, nullptr);
    }

    bool wanted_;
    struct sigaction before_;
};
