#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "debug/streams.h"

namespace debug {

void Close(int& descriptor) {
    if (descriptor != -1) close(descriptor);
    descriptor = -1;
}

bool Read(int& from, std::string& text) {
    char bytes[65536];
    const ssize_t count = read(from, bytes, sizeof bytes);
    if (count > 0) text.append(bytes, static_cast<std::size_t>(count));
    if (count == 0 || (count < 0 && errno != EINTR)) Close(from);
    return count > 0;
}

void WriteSome(int to, std::string& text) {
    while (!text.empty()) {
        const ssize_t sent = send(to, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno == EINTR) continue;
        if (sent < 0 && errno != EAGAIN) text.clear();
        if (sent <= 0) return;
        text.erase(0, static_cast<std::size_t>(sent));
    }
}

void PrepareInput() { std::setvbuf(stdin, nullptr, _IONBF, 0); }

bool Await(std::vector<Awaited>& all, int milliseconds) {
    std::vector<pollfd> asked;
    asked.reserve(all.size());
    for (const Awaited& one : all)
        asked.push_back({one.descriptor, static_cast<short>(one.writes ? POLLOUT : POLLIN), 0});
    if (poll(asked.data(), asked.size(), milliseconds) <= 0) return false;
    for (std::size_t i = 0; i < all.size(); ++i) all[i].hasCome = asked[i].revents != 0;
    return true;
}

}  // namespace debug
