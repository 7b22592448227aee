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
    for (const Frame& frame : session->Stack(first, wanted == 0 ? mostItems : wanted, total))
        frames.push_back(
            {{"id", first + frames.size()},
             {"name", frame.routine},
             {"line", frame.line},
             {"column", 1},
             {"source", {{"name", TextOf(PathOf(frame.file).filename())}, {"path", frame.file}}}});
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
    const bool opens = value.ref >= 0 && value.text != "Null" && value.text != "[0]" &&
                       (value.kind == 'o' || value.kind == 'e' || value.kind == 'l');
    return {{"name", value.name},
            {"value", Shown(value)},
            {"type", value.type},
            {"variablesReference", opens ? Hold({Holder::Kind::Parts, 0, value}) : 0}};
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

Json Adapter::Variables(const Json& arguments) {
    const Holder holder = HolderOf(arguments);
    Json variables = Json::array();
    if (holder.kind == Holder::Kind::Types) {
        for (const TypeCount& type : session->Types())
            variables.push_back(
                {{"name", type.name},
                 {"value", std::to_string(type.count)},
                 {"variablesReference",
                  type.count == 0 ? 0 : Hold({Holder::Kind::Objects, 0, {type.name, "", '?', "", -1}})}});
        return {{"variables", variables}};
    }
    const std::size_t first = arguments.value("start", std::size_t{0});
    const std::size_t count = arguments.value("count", std::size_t{0});
    for (const Value& value : PartOf(holder, first, count == 0 ? mostItems : count).items)
        variables.push_back(Told(value));
    return {{"variables", variables}};
}

Json Adapter::EvaluateIt(const Json& arguments) {
    NeedsStop();
    Value value = Evaluate(*session, arguments.value("frameId", std::size_t{0}),
                           arguments.at("expression").get<std::string>());
    Json told = Told(value);
    told["result"] = told["value"];
    return told;
}

Json Adapter::SetVariable(const Json& arguments) {
    const Holder holder = HolderOf(arguments);
    const Value value = Evaluate(*session, holder.frame, arguments.at("value").get<std::string>());
    for (const Value& place : PartOf(holder, 0, mostItems).items) {
        if (place.name != arguments.at("name").get<std::string>()) continue;
        if (!session->Set(place, value)) throw Refusal{"it cannot be changed to " + Shown(value)};
        return {{"value", Shown(value)}};
    }
    throw Refusal{"there is no such variable"};
}

}  // namespace debug
