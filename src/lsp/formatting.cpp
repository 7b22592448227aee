// The usual form of a text.
#include "lsp/features.h"

namespace lsp {

// Lines stay where they are, so only those are given that change.
Json Formatting(Workspace& workspace, const Json& params) {
    const Lines& lines = workspace.LinesOf(PathOfDocument(params));
    Json edits = Json::array();
    if (lines.Text().find('\0') != std::string::npos) return edits;
    const Lines formatted(workspace.services.format(lines.Text()));
    for (int i = 0; i < lines.Count(); ++i) {
        if (lines.Line(i) == formatted.Line(i)) continue;
        const int end = lines.UnitOf(i, std::string::npos);
        const Json range = {{"start", {{"line", i}, {"character", 0}}},
                            {"end", {{"line", i}, {"character", end}}}};
        edits.push_back({{"range", range}, {"newText", formatted.Line(i)}});
    }
    return edits;
}

}  // namespace lsp
