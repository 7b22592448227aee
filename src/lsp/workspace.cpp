#include "lsp/workspace.h"

#include <algorithm>
#include <cctype>
#include <iterator>

#include "base/source_reader.h"
#include "base/utf8.h"
#include "lsp/main_files.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

// Without a byte order mark, as clients show it.
std::string ReadText(const std::string& path) {
    std::string text;
    if (!ReadFile(path, text)) return {};
    return text.substr(ByteOrderMarkOf(text));
}

std::filesystem::file_time_type TimeOf(const std::string& path) {
    std::error_code missing;
    return std::filesystem::last_write_time(PathOf(path), missing);
}

bool Holds(const korvel::Result& program, const std::string& path) {
    return std::any_of(program.sources.begin(), program.sources.end(),
                       [&path](const std::string& source) { return NormalPath(source) == path; });
}

std::size_t OffsetOf(const Lines& lines, const Json& position) {
    return lines.Offset(position.at("line").get<int>(), position.at("character").get<int>());
}

void Apply(const Json& change, Lines& lines) {
    const std::string& text = change.at("text").get_ref<const std::string&>();
    if (change.value("range", Json()).is_null()) {
        lines = Lines(text);
        return;
    }
    const std::size_t start = OffsetOf(lines, change["range"].at("start"));
    lines.Replace(start, std::max(start, OffsetOf(lines, change["range"].at("end"))), text);
}

// Only a sign is missing: it is typed next, and until then names are wanted.
bool AddsSign(const korvel::Fix& fix) {
    return fix.replacement.size() == 1 && fix.lastColumn < fix.firstColumn;
}

// What ends the first mistake that keeps most of the program, or the holes of a String, from being known; null without
// one.
const korvel::Fix* MissingSign(const korvel::Result& result) {
    for (const korvel::Diagnostic& said : result.diagnostics)
        for (const korvel::Fix& fix : said.fixes)
            if (AddsSign(fix)) return &fix;
    return nullptr;
}

// Puts the change into a text, where it counts as in lines that begin at 1.
void Mend(const korvel::Fix& fix, Lines& lines) {
    const std::string_view line = lines.Line(fix.line - 1);
    const std::size_t begin = static_cast<std::size_t>(line.data() - lines.Text().data());
    const auto columnEnd = [&](int column) {
        return begin + std::min(static_cast<std::size_t>(std::max(column, 0)), line.size());
    };
    const std::size_t from = columnEnd(fix.firstColumn - 1);
    lines.Replace(from, std::max(from, columnEnd(fix.lastColumn)), fix.replacement);
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
    for (const Json& change : changes) Apply(change, open.lines);
    ForgetTexts();
}

void Workspace::Close(const std::string& uri) {
    documents.erase(PathOfUri(uri));
    Forget();
}

void Workspace::Forget() {
    mains.clear();
    orphans.clear();
    programs.clear();
    files.clear();
    elsewhere.clear();
    knowsElsewhere = false;
}

void Workspace::ForgetTexts() {
    programs.clear();
    for (const std::string& path : orphans) mains.erase(path);  // a program may include it now
    orphans.clear();
    for (auto file = files.begin(); file != files.end();)
        file = TimeOf(file->first) == file->second.time ? std::next(file) : files.erase(file);
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
    for (const std::string& main : MainsNear(path))
        if (Holds(korvel::Check(RequestFor(main)), path)) return main;
    orphans.insert(path);
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
    const Program& program = ProgramWith(MainOf(path));
    if (program.main == path || Holds(program.inspection.result, path)) return program;
    mains.erase(path);  // its Include is gone
    return ProgramWith(MainOf(path));
}

const Program& Workspace::ProgramWith(const std::string& main) {
    const auto [entry, isNew] = programs.try_emplace(main);
    if (isNew) {
        entry->second = {main, korvel::Inspect(RequestFor(main))};
        LookPastMistakes(entry->second);
    }
    return entry->second;
}

// Told are the mistakes of the text as it is; names and types are those of the text as it would be mended.
void Workspace::LookPastMistakes(Program& program) {
    constexpr int mostMistakes = 4;
    korvel::Request request;
    korvel::Result result = program.inspection.result;
    for (int i = 0; i < mostMistakes; ++i) {
        const korvel::Fix* const sign = MissingSign(program.inspection.result);
        if (sign == nullptr) break;
        if (i == 0) request = RequestFor(program.main);
        MendIn(request, *sign);
        program.inspection = korvel::Inspect(request);
    }
    program.inspection.result = std::move(result);
}

void Workspace::MendIn(korvel::Request& request, const korvel::Fix& fix) {
    const std::string path = NormalPath(fix.file);
    const auto isMeant = [&path](const korvel::Overlay& overlay) { return overlay.path == path; };
    auto overlay = std::find_if(request.overlays.begin(), request.overlays.end(), isMeant);
    if (overlay == request.overlays.end())
        overlay = request.overlays.insert(overlay, {path, LinesOf(path).Text()});
    Lines lines(overlay->text);
    Mend(fix, lines);
    overlay->text = lines.Text();
}

std::vector<const Program*> Workspace::OpenPrograms() {
    std::vector<const Program*> open;
    for (const auto& [path, document] : documents) AddOnce(open, ProgramOf(path));
    return open;
}

std::vector<const Program*> Workspace::ProgramsNear(const std::string& path) {
    std::vector<const Program*> near = OpenPrograms();
    for (const std::string& main : MainsNear(path)) AddOnce(near, ProgramWith(main));
    return near;
}

// Programs come before the files that none of them has.
const std::vector<korvel::Symbol>& Workspace::SymbolsElsewhere() {
    if (knowsElsewhere) return elsewhere;
    knowsElsewhere = true;
    std::set<std::string> seen;
    for (const Program* program : OpenPrograms())
        for (const std::string& source : program->inspection.result.sources) seen.insert(NormalPath(source));
    std::vector<std::string> sources = SourcesBelow(roots);
    std::stable_partition(sources.begin(), sources.end(),
                          [this](const std::string& path) { return DeclaresMain(LinesOf(path).Text()); });
    for (const std::string& path : sources) {
        if (seen.count(path) != 0) continue;
        const korvel::Inspection inspection = korvel::Inspect(RequestFor(path));
        for (korvel::Symbol symbol : inspection.symbols) {
            symbol.file = NormalPath(symbol.file);
            if (seen.count(symbol.file) == 0) elsewhere.push_back(symbol);
        }
        for (const std::string& source : inspection.result.sources) seen.insert(NormalPath(source));
    }
    return elsewhere;
}

const Lines& Workspace::LinesOf(const std::string& path) {
    const std::string normal = NormalPath(path);
    const auto open = documents.find(normal);
    if (open != documents.end()) return open->second.lines;
    const auto [entry, isNew] = files.try_emplace(normal);
    if (isNew) entry->second = {Lines(ReadText(normal)), TimeOf(normal)};
    return entry->second.lines;
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
    const std::size_t byte = lines.ByteOf(line, position.at("character").get<int>());
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
    const Lines& lines = LinesOf(range.file);
    const std::string_view text = lines.Line(line);
    std::size_t from = std::min(text.find_first_not_of(" \t"), text.size()), to = text.size();
    if (range.firstColumn > 0) {
        from = static_cast<std::size_t>(range.firstColumn) - 1;
        to = static_cast<std::size_t>(std::max(range.lastColumn, range.firstColumn - 1));
    }
    return {{"start", Position(line, lines.UnitOf(line, from))},
            {"end", Position(line, lines.UnitOf(line, to))}};
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

}  // namespace lsp
