#include "base/command_quoting.h"

std::vector<std::string> SplitFlags(const std::string& text) {
    std::vector<std::string> flags;
    std::string flag;
    bool inFlag = false;
    char quote = 0;
    for (const char c : text) {
        if (quote != 0) {
            if (c == quote) {
                quote = 0;
            } else {
                flag += c;
            }
        } else if (c == '"' || c == '\'') {
            quote = c;
            inFlag = true;
        } else if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
            if (inFlag) flags.push_back(flag);
            flag.clear();
            inFlag = false;
        } else {
            flag += c;
            inFlag = true;
        }
    }
    if (inFlag) flags.push_back(flag);
    return flags;
}

namespace {

// Backslashes count double before a quote, and only there.
std::string WindowsArgument(const std::string& argument) {
    if (!argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos) return argument;
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        quoted.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
        backslashes = 0;
        quoted += c;
    }
    quoted.append(backslashes * 2, '\\');
    return quoted + "\"";
}

std::string ShellArgument(const std::string& argument) {
    const char plain[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_@%+=:,./-";
    if (!argument.empty() && argument.find_first_not_of(plain) == std::string::npos) return argument;
    std::string quoted = "'";
    for (const char c : argument) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted + "'";
}

std::string Joined(const std::vector<std::string>& arguments, std::string (*quote)(const std::string&)) {
    std::string line;
    for (const std::string& argument : arguments) {
        if (!line.empty()) line += ' ';
        line += quote(argument);
    }
    return line;
}

}  // namespace

std::string WindowsCommandLine(const std::vector<std::string>& arguments) {
    return Joined(arguments, WindowsArgument);
}

std::string ReadableCommandLine(const std::vector<std::string>& arguments) {
    return Joined(arguments, ShellArgument);
}
