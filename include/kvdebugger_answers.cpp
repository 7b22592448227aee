// What kv is told of the program while it stands.
#include "kvdebugger_talk.h"

#include <climits>
#include <cstdio>
#include <cstdlib>

namespace kvdebug {

// All digits that it takes to be the same number again.
std::string NumberText(double value) {
    char text[40];
    for (int digits = 15; digits <= 17; ++digits) {
        std::snprintf(text, sizeof text, "%.*g", digits, value);
        if (std::strtod(text, nullptr) == value) break;
    }
    return text;
}

bool ReadNumber(const char* text, long double& value) {
    char* end = nullptr;
    value = std::strtold(text, &end);
    return end != text && *end == '\0';
}

namespace {

class Parts : public Items {
public:
    Parts() : Items(0, ULONG_MAX) {}
    std::string text;

    void Take(const Value& value, std::size_t) override {
        std::string part;
        const bool isText = value.handler->show(value.at, part) == 's';
        const char* const quote = isText ? "\"" : "";
        text += (text.empty() ? "" : ", ") + std::string(value.name) + " = " + quote + part + quote;
    }
    void TakeFlag(std::size_t, std::vector<bool>::reference) override {}
};

}  // namespace

std::string PartsOf(void* at, void (*list)(void* at, Items& items)) {
    Parts parts;
    list(at, parts);
    return " {" + parts.text + "}";
}

namespace {

const std::size_t longestText = 10000;  // bytes of a String that are told

}  // namespace

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text.substr(0, longestText)) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned char>(c));
        if (c == '"' || c == '\\')
            (quoted += '\\') += c;
        else if (static_cast<unsigned char>(c) < ' ')
            quoted += escape;
        else
            quoted += c;
    }
    return quoted + "\"";
}

std::string Place(const Frame& frame) {
    return "\"routine\":" + Quoted(frame.routine) + ",\"file\":" + Quoted(frame.file) +
           ",\"line\":" + std::to_string(frame.line);
}

namespace {

std::size_t NumberAt(const Words& words, std::size_t at) {
    return at < words.size() ? std::strtoul(words[at].c_str(), nullptr, 10) : 0;
}

// Looks for the array with this first item among variables, and what Elements of them hold.
class Owner : public Items {
public:
    Owner(const void* first, Value& to) : Items(0, ULONG_MAX), found(false), wanted(first), array(to) {}
    bool found;

    void Take(const Value& value, std::size_t) override {
        if (found) return;
        found = value.handler->first(value.at) == wanted;
        if (found)
            array = value;
        else if (value.handler->opens)
            value.handler->list(value.at, *this);
    }
    void TakeFlag(std::size_t, std::vector<bool>::reference) override {}

private:
    const void* wanted;
    Value& array;
};

// The same among the Fields of objects.
class Owners : public Items {
public:
    Owners(const void* first, Value& to) : Items(0, ULONG_MAX), owner(first, to) {}
    Owner owner;

    void Take(const Value& object, std::size_t) override { object.handler->list(object.at, owner); }
    void TakeFlag(std::size_t, std::vector<bool>::reference) override {}
};

}  // namespace

bool FindArray(const void* first, Value& array) {
    if (first == nullptr) return false;
    Owners all(first, array);
    for (const Value& local : debugger->locals) all.owner.Take(local, 0);
    program.listGlobals(all.owner);
    for (const TypeRow* type = program.types; type->name != nullptr && !all.owner.found; ++type)
        type->list(all);
    return all.owner.found;
}

namespace {

class Told : public Items {
public:
    Told(std::size_t from, std::size_t atMost) : Items(from, atMost) {}

    void Take(const Value& value, std::size_t number) override {
        std::string text;
        const char kind = value.handler->show(value.at, text);
        const std::string name = value.name != nullptr ? value.name : "[" + std::to_string(number) + "]";
        json += std::string(json.empty() ? "" : ",") + "{\"name\":" + Quoted(name) +
                ",\"type\":" + Quoted(value.type != nullptr ? value.type : "") + ",\"kind\":\"" + kind +
                "\",\"value\":" + Quoted(text) +
                ",\"left\":" + std::to_string(text.size() - std::min(text.size(), longestText)) +
                ",\"ref\":" + std::to_string(debugger->told.size()) + "}";
        debugger->told.push_back(value);
    }
    void TakeFlag(std::size_t number, std::vector<bool>::reference flag) override {
        debugger->flags.push_back(flag);
        Item(number, debugger->flags.back());
    }
    void Answer() const { Say("{\"items\":[" + json + "],\"total\":" + std::to_string(total) + "}"); }

private:
    std::string json;
};

void TellStack(const Words& words) {
    const std::size_t total = debugger->frames.size();
    std::string json;
    for (std::size_t i = NumberAt(words, 1), n = 0; i < total && n < NumberAt(words, 2); ++i, ++n)
        json += (n == 0 ? "{" : ",{") + Place(debugger->frames[total - 1 - i]) + "}";
    Say("{\"frames\":[" + json + "],\"total\":" + std::to_string(total) + "}");
}

// Of the frame with this number, the innermost being 0.
void TellLocals(const Words& words) {
    Told told(0, ULONG_MAX);
    const std::size_t total = debugger->frames.size(), number = NumberAt(words, 1);
    if (number < total) {
        const std::size_t at = total - 1 - number;
        const std::size_t end = number == 0 ? debugger->locals.size() : debugger->frames[at + 1].locals;
        for (std::size_t i = debugger->frames[at].locals; i < end; ++i) told.Take(debugger->locals[i], i);
    }
    told.Answer();
}

void TellGlobals(const Words&) {
    Told told(0, ULONG_MAX);
    program.listGlobals(told);
    told.Answer();
}

void TellConsts(const Words&) {
    Told told(0, ULONG_MAX);
    program.listConsts(told);
    told.Answer();
}

void TellItems(const Words& words) {
    Told told(NumberAt(words, 2), NumberAt(words, 3));
    if (NumberAt(words, 1) < debugger->told.size()) {
        const Value value = debugger->told[NumberAt(words, 1)];  // told grows
        value.handler->list(value.at, told);
    }
    told.Answer();
}

void TellObjects(const Words& words) {
    Told told(NumberAt(words, 2), NumberAt(words, 3));
    for (const TypeRow* type = program.types; type->name != nullptr; ++type)
        if (words[1] == type->name) type->list(told);
    told.Answer();
}

void TellTypes(const Words&) {
    std::string json;
    for (const TypeRow* type = program.types; type->name != nullptr; ++type) {
        Told none(0, 0);
        type->list(none);
        json += std::string(json.empty() ? "" : ",") + "{\"name\":" + Quoted(type->name) +
                ",\"count\":" + std::to_string(none.total) + "}";
    }
    Say("{\"types\":[" + json + "]}");
}

// A tilde stands before what would end the word or the line.
std::string Meant(const std::string& word) {
    std::string text;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const bool isMarked = word[i] == '~' && ++i < word.size();
        text += !isMarked || word[i] == '~' ? word[i] : word[i] == 't' ? '\t' : '\n';
    }
    return text;
}

void SetValueOf(const Words& words) {
    const std::size_t number = NumberAt(words, 1);
    bool done = false;
    if (number < debugger->told.size() && words.size() > 2) {
        const Value& value = debugger->told[number];
        done = value.handler->set(value.at, Meant(words[2]).c_str());
    }
    Say(done ? "{\"done\":true}" : "{\"done\":false}");
}

const struct {
    const char* word;
    void (*answer)(const Words& words);
} questions[] = {
    {"stack", TellStack}, {"locals", TellLocals}, {"globals", TellGlobals}, {"consts", TellConsts},
    {"items", TellItems}, {"types", TellTypes},   {"objects", TellObjects}, {"set", SetValueOf},
};

}  // namespace

void Answer(const Words& words) {
    for (const auto& row : questions)
        if (words[0] == row.word) row.answer(words);
}

}  // namespace kvdebug
