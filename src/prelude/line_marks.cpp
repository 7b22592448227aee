#include "prelude/line_marks.h"

#include "base/settings.h"
#include "base/utf8.h"
#include "linking/runtime_code.h"

std::string ShownPath(const std::string& source) {
    const auto below = [&source](const std::string& folder) {
        return !folder.empty() && source.compare(0, folder.size() + 1, folder + "/") == 0;
    };
    if (below(settings.sourceFolder)) return source.substr(settings.sourceFolder.size() + 1);
    if (below(settings.installation)) return "<korvel>" + source.substr(settings.installation.size());
    const std::string way = GenericTextOf(PathOf(source).lexically_relative(PathOf(settings.sourceFolder)));
    return way.empty() ? source : way;
}

std::string LineMark(const std::string& source, int line) {
    return "#line " + std::to_string(line) + " " + CppLiteral(ShownPath(source)) + "\n";
}

std::string LineMark(int line) { return "#line " + std::to_string(line) + "\n"; }

std::string OwnCodeMark() { return "#line 1 \"<korvel>\"\n"; }

std::string MarkOfPlace() {
    const bool known = settings.lineMarks && settings.currentLine > 0;
    return known ? LineMark(settings.currentFile, settings.currentLine) : std::string();
}
