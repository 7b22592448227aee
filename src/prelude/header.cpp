#include "prelude/header.h"

#include <cctype>
#include <string_view>
#include <unordered_set>

#include "base/settings.h"
#include "linking/linker_flags.h"
#include "prelude/fast_prelude.h"
#include "prelude/line_marks.h"
#include "prelude/support.h"
#include "prelude/texts.h"
#include "symbols/modules.h"

namespace {

// Guards of the headers behind the standard includes and of our own, as far as a source may be called so.
const std::unordered_set<std::string_view> foreignGuards = {
    "KV_CONIO_H",         "KV_DEBUG_H",     "KV_UNITS_PRELUDE_H",
    "_ALLOCATOR_H",       "_ALLOCA_H",      "_ASSERT_H",
    "_ATOMIC_H",          "_BASIC_IOS_H",   "_CODECVT_H",
    "_COMPLEX_H",         "_CONIO_H",       "_CTYPE_H",
    "_DLFCN_H",           "_ENDIAN_H",      "_ERRNO_H",
    "_FCNTL_H",           "_FEATURES_H",    "_FENV_H",
    "_FLOAT_H",           "_FUNCTEXCEPT_H", "_GETOPT_H",
    "_HASH_BYTES_H",      "_INTTYPES_H",    "_IOS_BASE_H",
    "_LIBINTL_H",         "_LIMITS_H",      "_LOCALE_H",
    "_LOCALE_FWD_H",      "_MATH_H",        "_MEMORY_H",
    "_MEMORYFWD_H",       "_MOVE_H",        "_NEW_H",
    "_OSTREAM_INSERT_H",  "_POLL_H",        "_POSTYPES_H",
    "_PTHREAD_H",         "_RANDOM_H",      "_REGEX_H",
    "_SCHED_H",           "_SEARCH_H",      "_SEMAPHORE_H",
    "_SETJMP_H",          "_SIGNAL_H",      "_STDARG_H",
    "_STDBOOL_H",         "_STDDEF_H",      "_STDEXCEPT_H",
    "_STDINT_H",          "_STDIO_H",       "_STDLIB_H",
    "_STREAM_ITERATOR_H", "_STRING_H",      "_STRINGFWD_H",
    "_STRINGS_H",         "_TERMIOS_H",     "_TGMATH_H",
    "_THREADS_H",         "_TIME_H",        "_TYPEINFO_H",
    "_UCHAR_H",           "_UNISTD_H",      "_UTILITY_H",
    "_WCHAR_H",           "_WCHAR_T_H",     "_WCTYPE_H",
    "__EXCEPTION_H",
};

}  // namespace

std::string HeaderGuard(const std::string& base) {
    std::string guard;
    for (unsigned char c : base) guard += std::isalnum(c) != 0 ? static_cast<char>(std::toupper(c)) : '_';
    guard += "_H";
    if (std::isdigit(static_cast<unsigned char>(guard.front())) != 0) guard.insert(0, "_");
    if (foreignGuards.count(guard) != 0) guard.insert(0, "KVL");
    return guard;
}

std::string CreatedListType(const ClassInfo& cls) {
    return settings.fastMode ? "KVCreated<" + cls.cppName + ">" : "std::vector<" + cls.cppName + "*>";
}

namespace {

// With which a prototype names its symbol.
constexpr const char* externNameMacros =
    "#define KV_C_TEXT(name) #name\n"
    "#define KV_C_PREFIX(name) KV_C_TEXT(name)\n"
    "#define KV_C_NAME(name) KV_C_PREFIX(__USER_LABEL_PREFIX__) name\n";

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
    return settings.fastMode && !out.headerOnly && !HasForeignFunctions() && !LinksForeignCode();
}

std::string FunctionSection(const FileOutput& out, const HeaderContents& contents) {
    std::string text;
    if (!contents.externLines.empty()) {
        text += "// External C functions\n";
        if (contents.externBound) text += externNameMacros;
        text += "extern \"C\" {\n";
        for (const std::string& line : contents.externLines) text += line + "\n";
        text += "}\n";
    }
    for (const std::string& line : contents.externWrappers) text += line + "\n";
    if (!contents.externLines.empty() || !contents.externWrappers.empty()) text += "\n";
    if (!contents.functionLines.empty()) {
        text += "// Function declarations\n";
        const char* linkage = settings.units ? routineMark : StaysInside(out) ? "static " : "";
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
        text += global.mark + global.plain + "\n";
    }
    return text;
}

}  // namespace

std::string SupportCode() {
    const std::string text = settings.safeMode ? FillNames(texts::safeDivision) : std::string();
    const std::string prelude =
        settings.fastMode ? FastPrelude(!symbols.classList.empty())
                          : SequenceText(texts::sequence, "std::vector") + std::string(texts::scheduler);
    return text + prelude + SupportText();
}

void OpenHeader(FileOutput& out, const HeaderContents& contents) {
    out.headerOpening = "#ifndef " + out.guard + "\n#define " + out.guard + "\n\n";
    if (settings.lineMarks) out.headerOpening += "#include <kvfailure.h>\n";
    out.headerOpening += texts::includes;
    out.headerOpening += "using namespace std;\n";
    out.headerClasses = ClassSection(out, contents);
    out.headerFunctions = FunctionSection(out, contents);
}

std::string HeaderText(const FileOutput& out, const std::vector<std::string>& includes) {
    std::string text = out.headerOpening;
    if (out.isMain)
        for (const std::string& include : includes) text += "#include \"" + include + "\"\n";
    text += "\n";
    if (out.isMain) text += SupportCode();
    text += out.headerClasses + out.headerFunctions + GlobalSection(out) + out.headerLate;
    if (settings.lineMarks) text += OwnCodeMark();
    return text + "\n#endif\n";
}
