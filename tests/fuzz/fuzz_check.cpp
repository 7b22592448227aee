// Any text at all is checked and translated, without end in one process. libFuzzer drives it; with another compiler
// it goes through the files and folders that its arguments name.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include "library/korvel.h"

static void Demand(bool holds, const char* otherwise) {
    if (holds) return;
    std::cerr << "wrong: " << otherwise << '\n';
    std::abort();
}

static void TranslateAny(const std::string& text, unsigned mode) {
    korvel::Request request;
    request.installation = STAGE_ROOT;
    request.source = "/nowhere/main.kvl";
    request.overlays = {{request.source, text}};
    request.debug = (mode & 1U) != 0;
    request.safe = (mode & 2U) != 0;
    request.fast = (mode & 4U) != 0;
    request.commented = request.traced = (mode & 8U) != 0;
    const korvel::Result result = korvel::Translate(request);
    for (const korvel::Diagnostic& diagnostic : result.diagnostics)
        Demand(!diagnostic.message.empty(), "an empty message");
    Demand(korvel::IsSound(result) != result.files.empty(),
           "files for a wrong program, or none for a sound one");
}

// Cases hold several programs in one file, each behind such a line. The last byte chooses the mode.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const unsigned mode = size == 0 ? 0 : data[size - 1];
    for (std::size_t at = 0; at < size;) {
        const std::size_t next = std::min(text.find("\n;case:", at), size - 1) + 1;
        TranslateAny(text.substr(at, next - at), mode);
        at = next;
    }
    return 0;
}

#ifndef KORVEL_LIBFUZZER
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

static void RunFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        if (fs::is_regular_file(argv[i])) RunFile(argv[i]), ++count;
        if (!fs::is_directory(argv[i])) continue;
        for (const auto& entry : fs::recursive_directory_iterator(argv[i]))
            if (entry.is_regular_file()) RunFile(entry.path()), ++count;
    }
    std::cout << count << " files went through\n";
    return 0;
}
#endif
