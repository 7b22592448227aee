#include "lsp/uri.h"

#include <cctype>
#include <filesystem>
#include <string_view>

#include "base/text.h"
#include "base/utf8.h"

namespace {

const std::string_view scheme = "file://";
const char* const digits = "0123456789ABCDEF";

int ValueOf(char digit) {
    const std::string_view all = digits;
    const std::size_t at = all.find(static_cast<char>(std::toupper(static_cast<unsigned char>(digit))));
    return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

bool IsPlain(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view("-._~/").find(c) != std::string_view::npos;
}

bool HasDrive(std::string_view path) { return path.size() > 2 && path[0] == '/' && path[2] == ':'; }

}  // namespace

std::string PathOfUri(const std::string& uri) {
    if (!StartsWith(uri, scheme)) return NormalPath(uri);
    std::string path;
    for (std::size_t i = uri.find('/', scheme.size()); i < uri.size(); ++i) {
        const int high = uri[i] == '%' && i + 2 < uri.size() ? ValueOf(uri[i + 1]) : -1;
        const int low = high < 0 ? -1 : ValueOf(uri[i + 2]);
        path += low < 0 ? uri[i] : static_cast<char>(high * 16 + low);
        i += low < 0 ? 0 : 2;
    }
    return NormalPath(HasDrive(path) ? path.substr(1) : path);
}

std::string UriOfPath(const std::string& path) {
    std::string uri = std::string(scheme) + (StartsWith(path, "/") ? "" : "/");
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsPlain(c))
            uri += c;
        else
            uri += {'%', digits[byte / 16], digits[byte % 16]};
    }
    return uri;
}

std::string NormalPath(const std::string& path) {
    if (path.empty()) return path;
    std::error_code ignored;
    const std::filesystem::path normal = std::filesystem::absolute(PathOf(path), ignored).lexically_normal();
    return GenericTextOf(normal.has_filename() ? normal : normal.parent_path());
}
