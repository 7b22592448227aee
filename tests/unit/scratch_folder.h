// A temporary folder that is the working directory while the object lives.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

class ScratchFolder {
public:
    ScratchFolder() : before(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "kvt-unit-XXXXXX").string();
        path = std::filesystem::canonical(mkdtemp(name.data()));
        std::filesystem::current_path(path);
    }
    ~ScratchFolder() {
        std::filesystem::current_path(before);
        std::filesystem::remove_all(path);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // Creates the file and the folders on the way.
    static void Write(const std::string& file, const std::string& text = "x") {
        const std::filesystem::path parent = std::filesystem::path(file).parent_path();
        if (!parent.empty()) std::filesystem::create_directories(parent);
        std::ofstream(file, std::ios::binary) << text;
    }
    static std::string Read(const std::string& file) {
        std::stringstream text;
        text << std::ifstream(file, std::ios::binary).rdbuf();
        return text.str();
    }
    static bool Has(const std::string& file) {
        return std::filesystem::exists(std::filesystem::symlink_status(file));
    }

    std::filesystem::path path;

private:
    std::filesystem::path before;
};
