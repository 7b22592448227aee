// What the editor is told of the calls under way and of values.
#include "base/utf8.h"
#include "debug/adapter.h"

namespace debug {

namespace {
constexpr std::size_t mostItems = 1000;
}  // namespace

Json Adapter::StackTrace(const Json& arguments) {
    NeedsStop();
    const std::size_t first = arguments.value("startFrame", std::size_t{0});
    const std::size_t wanted = arguments.value("levels", std::size_t{0});
    std::size_t total = 0;
    Json frames = Json::array();
    for (const Frame& frame : session->Stack(first, wanted == 0 ? mostItems : wanted, total)) {
        const auto known = spelled.find(frame.file);
        const std::string path = PlainPath(known == spelled.end() ? frame.file : known->second);
        frames.push_back({{"id", first + frames.size()},
                          {"name", frame.routine},
                          {"line", frame.line},
                          {"column", 1},
                          {"source", {{"name", TextOf(PathOf(path).filename())}, {"path", path}}}});
    }
    return {{"stackFrames", frames}, {"totalFrames", total}};
}

std::size_t Adapter::Hold(Holder holder) {
    holders.push_back(std::move(holder));
    return holders.size();
}

Json Adapter::Scopes(const Json& arguments) {
    NeedsStop();
    const std::size_t frame = arguments.at("frameId").get<std::size_t>();
    Json scopes = Json::array();
    const auto add = [&](const char* name, Holder::Kind kind) {
        scopes.push_back(
            {{"name", name}, {"variablesReference", Hold({kind, frame, {}})}, {"expensive", false}});
    };
    add("Locals", Holder::Kind::Locals);
    add("Globals", Holder::Kind::Globals);
    add("Objects", Holder::Kind::Types);
    return {{"scopes", scopes}};
}

Json Adapter::Told(const Value& value) {
    const bool hasParts = value.kind == 'o' || value.kind == 'e' || ItemCount(value) > 0;
    const bool opens = value.ref >= 0 && value.text != "Null" && hasParts;
    Json told = {{"name", value.name},
                 {"value", Shown(value)},
                 {"variablesReference", opens ? Hold({Holder::Kind::Parts, 0, value}) : 0}};
    if (!value.type.empty()) told["type"] = value.type;
    if (ItemCount(value) > 0) told["indexedVariables"] = ItemCount(value);
    return told;
}

Part Adapter::PartOf(const Holder& holder, std::size_t first, std::size_t count) {
    switch (holder.kind) {
        case Holder::Kind::Locals:
            return session->Locals(holder.frame);
        case Holder::Kind::Globals:
            return session->Globals();
        case Holder::Kind::Objects:
            return session->Objects(holder.value.name, first, count);
        default:
            return session->Items(holder.value, first, count);
    }
}

const Holder& Adapter::HolderOf(const Json& arguments) {
    NeedsStop();
    const std::size_t number = arguments.at("variablesReference").get<std::size_t>();
    if (number == 0 || number > holders.size()) throw Refusal{"there is nothing of that number"};
    return holders[number - 1];
}

Json Adapter::TypesTold() {
    Json variables = Json::array();
    for (const TypeCount& type : session->Types())
        variables.push_back(
            {{"name", type.name},
             {"value", std::to_string(type.count)},
             {"indexedVariables", type.count},
             {"variablesReference",
              type.count == 0 ? 0 : Hold({Holder::Kind::Objects, 0, {type.name, "", '?', "", -1}})}});
    return {{"variables", variables}};
}

// Editors that do not ask for pages get the first one, and are told that there is more.
Json Adapter::Variables(const Json& arguments) {
    const Holder holder = HolderOf(arguments);
    if (holder.kind == Holder::Kind::Types) return TypesTold();
    const std::size_t first = arguments.value("start", std::size_t{0});
    const std::size_t count = arguments.value("count", std::size_t{0});
    const bool hasNames = holder.kind != Holder::Kind::Objects && ItemCount(holder.value) == 0;
    Json variables = Json::array();
    if (arguments.value("filter", "") == (hasNames ? "indexed" : "named")) return {{"variables", variables}};
    const Part part = PartOf(holder, first, count == 0 ? mostItems : count);
    for (const Value& value : part.items) variables.push_back(Told(value));
    if (count == 0 && part.total > first + mostItems)
        variables.push_back({{"name", "..."},
                             {"value", std::to_string(part.total - first - mostItems) + " more"},
                             {"variablesReference", 0}});
    return {{"variables", variables}};
}

// What is typed into the editor's console while the program runs is for the program.
void Adapter::Type(const std::string& text) {
    if (begins) NeedsStop();
    if (!session->target.Type(text + "\n")) throw Refusal{"the program takes no input here"};
}

Json Adapter::EvaluateIt(const Json& arguments) {
    const std::string expression = arguments.at("expression").get<std::string>();
    const bool runs = session != nullptr && session->target.IsRunning() && !stands;
    if (runs && arguments.value("context", "") == "repl") {
        Type(expression);
        return {{"result", ""}, {"variablesReference", 0}};
    }
    NeedsStop();
    const Value value = Evaluate(*session, arguments.value("frameId", std::size_t{0}), expression);
    Json told = Told(value);
    told["result"] = told["value"];
    return told;
}

// What it is then may be another value: an Int has no fractions.
Json Adapter::Changed(const std::function<Value()>& place, const Value& value) {
    if (!session->Set(place(), value)) throw Refusal{"it cannot be changed to " + Shown(value)};
    return Told(place());
}

Json Adapter::SetVariable(const Json& arguments) {
    const Holder holder = HolderOf(arguments);
    const std::string name = arguments.at("name").get<std::string>();
    const Value value = Evaluate(*session, holder.frame, arguments.at("value").get<std::string>());
    const auto place = [&]() -> Value {
        const Part part = PartOf(holder, 0, mostItems);
        for (const Value& one : part.items)
            if (one.name == name) return one;
        throw Refusal{"there is no such variable"};
    };
    return Changed(place, value);
}

Json Adapter::SetExpression(const Json& arguments) {
    NeedsStop();
    const std::size_t frame = arguments.value("frameId", std::size_t{0});
    const Value value = Evaluate(*session, frame, arguments.at("value").get<std::string>());
    return Changed([&] { return Evaluate(*session, frame, arguments.at("expression").get<std::string>()); },
                   value);
}

}  // namespace debug
