// What a translation cannot do without, timed: reading the bytes of the sources, splitting their lines into
// tokens, writing the outputs.
//
//     floor SOURCES OUTPUTS SCRATCH      folders; prints "read", "tokens" and "write" with milliseconds of processor time
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/source_reader.h"
#include "lexer/lexer.h"

namespace fs = std::filesystem;

namespace {

constexpr int rounds = 10;

std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) files.push_back(entry.path().string());
    return files;
}

// The quickest of several rounds.
void Time(const char* name, const std::function<void()>& work) {
    double best = 1e9;
    for (int i = 0; i < rounds; ++i) {
        const std::clock_t start = std::clock();
        work();
        best = std::min(best, 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    std::printf("%s %.2f\n", name, best);
}

void Write(const std::string& path, const std::string& text) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return;
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const std::vector<std::string> sources = FilesIn(argv[1]);
    const std::vector<std::string> outputs = FilesIn(argv[2]);
    std::string text;
    Time("read", [&] {
        for (const std::string& path : sources) ReadFile(path, text);
    });
    std::size_t count = 0;
    Time("tokens", [&] {
        for (const std::string& path : sources) {
            SourceReader reader;
            Lexer lexer;
            reader.Open(path);
            while (!reader.AtEnd())
                count += static_cast<std::size_t>(lexer.LexLine(reader.TakeLine(), false, true, false));
        }
    });
    std::vector<std::string> texts(outputs.size());
    for (std::size_t i = 0; i < outputs.size(); ++i) ReadFile(outputs[i], texts[i]);
    Time("write", [&] {
        for (std::size_t i = 0; i < texts.size(); ++i)
            Write(std::string(argv[3]) + "/" + std::to_string(i), texts[i]);
    });
    return count > 0 ? 0 : 1;
}
