#include "lsp/inbox.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/text.h"
#include "lexer/lexer.h"

namespace {

constexpr std::size_t longest = std::size_t{1} << 29, piece = std::size_t{1} << 16;
constexpr int deepest = 100;                             // of values in one another
const std::string_view lengthField = "content-length:";  // in any letter case

// Without its end of line. False at the end of the stream.
bool ReadHeadLine(std::FILE* from, std::string& line) {
    line.clear();
    int c = std::getc(from);
    for (; c != EOF && c != '\n'; c = std::getc(from))
        if (line.size() < piece) line += static_cast<char>(c);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return c != EOF;
}

// The pieces come as they are there: the length may be wrong.
bool ReadBody(std::FILE* from, std::size_t length, std::string& text) {
    text.clear();
    while (text.size() < length) {
        const std::size_t before = text.size(), wanted = std::min(piece, length - before);
        text.resize(before + wanted);
        const std::size_t got = std::fread(&text[before], 1, wanted, from);
        if (got < wanted) return false;
    }
    return true;
}

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

bool ReadMessage(std::FILE* from, std::string& text) {
    std::size_t length = 0;
    for (std::string line; ReadHeadLine(from, line);) {
        if (StartsWith(Lower(line), lengthField))
            length = std::strtoull(&line[lengthField.size()], nullptr, 10);
        if (!line.empty() || length == 0) continue;
        if (length <= longest) return ReadBody(from, length, text);
        length = 0;
    }
    return false;
}

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
