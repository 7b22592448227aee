#include "debug/session.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

#include "base/text.h"
#include "base/utf8.h"
#include "debug/evaluate.h"

namespace debug {

namespace {

// Strings of the program may hold any bytes, JSON none that are no UTF-8.
std::string WholeUtf8(const std::string& text) {
    const std::string mended = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
    return Json::parse(mended).get<std::string>();
}

Value ValueOf(const Json& item) {
    Value value;
    value.name = item.at("name").get<std::string>();
    value.type = item.at("type").get<std::string>();
    value.kind = item.at("kind").get<std::string>()[0];
    value.text = item.at("value").get<std::string>();
    value.ref = item.at("ref").get<int>();
    return value;
}

std::string Range(std::size_t first, std::size_t count) {
    return "\t" + std::to_string(first) + "\t" + std::to_string(count);
}

// "hp is {hp}" with the values at the place of the stop.
std::string WithValues(Session& session, const std::string& text) {
    std::string filled;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t end = text[at] == '{' ? text.find('}', at) : std::string::npos;
        if (end == std::string::npos) {
            filled += text[at];
            continue;
        }
        try {
            filled += Evaluate(session, 0, text.substr(at + 1, end - at - 1)).text;
        } catch (const Refusal& refusal) {
            filled += "{" + refusal.text + "}";
        }
        at = end;
    }
    return filled;
}

}  // namespace

const char* const waitsText = "the program waits for something, and stands when that has come";

std::size_t ItemCount(const Value& value) {
    return value.kind == 'l' ? std::strtoul(value.text.c_str() + 1, nullptr, 10) : 0;
}

std::string Shown(const Value& value) { return value.kind == 's' ? "\"" + value.text + "\"" : value.text; }

bool Session::Start(const std::string& folder, bool catches, std::string& problem) {
    return target.Start(launch.command, folder, catches, problem) && Begin(problem);
}

bool Session::Begin(std::string& problem) {
    for (std::string text;;) {
        const Target::Event event = target.Wait(-1, text);
        if (event == Target::Event::Ended) {
            problem = "it ended before it began (status " + std::to_string(target.End(false)) + ")";
            return false;
        }
        if (event != Target::Event::Line) continue;
        places.clear();
        const Json said = Json::parse(WholeUtf8(text));
        for (const Json& row : said.at("places")) {
            std::istringstream lines(row.at("lines").get<std::string>());
            places.push_back({row.at("routine").get<std::string>(),
                              row.at("file").get<std::string>(),
                              {std::istream_iterator<int>(lines), std::istream_iterator<int>()}});
        }
        break;
    }
    target.Send("skip\t" + launch.installation + "/lib/");
    ForgetEnds();  // that the run before has not met
    for (Breakpoint& breakpoint : breakpoints) breakpoint.hits = 0;
    SendBreakpoints();
    return true;
}

std::string Session::FindFile(const std::string& name) const {
    const std::filesystem::path typed = (PathOf(launch.typedFolder) / PathOf(name)).lexically_normal();
    const std::string end = "/" + GenericTextOf(PathOf(name));
    std::string found;
    std::error_code ignored;
    for (const Places& row : places) {
        const std::filesystem::path file = PathOf(row.file);
        if (file == typed) return row.file;
        const bool isSame =
            EndsWith(GenericTextOf(file), end) || std::filesystem::equivalent(file, typed, ignored);
        if (isSame) found = row.file;
    }
    return found;
}

int Session::FindLine(const std::string& file, int line) const {
    int best = 0;
    for (const Places& row : places) {
        for (const int there : row.lines)
            if (row.file == file && there >= line && (best == 0 || there < best)) best = there;
    }
    return best;
}

bool Session::FindRoutine(const std::string& name, std::string& file, int& line) const {
    for (const Places& row : places) {
        if (row.routine != name && !EndsWith(row.routine, "\\" + name)) continue;
        if (row.lines.empty()) continue;
        file = row.file;
        line = row.lines.front();
        return true;
    }
    return false;
}

int Session::Add(Breakpoint breakpoint) {
    breakpoint.number = NewNumber();
    breakpoints.push_back(std::move(breakpoint));
    SendBreakpoints();
    return lastNumber;
}

void Session::TakeBreakpoints(const Session& other) {
    breakpoints = other.breakpoints;
    lastNumber = other.lastNumber;
}

bool Session::Remove(int number) {
    const auto found = std::find_if(breakpoints.begin(), breakpoints.end(),
                                    [number](const Breakpoint& one) { return one.number == number; });
    if (found == breakpoints.end()) return false;
    breakpoints.erase(found);
    SendBreakpoints();
    return true;
}

void Session::SendBreakpoints() {
    if (!target.IsRunning()) return;
    std::map<std::string, std::string> lines;
    for (const Places& row : places) lines[row.file];
    for (const Breakpoint& one : breakpoints)
        if (one.line > 0) lines[one.file] += "\t" + std::to_string(one.line);
    for (const auto& [file, list] : lines) target.Send("breaks\t" + file + list);
}

void Session::Go(const std::string& how) { target.Send(how); }

// A condition that makes no sense stops, too, so that it is seen.
bool Session::Stops(Breakpoint& breakpoint, std::string& logged) {
    if (!breakpoint.condition.empty()) {
        try {
            if (!IsTrue(Evaluate(*this, 0, breakpoint.condition))) return false;
        } catch (const Refusal& refusal) {
            logged +=
                "condition of breakpoint " + std::to_string(breakpoint.number) + ": " + refusal.text + "\n";
        }
    }
    if (++breakpoint.hits < breakpoint.wanted) return false;
    if (breakpoint.log.empty()) return true;
    logged += WithValues(*this, breakpoint.log) + "\n";
    return false;
}

bool Session::TakesStop(const std::string& line, Stop& stop, std::string& logged) {
    const Json said = Json::parse(WholeUtf8(line));
    stop.reason = said.at("reason").get<std::string>();
    stop.text = said.at("text").get<std::string>();
    stop.breakpoint = 0;
    const std::string file = said.at("file").get<std::string>();
    bool stands = stop.reason != "breakpoint" || said.at("stepped").get<bool>();
    if (stop.reason == "breakpoint") stop.reason = "step";
    for (Breakpoint& one : breakpoints) {
        if (one.file != file || one.line != said.at("line").get<int>() || stop.reason == "failure") continue;
        if (!Stops(one, logged)) continue;
        stands = true;
        if (one.once) continue;  // where a step ends that was given its end
        stop.reason = "breakpoint";
        stop.breakpoint = one.number;
    }
    if (!stands) {
        target.Send("again");
        return false;
    }
    if (ForgetEnds()) SendBreakpoints();
    return true;
}

bool Session::ForgetEnds() {
    const auto isEnd = [](const Breakpoint& one) { return one.once; };
    const auto ends = std::remove_if(breakpoints.begin(), breakpoints.end(), isEnd);
    const bool any = ends != breakpoints.end();
    breakpoints.erase(ends, breakpoints.end());
    return any;
}

Json Session::Ask(const std::string& question) {
    target.Send(question);
    for (std::string text;;) {
        const Target::Event event = target.Wait(-1, text);
        if (event == Target::Event::Ended) throw Gone();
        if (event == Target::Event::Line) return Json::parse(WholeUtf8(text));
    }
}

Part Session::AskForPart(const std::string& question) {
    const Json answer = Ask(question);
    Part part;
    for (const Json& item : answer.at("items")) part.items.push_back(ValueOf(item));
    part.total = answer.at("total").get<std::size_t>();
    return part;
}

std::vector<Frame> Session::Stack(std::size_t first, std::size_t count, std::size_t& total) {
    const Json answer = Ask("stack" + Range(first, count));
    std::vector<Frame> frames;
    for (const Json& row : answer.at("frames"))
        frames.push_back({row.at("routine").get<std::string>(), row.at("file").get<std::string>(),
                          row.at("line").get<int>()});
    total = answer.at("total").get<std::size_t>();
    return frames;
}

// Variables that are hidden by others of their name come first.
Part Session::Locals(std::size_t frame) {
    Part part = AskForPart("locals\t" + std::to_string(frame));
    std::vector<Value> visible;
    for (auto value = part.items.rbegin(); value != part.items.rend(); ++value) {
        const auto isHidden = [&](const Value& other) { return other.name == value->name; };
        if (std::none_of(visible.begin(), visible.end(), isHidden)) visible.push_back(*value);
    }
    part.items.assign(visible.rbegin(), visible.rend());
    return part;
}

Part Session::Globals() { return AskForPart("globals"); }

Part Session::Consts() { return AskForPart("consts"); }

Part Session::Items(const Value& value, std::size_t first, std::size_t count) {
    return value.ref < 0 ? Part() : AskForPart("items\t" + std::to_string(value.ref) + Range(first, count));
}

Part Session::Objects(const std::string& type, std::size_t first, std::size_t count) {
    return AskForPart("objects\t" + type + Range(first, count));
}

std::vector<TypeCount> Session::Types() {
    std::vector<TypeCount> types;
    const Json answer = Ask("types");
    for (const Json& row : answer.at("types"))
        types.push_back({row.at("name").get<std::string>(), row.at("count").get<std::size_t>()});
    return types;
}

bool Session::Set(const Value& place, const Value& value) {
    const bool isText = place.kind == 's' && value.kind == 's';
    const auto counts = [](const Value& one) { return one.kind == 'b' || IsNumber(one); };
    const bool isNumber = counts(place) && counts(value);
    if (place.ref < 0 || (!isText && !isNumber)) return false;
    if (value.text.find_first_of("\t\n") != std::string::npos) return false;
    const std::string text = value.kind == 'b' ? (value.text == "True" ? "1" : "0") : value.text;
    return Ask("set\t" + std::to_string(place.ref) + "\t" + text).at("done").get<bool>();
}

std::string Session::ShortPath(const std::string& file) const {
    const std::string& folder = launch.typedFolder;
    const bool isInside =
        StartsWith(file, folder) && file.find_first_of("/\\", folder.size()) == folder.size();
    return isInside ? file.substr(folder.size() + 1) : file;
}

}  // namespace debug
