// What the client sends. Messages are read while others are worked on, so that those which come behind can cancel them.
#pragma once

#include <cstdio>
#include <string>

#include "lsp/framing.h"
#include "lsp/json.h"

// Some compilers for Windows come without threads: messages are then read when they are asked for, and none can be
// cancelled.
#if defined(__GLIBCXX__) && !defined(_GLIBCXX_HAS_GTHREADS)
#define KORVEL_NO_THREADS
#else
#include <condition_variable>
#include <deque>
#include <mutex>
#include <set>
#include <thread>
#endif

class Inbox {
public:
    explicit Inbox(std::FILE* from);
    ~Inbox();
    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    // Waits for the next message; one that is no JSON is "discarded". False when no more will come.
    bool Take(Json& message);
    bool IsEmpty();
    bool IsCancelled(const Json& id);

private:
    std::FILE* source;
    bool ended = false;
#ifndef KORVEL_NO_THREADS
    std::mutex access;
    std::condition_variable arrival;
    std::deque<Json> messages;
    std::set<Json> cancelled;
    std::thread reader;

    void ReadAll();
    void Put(Json message);
#endif
};
