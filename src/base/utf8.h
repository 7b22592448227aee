// Names and words of the system are UTF-8 inside, whatever the system has them in.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

// A path for std::filesystem, and its text, with the system's separators or with "/".
std::filesystem::path PathOf(const std::string& text);
std::string TextOf(const std::filesystem::path& path);
std::string GenericTextOf(const std::filesystem::path& path);

// std::fopen for a path in UTF-8.
std::FILE* OpenFile(const std::string& path, const char* mode);

// The words of the command line behind the program's name.
std::vector<std::string> CommandLineWords(int argc, char** argv);

// A variable of the environment; empty when it is not set.
std::string EnvironmentVariable(const char* name);
// Programs that are started from now on have it.
void PutEnvironmentVariable(const char* name, const std::string& value);

// From construction to destruction, or to the end of the program, a console takes what is written to it as UTF-8.
class Utf8Console {
public:
    Utf8Console();
    ~Utf8Console();  // NOLINT(performance-trivially-destructible): Windows has something to restore
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;
};

#ifdef _WIN32
// As the calls of Windows take and give it. What is no UTF-8, or no UTF-16, becomes a name that no file has.
std::wstring Wide(const std::string& text);
std::string Narrow(const std::wstring& text);
#endif
