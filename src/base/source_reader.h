// The physical lines of a source file: line ends and byte order mark are settled here, once.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

class SourceReader {
public:
    // Reads the whole file. False when that fails, as it does for all that is no file: folders, pipes, devices.
    bool Open(const std::string& path);

    bool AtEnd() const { return position >= text.size(); }
    // The next line without its line end ("\n" or "\r\n"); empty past the end.
    std::string NextLine() { return std::string(TakeLine()); }
    // The same without a copy; valid as long as the reader.
    std::string_view TakeLine();
    // Goes back to the first line, for the second pass.
    void Rewind();
    // All of it.
    std::string_view Text() const { return text; }

private:
    std::string text;
    std::size_t begin = 0;  // behind the byte order mark
    std::size_t position = 0;
};

// Makes a text count instead of the file at the path, however it is spelt, until the end of the run.
void PutOverlay(const std::string& path, const std::string& text);

// Whether a file is there to be read.
bool IsFile(const std::string& path);

// Reads a whole file as it is. False when it cannot be opened or read, or is no file.
bool ReadFile(const std::string& path, std::string& text);

// How many bytes of byte order mark a text begins with.
std::size_t ByteOrderMarkOf(std::string_view text);

// Whether something stands there that is no file: a folder, a pipe, a device. RefuseNoFile ends the run then.
bool IsNoFile(const std::string& path);
void RefuseNoFile(const std::string& path);
