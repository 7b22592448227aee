#include "prelude/header.h"

#include <cctype>

#include "driver/settings.h"
#include "prelude/fast_prelude.h"
#include "prelude/support.h"
#include "prelude/texts.h"
#include "symbols/extern_functions.h"

std::string HeaderGuard(const std::string& base) {
    std::string guard;
    for (unsigned char c : base) guard += std::isalnum(c) != 0 ? static_cast<char>(std::toupper(c)) : '_';
    guard += "_H";
    if (std::isdigit(static_cast<unsigned char>(guard.front())) != 0) guard.insert(0, "_");
    return guard;
}

std::string CreatedListType(const ClassInfo& cls) {
    return settings.fastMode ? "KVCreated<" + cls.cppName + ">" : "std::vector<" + cls.cppName + "*>";
}

namespace {

std::string ClassSection(const FileOutput& out, const HeaderContents& contents) {
    if (contents.classes.empty()) return {};
    std::string text = "// Forward declarations of classes\n";
    for (const ClassInfo* cls : contents.classes)
        text += (cls->isElement ? "struct " : "class ") + cls->cppName + ";\n";
    // An included header stands in front of the support code.
    if (settings.fastMode && !out.isMain) text += "template<typename T> struct KVCreated;\n";
    text += "\n// Type instance lists for First/Last/Before/After/Each\n";
    for (const ClassInfo* cls : contents.instanceLists)
        text += "extern " + CreatedListType(*cls) + " __" + cls->cppName + "_list__;\n";
    text += "\n";
    if (out.isMain) text += texts::iteration;
    return text;
}

// All files are compiled as one: Functions that nobody else calls or defines can be fitted into their callers.
bool StaysInside(const FileOutput& out) {
    return settings.fastMode && !out.headerOnly && symbols.externFunctions.empty() &&
           symbols.linkerFlags.empty();
}

std::string FunctionSection(const FileOutput& out, const HeaderContents& contents) {
    std::string text;
    if (!contents.externLines.empty()) {
        text += "// External C functions\n";
        if (contents.externRenamed) text += externNameMacros;
        text += "extern \"C\" {\n";
        for (const std::string& line : contents.externLines) text += line + "\n";
        text += "}\n";
        for (const std::string& line : contents.externWrappers) text += line + "\n";
        text += "\n";
    }
    if (!contents.functionLines.empty()) {
        text += "// Function declarations\n";
        const char* linkage = StaysInside(out) ? "static " : "";
        for (const std::string& line : contents.functionLines) text += linkage + line + "\n";
        text += "\n";
    }
    return text;
}

// The first Global or Const of a file is announced by a comment; PreCalc tables are not.
std::string GlobalSection(const FileOutput& out) {
    std::string text;
    bool announced = false;
    for (const GlobalDefinition& global : out.globals) {
        if (!global.isPreCalc && !announced) {
            text += "// Global variables and constants\n";
            announced = true;
        }
        text += global.plain + "\n";
    }
    return text;
}

}  // namespace

void OpenHeader(FileOutput& out, const HeaderContents& contents, const std::string& guard) {
    out.headerOpening = "#ifndef " + guard + "\n#define " + guard + "\n\n";
    out.headerOpening += texts::includes;
    out.headerOpening += "using namespace std;\n";
    if (out.isMain) {
        if (settings.safeMode) out.headerPrelude += texts::safeDivision;
        if (!settings.fastMode) out.headerPrelude += texts::sequence;
        if (!settings.fastMode) out.headerPrelude += texts::scheduler;
    }
    out.headerClasses = ClassSection(out, contents);
    out.headerFunctions = FunctionSection(out, contents);
}

std::string HeaderText(const FileOutput& out, const std::vector<std::string>& includes) {
    std::string text = out.headerOpening;
    if (out.isMain)
        for (const std::string& include : includes) text += "#include \"" + include + "\"\n";
    text += "\n" + out.headerPrelude;
    if (out.isMain && settings.fastMode) text += FastPrelude(!symbols.classList.empty());
    if (out.isMain) text += SupportText();
    text += out.headerClasses + out.headerFunctions + GlobalSection(out) + out.headerLate;
    return text + "\n#endif\n";
}
