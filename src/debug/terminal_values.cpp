// What somebody at a terminal is told of values.
#include <algorithm>
#include <cstdio>

#include "debug/terminal.h"

namespace debug {

namespace {
constexpr std::size_t itemsShown = 20;
}  // namespace

void Terminal::TellValue(const std::string& name, const Value& value) {
    const std::string type = value.type.empty() ? "" : ":" + value.type;
    std::printf("%s%s = %s\n", name.c_str(), type.c_str(), Shown(value).c_str());
}

void Terminal::TellPart(const Part& part, const char* indent) {
    for (const Value& value : part.items) {
        const bool isItem = value.name[0] == '[';  // whose type is that of the list
        std::printf("%s", indent);
        TellValue(value.name, isItem ? Plain(value.kind, value.text) : value);
    }
    if (part.total > part.items.size())
        std::printf("%sand %zu more\n", indent, part.total - part.items.size());
}

void Terminal::TellAll(const Part& part, const std::string& what) {
    TellPart(part, "");
    if (part.items.empty()) std::printf("there are no %s\n", what.c_str());
}

void Terminal::Locals(const std::string&) { TellAll(session.Locals(frame), "Locals here"); }

void Terminal::Globals(const std::string&) { TellAll(session.Globals(), "Globals"); }

void Terminal::Print(const std::string& rest) {
    const Value value = Evaluate(session, frame, rest);
    TellValue(rest, value);
    TellPart(session.Items(value, 0, itemsShown), "    ");
}

void Terminal::Change(const std::string& rest) {
    const std::size_t sign = rest.find('=');
    if (sign == std::string::npos) throw Refusal{"set NAME = EXPRESSION"};
    const Value place = Evaluate(session, frame, rest.substr(0, sign));
    const Value value = Evaluate(session, frame, rest.substr(sign + 1));
    if (!session.Set(place, value)) throw Refusal{"that cannot be changed to " + Shown(value)};
    Print(rest.substr(0, rest.find_last_not_of(' ', sign - 1) + 1));
}

void Terminal::Objects(const std::string& rest) {
    const std::vector<TypeCount> types = session.Types();
    std::vector<std::string> names;
    for (const TypeCount& type : types) {
        if (rest == type.name) return TellAll(session.Objects(rest, 0, itemsShown), "objects of " + rest);
        names.push_back(type.name);
        if (!rest.empty()) continue;
        std::printf("%s: %zu object%s\n", type.name.c_str(), type.count, type.count == 1 ? "" : "s");
    }
    if (types.empty()) throw Refusal{"the program has no Types"};
    if (rest.empty()) return;
    const std::string meant = DidYouMean(rest, names);
    throw Refusal{"there is no Type " + rest + (meant.empty() ? ", and Elements have no objects" : meant)};
}

void Terminal::Watch(const std::string& rest) {
    Check(rest);
    if (std::find(watched.begin(), watched.end(), rest) == watched.end()) watched.push_back(rest);
    if (stands) TellValue(rest, Evaluate(session, frame, rest));
}

void Terminal::Unwatch(const std::string& rest) {
    const auto left = std::remove(watched.begin(), watched.end(), rest);
    if (left == watched.end()) throw Refusal{"nothing of that kind is watched"};
    watched.erase(left, watched.end());
}

void Terminal::Help(const std::string&) {
    for (const Row& row : Rows())
        std::printf("%-10s%-4s%-44s%s\n", row.word, row.shortWord, row.usage, row.help);
}

void Terminal::Quit(const std::string&) { leaves = true; }

}  // namespace debug
