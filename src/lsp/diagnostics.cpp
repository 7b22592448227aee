// What is wrong with the programs, as clients show it, and the changes that would help.
#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "lsp/features.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

int NumberOf(korvel::Severity severity) {
    switch (severity) {
        case korvel::Severity::Error:
            return 1;
        case korvel::Severity::Warning:
            return 2;
        case korvel::Severity::Note:
            return 3;
    }
    return 1;
}

// What has no file is about the program as a whole.
korvel::Range PlaceOf(const korvel::Diagnostic& said, const Program& program) {
    korvel::Range place = said;
    if (place.file.empty()) place.file = program.main;
    return place;
}

Json DiagnosticOf(Workspace& workspace, const korvel::Diagnostic& said, const korvel::Range& place) {
    Json diagnostic = {{"range", workspace.RangeOf(place)},
                       {"severity", NumberOf(said.severity)},
                       {"source", "korvel"},
                       {"message", said.message + (said.hint.empty() ? "" : "\n" + said.hint)}};
    if (!said.name.empty()) diagnostic["code"] = said.name;
    for (const korvel::Related& related : said.related)
        diagnostic["relatedInformation"].push_back(
            {{"location", workspace.LocationOf(related)}, {"message", related.message}});
    return diagnostic;
}

Json ActionOf(Workspace& workspace, const korvel::Diagnostic& said, const korvel::Range& place) {
    Json changes = Json::object();
    std::string written;
    for (const korvel::Fix& fix : said.fixes) {
        changes[workspace.UriOf(fix.file)].push_back(
            {{"range", workspace.RangeOf(fix)}, {"newText", fix.replacement}});
        const std::size_t start =
            std::min(fix.replacement.find_first_not_of(" \t\n"), fix.replacement.size());
        written += (written.empty() ? "" : " ... ") + fix.replacement.substr(start);
    }
    const std::string title = written.empty() ? "Leave it out" : "Write " + written;
    return {{"title", title},
            {"kind", "quickfix"},
            {"isPreferred", true},
            {"diagnostics", Json::array({DiagnosticOf(workspace, said, place)})},
            {"edit", {{"changes", changes}}}};
}

bool Touches(const Json& a, const Json& b) {
    const auto placeOf = [](const Json& position) {
        return std::make_pair(position.at("line").get<int>(), position.at("character").get<int>());
    };
    return placeOf(a.at("start")) <= placeOf(b.at("end")) && placeOf(b.at("start")) <= placeOf(a.at("end"));
}

}  // namespace

std::map<std::string, Json> DiagnosticsOfAll(Workspace& workspace) {
    std::map<std::string, Json> lists;
    std::set<std::tuple<std::string, int, int, std::string>> known;  // a file may belong to several programs
    for (const auto& [path, document] : workspace.Documents()) lists[document.uri] = Json::array();
    for (const Program* program : workspace.OpenPrograms()) {
        for (const korvel::Diagnostic& said : program->inspection.result.diagnostics) {
            const korvel::Range place = PlaceOf(said, *program);
            const std::string uri = workspace.UriOf(place.file);
            if (!known.emplace(uri, place.line, place.firstColumn, said.message).second) continue;
            Json& list = lists.try_emplace(uri, Json::array()).first->second;
            list.push_back(DiagnosticOf(workspace, said, place));
        }
    }
    return lists;
}

Json CodeActions(Workspace& workspace, const Json& params) {
    const std::string path = PathOfDocument(params);
    const Program& program = workspace.ProgramOf(path);
    Json actions = Json::array();
    for (const korvel::Diagnostic& said : program.inspection.result.diagnostics) {
        const korvel::Range place = PlaceOf(said, program);
        if (said.fixes.empty() || NormalPath(place.file) != path) continue;
        if (Touches(workspace.RangeOf(place), params.at("range")))
            actions.push_back(ActionOf(workspace, said, place));
    }
    return actions;
}

}  // namespace lsp
