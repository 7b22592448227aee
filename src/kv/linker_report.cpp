#include "kv/linker_report.h"

#include <sstream>

namespace {

// What stands between the mark and the closing character; empty when the mark does not occur.
std::string TextAfter(const std::string& line, const std::string& mark, const char* closers) {
    const std::size_t start = line.find(mark);
    if (start == std::string::npos) return "";
    const std::size_t from = start + mark.size();
    return line.substr(from, line.find_first_of(closers, from) - from);
}

// "SDL2" of a line that speaks of .../libSDL2.a(file.o), libSDL2.so or libSDL2.so.2; empty when it speaks of no library.
std::string LibraryIn(const std::string& line) {
    const char beginning[] = "/lib";
    for (const char* const ending : {".a(", ".a:", ".a\n", ".so:", ".so."}) {
        const std::size_t end = line.find(ending);
        const std::size_t begin = end == std::string::npos ? end : line.rfind(beginning, end);
        if (begin == std::string::npos) continue;
        const std::size_t name = begin + sizeof beginning - 1;
        return line.substr(name, end - name);
    }
    return {};
}

// The name that a line says is defined nowhere.
std::string UndefinedName(const std::string& line) {
    for (const char* const mark :
         {"undefined reference to `", "undefined reference to '", "undefined symbol: "}) {
        const std::string name = TextAfter(line, mark, "'( \r");
        if (!name.empty()) return name;
    }
    return {};
}

// Whose lack of a name the lines tell: first the library and then the name, or both in one, or the other way round.
struct Lack {
    std::string library, name;
};

Lack LackIn(const std::string& output) {
    std::istringstream lines(output);
    Lack lack;
    for (std::string line; std::getline(lines, line);) {
        const std::string name = UndefinedName(line), library = LibraryIn(line + "\n");
        if (!name.empty()) lack.name = name;
        const bool isAbout = !library.empty() && (!name.empty() || line.compare(0, 3, ">>>") == 0);
        if (isAbout || line.find(": in function ") != std::string::npos) lack.library = library;
        if (!lack.name.empty() && !lack.library.empty()) return lack;
    }
    return {};
}

void NotFound(const std::string& library, const SourceTraces& sources, bool isStatic,
              Diagnostic& diagnostic) {
    const TracePlace place = sources.LineWith("-l" + library);
    diagnostic.file = place.file;
    diagnostic.line = place.line;
    diagnostic.message = "the library " + library + " was not found" +
                         (isStatic ? " in a static form, lib" + library + ".a; leave out --static"
                                   : " (Linker \"-l" + library + "\")");
}

}  // namespace

bool ExplainLinkerLine(const std::string& line, const SourceTraces& sources, bool isStatic,
                       Diagnostic& diagnostic) {
    for (const char* const mark :
         {"cannot find -l", "library not found for -l", "unable to find library -l"}) {
        const std::string library = TextAfter(line, mark, ": \r");
        if (library.empty()) continue;
        NotFound(library, sources, isStatic, diagnostic);
        return true;
    }
    const std::string name = UndefinedName(line);
    const TracePlace place = name.empty() ? TracePlace() : sources.LineWith(name);
    if (place.file.empty()) return false;
    diagnostic.file = place.file;
    diagnostic.line = place.line;
    diagnostic.message =
        "no library defines the Extern function " + name + " (a Linker line names libraries)";
    return true;
}

bool ExplainLackOfLibrary(const std::string& output, const SourceTraces& sources, bool isStatic,
                          Diagnostic& diagnostic) {
    const Lack lack = LackIn(output);
    if (lack.library.empty()) return false;
    const TracePlace place = sources.LineWith("-l" + lack.library);
    diagnostic.file = place.file;
    diagnostic.line = place.line;
    diagnostic.message =
        isStatic ? "the library " + lack.library + " cannot be put into a program: it needs " + lack.name +
                       ", which has no static form here; leave out --static"
                 : "the library " + lack.library + " needs " + lack.name +
                       ", which no library defines that the program names (a Linker line names libraries)";
    return true;
}
