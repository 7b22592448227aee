#include "collect/userlib_reader.h"

#include <algorithm>

#include "base/report.h"
#include "base/source_reader.h"
#include "base/text.h"
#include "base/token_span.h"
#include "lexer/lexer.h"
#include "linking/interface_type.h"
#include "linking/library_places.h"
#include "symbols/file_places.h"
#include "symbols/identifiers.h"
#include "symbols/symbols.h"

namespace {

// The lexer's tokens of one function line, read from the left.
class Cursor {
public:
    explicit Cursor(TokenSpan span) : tokens(span) {}

    bool AtEnd() const { return at >= tokens.size(); }
    const std::string& Peek(std::size_t ahead = 0) const { return tokens[at + ahead]; }
    const std::string& Take() { return tokens[at++]; }
    bool Accept(const char* token) {
        if (Peek() != token) return false;
        ++at;
        return true;
    }

private:
    TokenSpan tokens;
    std::size_t at = 0;
};

struct Marker {
    const char* token;
    const char* type;
};

constexpr Marker markers[] = {{"%", "Int"}, {"#", "Double"}, {"!", "Double"}, {"$", "String"}};

// A type name behind ":". The lexer cuts "void*" and "Int[]" into pieces that belong together.
std::string TakeTypeName(Cursor& line) {
    std::string type = line.Take();
    if (Lower(type) == "void" && line.Accept("*")) return "void*";
    while (line.Peek() == "[" || line.Peek() == "]") type += line.Take();
    return type;
}

// [% | # | ! | $ | : Type]; a quoted token behind ":" is no type but an alias.
std::string TakeType(Cursor& line, const std::string& otherwise) {
    for (const Marker& marker : markers) {
        if (line.Accept(marker.token)) return marker.type;
    }
    if (line.Peek() != ":" || line.Peek(1).empty() || IsQuoted(line.Peek(1))) return otherwise;
    line.Take();
    return TakeTypeName(line);
}

struct Place {
    const std::string& file;
    int line;
};

[[noreturn]] void FailType(const Place& place, const std::string& function, const std::string& type) {
    const char* reason = IsElement(type)
                             ? " is an Element, and Elements cannot be passed to a DLL or returned from it"
                             : " is no type that a DLL function can take or return";
    ReportFatal(place.file + ", line " + std::to_string(place.line) + ": in the declaration of '" + function +
                "', '" + type + "'" + reason);
}

// The parameters behind "(", up to ")" or the end of the line.
std::vector<UserlibParameter> TakeParameters(Cursor& line) {
    std::vector<UserlibParameter> parameters;
    while (!line.AtEnd() && !line.Accept(")")) {
        UserlibParameter parameter;
        if (IsName(line.Peek())) parameter.name = line.Take();
        parameter.korvelType = line.Accept("*") ? "void*" : TakeType(line, "Int");
        parameters.push_back(parameter);
        while (!line.AtEnd() && line.Peek() != "," && line.Peek() != ")") line.Take();
        line.Accept(",");
    }
    return parameters;
}

// Functions that bear the name are met when the first pass is over.
void CheckFunctionName(const std::string& name) {
    CheckCppWord(name);
    CheckKeyword(name);
    if (IsClass(name) || symbols.globals.Has(name) || symbols.constants.Has(name)) {
        ReportFatal("Identifier '" + name + "' is already defined.");
    }
}

void Register(const UserlibFunction& function) {
    Routine routine;
    routine.name = function.name;
    routine.cppName = "kvl_" + function.name;
    routine.result = InterfaceValueType(function.korvelReturn);
    for (const UserlibParameter& parameter : function.parameters) {
        routine.parameters.push_back({parameter.name, InterfaceValueType(parameter.korvelType), false, {}});
    }
    routine.isUserlib = true;
    routine.file = function.declsFile;
    routine.line = function.line;
    symbols.userlibRoutines[function.name] = routine;
}

// Name [type] [( parameters )] [: Alias]
void ReadFunction(Cursor line, const Place& place) {
    UserlibFunction function;
    function.name = line.Take();
    if (!IsName(function.name)) return;
    function.declsFile = place.file;
    function.line = place.line;
    function.korvelReturn = TakeType(line, "void");
    if (!line.AtEnd() && line.Peek() != "(" && line.Peek() != ":") return;  // malformed
    if (line.Accept("(")) function.parameters = TakeParameters(line);
    const bool hasAlias = line.Accept(":") && !line.AtEnd();
    function.symbol = hasAlias ? Unquoted(line.Take()) : std::string_view(function.name);

    CheckFunctionName(function.name);
    const auto cppType = [&](const std::string& type) {
        if (!CrossesBoundary(type)) FailType(place, function.name, type);
        return InterfaceCppName(type);
    };
    function.cppReturn = Lower(function.korvelReturn) == "void" ? "void" : cppType(function.korvelReturn);
    for (UserlibParameter& parameter : function.parameters) parameter.cppType = cppType(parameter.korvelType);

    Register(function);
    VerboseNote("      Function: " + function.name + " -> " + function.symbol + " (returns " +
                function.cppReturn + ")");
    symbols.userlibDLLs.back().functions.push_back(std::move(function));
}

// Libraries are read from the folder of userlibs and written to the output folder, under one name.
void CheckDllName(const std::string& name, const Place& place) {
    int depth = 0;
    for (std::size_t at = 0; at <= name.size() && depth >= 0;) {
        const std::size_t end = std::min(name.find_first_of("/\\", at), name.size());
        const std::string part = name.substr(at, end - at);
        if (!part.empty() && part != ".") depth += part == ".." ? -1 : 1;
        at = end + 1;
    }
    const std::string here =
        place.file + ", line " + std::to_string(place.line) + ": the library '" + name + "' ";
    if (depth < 0) ReportFatal(here + "leads out of the folder of userlibs");
    const std::string obstacle = LibraryObstacle(name);
    if (!obstacle.empty()) ReportFatal(here + obstacle);
}

// True for a .lib line, well-formed or not.
bool ReadDll(const std::string& line, const Place& place) {
    if (line.size() < 6 || line.compare(0, 5, ".lib ") != 0) return false;
    const std::size_t open = line.find('"');
    const std::size_t close = line.rfind('"');
    if (open == close) return true;
    UserlibDll dll;
    dll.name = line.substr(open + 1, close - open - 1);
    CheckDllName(dll.name, place);
    VerboseNote("    DLL: " + dll.name);
    symbols.userlibDLLs.push_back(std::move(dll));
    return true;
}

void ReadLine(const std::string& raw, bool& inDll, const Place& place) {
    const std::size_t first = raw.find_first_not_of(" \t");
    if (first == std::string::npos || raw[first] == ';' || raw[first] == '\'') return;
    const std::string line = raw.substr(first);
    const std::size_t dlls = symbols.userlibDLLs.size();
    if (ReadDll(line, place)) {
        inDll = inDll || symbols.userlibDLLs.size() > dlls;
        return;
    }
    const Tokens tokens = Split(line);
    if (inDll && tokens.size() >= 2) ReadFunction(Cursor(tokens), place);
}

}  // namespace

static std::string HowToInclude(const std::string& path) {
    return EndsWith(path, ".decls") ? "" : "Sources and modules come with Include \"std/text.kvl\"\n";
}

void ImportUserlib(const std::vector<std::string>& places) {
    const std::string path = FirstOf(places);
    SourceReader reader;
    if (!reader.Open(path)) {
        RefuseNoFile(path);
        ReportMissing("Cannot open userlib declaration file: " + path,
                      HowToInclude(path) + LookedFor(places));
    }
    bool inDll = false;  // a section of an earlier file does not carry on in this one
    for (int line = 1; !reader.AtEnd(); ++line) ReadLine(reader.NextLine(), inDll, Place{path, line});
}
