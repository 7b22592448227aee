#include "debug/session.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sstream>
#include <utility>

#include "base/text.h"
#include "base/token_text.h"
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
    value.left = item.at("left").get<std::size_t>();
    return value;
}

std::string Range(std::size_t first, std::size_t count) {
    return "\t" + std::to_string(first) + "\t" + std::to_string(count);
}

// Of "Int[]" and "Sequence Of Int", "Int".
std::string TypeOfItems(const std::string& type) {
    const std::string word = "Sequence Of ";
    if (StartsWith(type, word)) return type.substr(word.size());
    return EndsWith(type, "[]") ? type.substr(0, type.size() - 2) : "";
}

// Of a "{" in a log text: its "}", which does not stand in a text. `npos` where there is none.
std::size_t EndOfHole(const std::string& text, std::size_t from) {
    bool isQuoted = false;
    for (std::size_t at = from; at < text.size(); ++at) {
        if (text[at] == '"') isQuoted = !isQuoted;
        if (text[at] == '}' && !isQuoted) return at;
    }
    return std::string::npos;
}

// A hole may have the tag that those of Strings have, "{$name}".
std::string WithoutTag(const std::string& inside) {
    const bool hasTag = inside.size() > 1 && (inside[0] == '$' || inside[0] == '%' || inside[0] == '!') &&
                        IsLetterByte(inside[1]);
    return hasTag ? inside.substr(1) : inside;
}

// "hp is {hp}" with what becomes of its holes.
std::string WithHoles(const std::string& text,
                      const std::function<std::string(const std::string& inside)>& filling) {
    std::string filled;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t end = text[at] == '{' ? EndOfHole(text, at + 1) : std::string::npos;
        if (end == std::string::npos) {
            filled += text[at];
            continue;
        }
        filled += filling(WithoutTag(text.substr(at + 1, end - at - 1)));
        at = end;
    }
    return filled;
}

// What ends words and lines is said by a tilde and a letter.
std::string InOneWord(const std::string& text) {
    std::string word;
    for (const char c : text) {
        if (c == '~' || c == '\t' || c == '\n')
            (word += '~') += c == '~' ? '~' : c == '\t' ? 't' : 'n';
        else
            word += c;
    }
    return word;
}

template <class Words>
Words WordsOf(const Json& text) {
    std::istringstream words(text.get<std::string>());
    typedef std::istream_iterator<typename Words::value_type> Reading;
    return {Reading(words), Reading()};
}

}  // namespace

const char* const waitsText = "the program waits for something, and stands when that has come";

std::size_t ItemCount(const Value& value) {
    return value.kind == 'l' ? std::strtoul(value.text.c_str() + 1, nullptr, 10) : 0;
}

std::string Shown(const Value& value) {
    const std::string more = value.left > 0 ? " and " + std::to_string(value.left) + " bytes more" : "";
    return value.kind == 's' ? Written(value.text) + more : value.text;
}

int CountIn(const std::string& text) {
    constexpr std::size_t mostDigits = 9;
    if (text.empty()) return 0;
    const bool isNumber = text.size() <= mostDigits && std::all_of(text.begin(), text.end(), IsDigit);
    const int number = isNumber ? std::atoi(text.c_str()) : 0;
    return number > 0 ? number : -1;
}

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
        TakePlaces(Json::parse(WholeUtf8(text)));
        break;
    }
    target.Send("skip\t" + launch.installation + "/lib/");
    ForgetEnds();  // that the run before has not met
    for (Breakpoint& breakpoint : breakpoints) {
        breakpoint.hits = 0;
        Settle(breakpoint);
    }
    SendBreakpoints();
    return true;
}

void Session::TakePlaces(const Json& said) {
    places.clear();
    meantByIts.clear();
    for (const Json& row : said.at("places")) {
        Places taken = {row.at("routine").get<std::string>(), row.at("file").get<std::string>(),
                        WordsOf<std::vector<int>>(row.at("lines")),
                        WordsOf<std::set<std::string>>(row.at("names"))};
        for (const int line : taken.lines)
            if (taken.routine.empty()) meantByIts[{taken.file, line}] = row.at("names").get<std::string>();
        if (taken.routine.empty() && taken.file.empty())
            namesEverywhere = taken.names;
        else if (!taken.routine.empty())
            places.push_back(std::move(taken));
    }
}

// Of the ways in which a name may mean a file the surest one counts.
std::string Session::FindFile(const std::string& name) const {
    if (name.empty()) return "";
    const std::filesystem::path typed = PathOf(launch.typedFolder) / PathOf(name);
    const std::string end = "/" + GenericTextOf(PathOf(name).lexically_normal());
    const auto isSame = [&](const std::filesystem::path& file) {
        return file.lexically_normal() == typed.lexically_normal();
    };
    const auto isThere = [&](const std::filesystem::path& file) {
        std::error_code ignored;
        const std::filesystem::path besideMain = PathOf(launch.source).parent_path() / PathOf(name);
        return std::filesystem::equivalent(file, typed, ignored) ||
               std::filesystem::equivalent(file, besideMain, ignored);
    };
    const auto endsSo = [&](const std::filesystem::path& file) { return EndsWith(GenericTextOf(file), end); };
    const std::function<bool(const std::filesystem::path&)> ways[] = {isSame, isThere, endsSo};
    for (const auto& means : ways) {
        for (const Places& row : places)
            if (means(PathOf(row.file))) return row.file;
    }
    return "";
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

std::vector<std::string> Session::NamesOfRoutines() const {
    std::vector<std::string> names;
    for (const Places& row : places) {
        const std::size_t sign = row.routine.find('\\');
        names.push_back(row.routine);
        if (sign != std::string::npos) names.push_back(row.routine.substr(sign + 1));
    }
    return names;
}

std::string Session::MeantByIts(const std::string& file, int line) const {
    const auto found = meantByIts.find({file, line});
    return found == meantByIts.end() ? "" : found->second;
}

std::vector<std::string> Session::NamesIn(const std::string& file, int line) const {
    std::vector<std::string> names(namesEverywhere.begin(), namesEverywhere.end());
    for (const Places& row : places)
        if (row.file == file && std::find(row.lines.begin(), row.lines.end(), line) != row.lines.end())
            names.insert(names.end(), row.names.begin(), row.names.end());
    return names;
}

void Session::Settle(Breakpoint& one) const {
    one.line = 0;
    one.problem.clear();
    if (!one.routine.empty())
        FindRoutine(one.routine, one.file, one.line);
    else if (!(one.file = FindFile(one.askedFile)).empty())
        one.line = FindLine(one.file, one.askedLine);
    try {
        if (one.line == 0 && !one.routine.empty())
            throw Refusal{"there is no Function or Method " + one.routine +
                          " in which the program could stop" + DidYouMean(one.routine, NamesOfRoutines())};
        if (one.line == 0) throw Refusal{"the program cannot stop there"};
        if (one.wanted < 0) throw Refusal{"a hit count is a number: 3 stops from the third time on"};
        if (!one.condition.empty()) Check(*this, one.file, one.line, one.condition);
        WithHoles(one.log, [&](const std::string& inside) {
            Check(*this, one.file, one.line, inside);
            return "";
        });
    } catch (const Refusal& refusal) {
        one.problem = refusal.text;
    }
    one.isRight = one.problem.empty();
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
        if (one.isRight) lines[one.file] += "\t" + std::to_string(one.line);
    for (const auto& [file, list] : lines) target.Send("breaks\t" + file + list);
}

void Session::Go(const std::string& how) { target.Send(how); }

// A condition that makes no sense stops, too, so that it is seen.
bool Session::Stops(Breakpoint& breakpoint, std::string& logged) {
    if (!breakpoint.condition.empty()) {
        try {
            if (!IsTrue(Evaluate(*this, 0, breakpoint.condition))) return false;
        } catch (const Refusal& refusal) {
            breakpoint.problem = refusal.text;
            logged +=
                "condition of breakpoint " + std::to_string(breakpoint.number) + ": " + refusal.text + "\n";
        }
    }
    if (++breakpoint.hits < breakpoint.wanted) return false;
    if (breakpoint.log.empty()) return true;
    logged += WithHoles(breakpoint.log,
                        [&](const std::string& inside) -> std::string {
                            try {
                                return Evaluate(*this, 0, inside).text;
                            } catch (const Refusal& refusal) {
                                breakpoint.problem = refusal.text;
                                return "{" + refusal.text + "}";
                            }
                        }) +
              "\n";
    return false;
}

bool Session::TakesStop(const std::string& line, Stop& stop, std::string& logged) {
    const Json said = Json::parse(WholeUtf8(line));
    stop.reason = said.at("reason").get<std::string>();
    stop.text = said.at("text").get<std::string>();
    stop.breakpoint = 0;
    const std::string file = said.at("file").get<std::string>();
    const bool mayBeMet = stop.reason == "breakpoint";
    if (mayBeMet) stop.reason = std::exchange(stop.text, "");
    bool stands = !stop.reason.empty();
    for (Breakpoint& one : breakpoints) {
        if (!mayBeMet || !one.isRight || one.file != file || one.line != said.at("line").get<int>()) continue;
        if (!Stops(one, logged)) continue;
        stands = true;
        if (one.once) continue;  // where a step ends that was given its end
        stop.reason = "breakpoint";
        stop.breakpoint = one.number;
    }
    if (!stands) return false;
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

// A program that fails while it is asked says so instead of an answer, and is left to end.
Json Session::Ask(const std::string& question, const char* wanted) {
    target.Send(question);
    for (std::string text;;) {
        const Target::Event event = target.Wait(-1, text);
        if (event == Target::Event::Ended) throw Gone();
        if (event != Target::Event::Line) continue;
        const Json answer = Json::parse(WholeUtf8(text), nullptr, false);
        if (answer.is_object() && answer.contains(wanted)) return answer;
        Go("go");
    }
}

Part Session::AskForPart(const std::string& question) {
    const Json answer = Ask(question, "items");
    Part part;
    for (const Json& item : answer.at("items")) part.items.push_back(ValueOf(item));
    part.total = answer.at("total").get<std::size_t>();
    return part;
}

std::vector<Frame> Session::Stack(std::size_t first, std::size_t count, std::size_t& total) {
    const Json answer = Ask("stack" + Range(first, count), "frames");
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
    if (value.ref < 0) return {};
    Part part = AskForPart("items\t" + std::to_string(value.ref) + Range(first, count));
    for (Value& item : part.items)
        if (item.type.empty()) item.type = TypeOfItems(value.type);
    return part;
}

Part Session::Objects(const std::string& type, std::size_t first, std::size_t count) {
    Part part = AskForPart("objects\t" + type + Range(first, count));
    for (Value& object : part.items) object.type = type;
    return part;
}

std::vector<TypeCount> Session::Types() {
    std::vector<TypeCount> types;
    const Json answer = Ask("types", "types");
    for (const Json& row : answer.at("types"))
        types.push_back({row.at("name").get<std::string>(), row.at("count").get<std::size_t>()});
    return types;
}

bool Session::Set(const Value& place, const Value& value) {
    const bool isText = place.kind == 's' && value.kind == 's';
    const auto counts = [](const Value& one) { return one.kind == 'b' || IsNumber(one); };
    const bool isNumber = counts(place) && counts(value);
    if (place.ref < 0 || value.left > 0 || (!isText && !isNumber)) return false;
    const std::string text = value.kind == 'b' ? (value.text == "True" ? "1" : "0") : value.text;
    return Ask("set\t" + std::to_string(place.ref) + "\t" + InOneWord(text), "done").at("done").get<bool>();
}

std::string PlainPath(const std::string& file) {
    std::error_code ignored;
    const std::filesystem::path plain = PathOf(file).lexically_normal();
    return std::filesystem::equivalent(plain, PathOf(file), ignored) ? TextOf(plain) : file;
}

std::string Session::ShortPath(const std::string& written) const {
    const std::string file = PlainPath(written);
    const std::string& folder = launch.typedFolder;
    const bool isInside =
        StartsWith(file, folder) && file.find_first_of("/\\", folder.size()) == folder.size();
    return isInside ? file.substr(folder.size() + 1) : file;
}

}  // namespace debug
