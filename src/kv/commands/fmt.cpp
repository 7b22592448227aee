// kv fmt.
#include <cstdio>
#include <iostream>
#include <iterator>

#include "base/source_reader.h"
#include "base/utf8.h"
#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/format/format.h"
#include "kv/source_list.h"
#include "kv/write_file.h"

namespace {

const char standardInput[] = "-";

bool IsText(const std::string& text) { return text.find('\0') == std::string::npos; }

// Returns whether all is well with the file.
bool FormatFile(const std::string& file, bool onlyCheck) {
    std::string text;
    if (!ReadFile(file, text)) {
        return Refuse("cannot read " + file);
    }
    if (!IsText(text)) {
        ShowProblem(file + " is no text of ASCII or UTF-8 letters; it stays as it is");
        return false;
    }
    const std::string formatted = Formatted(text);
    if (formatted == text) return true;
    if (!onlyCheck && !RewriteFile(PathOf(file), formatted)) return false;
    std::printf("%s%s\n", onlyCheck ? "would change " : "", file.c_str());
    return !onlyCheck;
}

bool FormatInput(bool onlyCheck) {
    const std::string text{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    const std::string formatted = IsText(text) ? Formatted(text) : text;
    if (onlyCheck) return formatted == text;
    return std::fwrite(formatted.data(), 1, formatted.size(), stdout) == formatted.size();
}

}  // namespace

int FmtCommand(const Options& options) {
    bool good = true;
    for (const std::string& name : options.names) {
        if (name == standardInput) {
            good = FormatInput(options.onlyCheck) && good;
            continue;
        }
        for (const std::string& file : SourcesOf(name, ".kvl"))
            good = FormatFile(file, options.onlyCheck) && good;
    }
    return good ? 0 : failure;
}
