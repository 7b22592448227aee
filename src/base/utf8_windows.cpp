#include <windows.h>

#include <shellapi.h>

#include <cstdlib>

#include "base/utf8.h"

std::wstring Wide(const std::string& text) {
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, &wide[0], length);
    return wide;
}

std::string Narrow(const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, &narrow[0], length, nullptr, nullptr);
    return narrow;
}

std::filesystem::path PathOf(const std::string& text) { return Wide(text); }

std::string TextOf(const std::filesystem::path& path) { return Narrow(path.wstring()); }

std::string GenericTextOf(const std::filesystem::path& path) { return Narrow(path.generic_wstring()); }

std::FILE* OpenFile(const std::string& path, const char* mode) {
    return _wfopen(Wide(path).c_str(), Wide(mode).c_str());
}

std::vector<std::string> CommandLineWords(int, char**) {
    int count = 0;
    wchar_t** all = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> words;
    for (int i = 1; all != nullptr && i < count; ++i) words.push_back(Narrow(all[i]));
    LocalFree(all);
    return words;
}

std::string EnvironmentVariable(const char* name) {
    const wchar_t* value = _wgetenv(Wide(name).c_str());
    return value != nullptr ? Narrow(value) : "";
}

void PutEnvironmentVariable(const char* name, const std::string& value) {
    _wputenv_s(Wide(name).c_str(), Wide(value).c_str());
}

// The setting belongs to the console: whoever uses it next finds it as it was.
static UINT consoleEncoding = 0;

static void RestoreConsole() {
    if (consoleEncoding != 0) SetConsoleOutputCP(consoleEncoding);
    consoleEncoding = 0;
}

Utf8Console::Utf8Console() {
    consoleEncoding = GetConsoleOutputCP();
    if (consoleEncoding == 0 || !SetConsoleOutputCP(CP_UTF8)) return;
    std::atexit(RestoreConsole);
}

Utf8Console::~Utf8Console() { RestoreConsole(); }
