#include <cstdlib>

#include "base/utf8.h"

std::filesystem::path PathOf(const std::string& text) { return text; }

std::string TextOf(const std::filesystem::path& path) { return path.string(); }

std::string GenericTextOf(const std::filesystem::path& path) { return path.generic_string(); }

std::FILE* OpenFile(const std::string& path, const char* mode) { return std::fopen(path.c_str(), mode); }

std::vector<std::string> CommandLineWords(int argc, char** argv) {
    return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

std::string EnvironmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

void PutEnvironmentVariable(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }

Utf8Console::Utf8Console() = default;
Utf8Console::~Utf8Console() = default;
