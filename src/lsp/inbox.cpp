#include "lsp/inbox.h"

#include <utility>

namespace {

constexpr int deepest = 100;  // of values in one another

// "Discarded" where it is no JSON, or too deep to be a message.
Json Parsed(const std::string& text) {
    bool isTooDeep = false;
    const auto look = [&isTooDeep](int depth, Json::parse_event_t, const Json&) {
        isTooDeep = isTooDeep || depth > deepest;
        return depth <= deepest;
    };
    Json message = Json::parse(text, look, false);
    return isTooDeep ? Json(Json::value_t::discarded) : message;
}

std::string MethodOf(const Json& message) {
    const bool named = message.is_object() && message.contains("method") && message["method"].is_string();
    return named ? message["method"].get<std::string>() : std::string();
}

}  // namespace

#ifdef KORVEL_NO_THREADS

Inbox::Inbox(std::FILE* from) : source(from) {}
Inbox::~Inbox() = default;

bool Inbox::Take(Json& message) {
    std::string text;
    if (ended || !ReadMessage(source, text)) return false;
    message = Parsed(text);
    ended = MethodOf(message) == "exit";
    return true;
}

// What the client has sent meanwhile cannot be seen.
bool Inbox::IsEmpty() { return true; }
bool Inbox::IsCancelled(const Json&) { return false; }

#else

Inbox::Inbox(std::FILE* from) : source(from), reader([this] { ReadAll(); }) {}

Inbox::~Inbox() { reader.join(); }

void Inbox::ReadAll() {
    std::string text;
    bool leaves = false;
    while (!leaves && ReadMessage(source, text)) {
        Json message = Parsed(text);
        leaves = MethodOf(message) == "exit";
        Put(std::move(message));
    }
    const std::lock_guard<std::mutex> lock(access);
    ended = true;
    arrival.notify_one();
}

void Inbox::Put(Json message) {
    const std::lock_guard<std::mutex> lock(access);
    if (MethodOf(message) == "$/cancelRequest" && message.contains("params") && message["params"].is_object())
        cancelled.insert(message["params"].value("id", Json()));
    else
        messages.push_back(std::move(message));
    arrival.notify_one();
}

bool Inbox::Take(Json& message) {
    std::unique_lock<std::mutex> lock(access);
    if (messages.empty()) cancelled.clear();  // what has been answered
    arrival.wait(lock, [this] { return ended || !messages.empty(); });
    if (messages.empty()) return false;
    message = std::move(messages.front());
    messages.pop_front();
    return true;
}

bool Inbox::IsEmpty() {
    const std::lock_guard<std::mutex> lock(access);
    return messages.empty();
}

bool Inbox::IsCancelled(const Json& id) {
    const std::lock_guard<std::mutex> lock(access);
    return cancelled.count(id) != 0;
}

#endif
