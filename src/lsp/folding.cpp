// Which lines can be folded away: what stands deeper than the line before it, in the usual form of the text.
#include <algorithm>

#include "lsp/features.h"

namespace lsp {

namespace {

constexpr std::size_t empty = std::string_view::npos;

struct OpenFold {
    int line = 0;
    std::size_t indentation = 0;
};

}  // namespace

Json FoldingRanges(Workspace& workspace, const Json& params) {
    const Lines lines(workspace.services.format(workspace.LinesOf(PathOfDocument(params)).Text()));
    Json ranges = Json::array();
    std::vector<OpenFold> open;
    int before = 0;  // the last line that is not empty
    for (int i = 0; i <= lines.Count(); ++i) {
        const bool isEnd = i == lines.Count();
        const std::size_t indentation = isEnd ? 0 : lines.Line(i).find_first_not_of(" \t");
        if (indentation == empty) continue;
        for (; !open.empty() && open.back().indentation >= indentation; open.pop_back())
            if (before > open.back().line)
                ranges.push_back({{"startLine", open.back().line}, {"endLine", before}});
        open.push_back({i, indentation});
        before = i;
    }
    return ranges;
}

}  // namespace lsp
