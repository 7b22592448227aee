#include "prelude/line_marks.h"

#include "base/settings.h"
#include "linking/runtime_code.h"

std::string LineMark(const std::string& source, int line) {
    const std::string folder = settings.sourceFolder + "/";
    const bool below = source.compare(0, folder.size(), folder) == 0;
    return "#line " + std::to_string(line) + " " + CppLiteral(below ? source.substr(folder.size()) : source) +
           "\n";
}

std::string LineMark(int line) { return "#line " + std::to_string(line) + "\n"; }

std::string OwnCodeMark() { return "#line 1 \"<korvel>\"\n"; }

std::string MarkOfPlace() {
    const bool known = settings.lineMarks && settings.currentLine > 0;
    return known ? LineMark(settings.currentFile, settings.currentLine) : std::string();
}
