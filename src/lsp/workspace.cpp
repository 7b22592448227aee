#include "lsp/workspace.h"

#include <algorithm>
#include <cctype>

#include "base/source_reader.h"
#include "lsp/main_files.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

std::string ReadText(const std::string& path) {
    std::string text;
    if (!ReadFile(path, text)) return {};
    return text.substr(ByteOrderMarkOf(text));
}

std::size_t OffsetOf(const Lines& lines, const Json& position) {
    return lines.Offset(position.at("line").get<int>(), position.at("character").get<int>());
}

std::string Changed(const Lines& lines, const Json& change) {
    const std::string& text = change.at("text").get_ref<const std::string&>();
    if (change.value("range", Json()).is_null()) return text;
    const std::size_t start = OffsetOf(lines, change["range"].at("start"));
    const std::size_t end = std::max(start, OffsetOf(lines, change["range"].at("end")));
    return lines.Text().substr(0, start) + text + lines.Text().substr(end);
}

void AddOnce(std::vector<const Program*>& list, const Program& program) {
    if (std::find(list.begin(), list.end(), &program) == list.end()) list.push_back(&program);
}

Json Position(int line, int unit) { return {{"line", line}, {"character", unit}}; }

}  // namespace

void Workspace::Open(const Json& document) {
    const std::string uri = document.at("uri").get<std::string>();
    documents[PathOfUri(uri)] = {uri, document.value("version", Json()),
                                 Lines(document.at("text").get<std::string>())};
    Forget();
}

void Workspace::Change(const Json& document, const Json& changes) {
    const auto found = documents.find(PathOfUri(document.at("uri").get<std::string>()));
    if (found == documents.end()) return;
    Document& open = found->second;
    open.version = document.value("version", Json());
    for (const Json& change : changes) open.lines = Lines(Changed(open.lines, change));
    programs.clear();
}

void Workspace::Close(const std::string& uri) {
    documents.erase(PathOfUri(uri));
    Forget();
}

void Workspace::Forget() {
    mains.clear();
    programs.clear();
    files.clear();
}

korvel::Request Workspace::RequestFor(const std::string& main) const {
    korvel::Request request;
    request.installation = services.installation;
    request.source = main;
    for (const auto& [path, document] : documents) request.overlays.push_back({path, document.lines.Text()});
    return request;
}

const std::string& Workspace::MainOf(const std::string& path) {
    const auto found = mains.find(path);
    if (found != mains.end()) return found->second;
    return mains[path] = FindMain(path);
}

// A file that has no Main of its own belongs to the first program near it that includes it.
std::string Workspace::FindMain(const std::string& path) {
    if (DeclaresMain(LinesOf(path).Text())) return path;
    for (const std::string& main : MainsNear(path)) {
        const korvel::Result result = korvel::Check(RequestFor(main));
        const auto same = [&path](const std::string& source) { return NormalPath(source) == path; };
        if (std::any_of(result.sources.begin(), result.sources.end(), same)) return main;
    }
    return path;
}

std::vector<std::string> Workspace::MainsNear(const std::string& path) {
    std::vector<std::string> mains = FilesNear(path, roots);
    const auto isOther = [&](const std::string& file) {
        const std::string& text = LinesOf(file).Text();
        return !MayInclude(text, path) || !DeclaresMain(text);
    };
    mains.erase(std::remove_if(mains.begin(), mains.end(), isOther), mains.end());
    return mains;
}

const Program& Workspace::ProgramOf(const std::string& path) {
    const std::string& main = MainOf(path);
    const auto [entry, isNew] = programs.try_emplace(main);
    if (isNew) entry->second = {main, korvel::Inspect(RequestFor(main))};
    return entry->second;
}

std::vector<const Program*> Workspace::OpenPrograms() {
    std::vector<const Program*> open;
    for (const auto& [path, document] : documents) AddOnce(open, ProgramOf(path));
    return open;
}

std::vector<const Program*> Workspace::ProgramsNear(const std::string& path) {
    std::vector<const Program*> near = OpenPrograms();
    for (const std::string& main : MainsNear(path)) AddOnce(near, ProgramOf(main));
    return near;
}

const Lines& Workspace::LinesOf(const std::string& path) {
    const std::string normal = NormalPath(path);
    const auto open = documents.find(normal);
    if (open != documents.end()) return open->second.lines;
    const auto [entry, isNew] = files.try_emplace(normal);
    if (isNew) entry->second = Lines(ReadText(normal));
    return entry->second;
}

std::string Workspace::UriOf(const std::string& path) const {
    const std::string normal = NormalPath(path);
    const auto open = documents.find(normal);
    return open == documents.end() ? UriOfPath(normal) : open->second.uri;
}

Spot Workspace::SpotOf(const Json& params) {
    const std::string path = PathOfUri(params.at("textDocument").at("uri").get<std::string>());
    const Json& position = params.at("position");
    const Lines& lines = LinesOf(path);
    const int line = std::clamp(position.at("line").get<int>(), 0, lines.Count());
    const std::string_view text = lines.Line(line);
    const std::size_t byte = ByteOf(text, position.at("character").get<int>());
    const Program& program = ProgramOf(path);
    return {&program,
            SpellingOf(program, path),
            line + 1,
            static_cast<int>(byte) + 1,
            text.substr(0, byte),
            text.substr(byte)};
}

// Without columns it is what stands on the line.
Json Workspace::RangeOf(const korvel::Range& range) {
    const int line = std::max(range.line - 1, 0);
    const std::string_view text = LinesOf(range.file).Line(line);
    std::size_t from = std::min(text.find_first_not_of(" \t"), text.size()), to = text.size();
    if (range.firstColumn > 0) {
        from = static_cast<std::size_t>(range.firstColumn) - 1;
        to = static_cast<std::size_t>(std::max(range.lastColumn, range.firstColumn - 1));
    }
    return {{"start", Position(line, UnitOf(text, from))}, {"end", Position(line, UnitOf(text, to))}};
}

Json Workspace::LocationOf(const korvel::Range& range) {
    return {{"uri", UriOf(range.file)}, {"range", RangeOf(range)}};
}

std::string SpellingOf(const Program& program, const std::string& path) {
    for (const std::string& source : program.inspection.result.sources)
        if (NormalPath(source) == path) return source;
    return path;
}

const korvel::Symbol* SymbolAt(const Spot& spot) {
    const korvel::Inspection& inspection = spot.program->inspection;
    const korvel::Use* use = korvel::UseAt(inspection, spot.file, spot.line, spot.column);
    return use == nullptr ? nullptr : &inspection.symbols[use->symbol];
}

bool IsOfWord(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80U || std::isalnum(byte) != 0 || c == '_';
}

std::string WordAt(const Spot& spot) {
    const auto from = std::find_if_not(spot.before.rbegin(), spot.before.rend(), IsOfWord).base();
    const auto to = std::find_if_not(spot.behind.begin(), spot.behind.end(), IsOfWord);
    return std::string(from, spot.before.end()) + std::string(spot.behind.begin(), to);
}

bool EndsInText(std::string_view text) {
    bool inString = false;
    for (const char c : text) {
        if (c == ';' && !inString) return true;
        inString = inString != (c == '"');
    }
    return inString;
}

}  // namespace lsp
