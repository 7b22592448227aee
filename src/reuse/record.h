// The record of a translation: a file beside the outputs with what each source came to, for the next translation of the
// program (reuse.h). It is written while the files are translated, since in memory it would be much, and takes the place
// of the one before when the outputs are whole. Hashes find damage.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// An output as it was left. One that has this size and time later is taken as untouched.
struct OutputMark {
    std::uint64_t size = 0;
    std::int64_t time = 0;
};
inline bool operator==(const OutputMark& a, const OutputMark& b) {
    return a.size == b.size && a.time == b.time;
}

struct FileRecord {
    std::string source;
    std::uint64_t text = 0, declarations = 0;  // hashes
    std::uint64_t packedAt = 0, packedSize = 0,
                  packedHash = 0;  // what it came to; of size 0 where that is not kept
    std::size_t firstUnit = 0;     // its number
    std::vector<OutputMark> units;
};

struct RecordTable {
    std::string key;  // all that the program was translated with
    std::vector<FileRecord> files;
    std::unordered_map<std::uint64_t, std::uint64_t> routines;  // their digests, by the hashes of their names
    std::uint64_t timers = 0;
};

// One that is read.
class Record {
public:
    // False when there is none, or its table is damaged; then it is empty.
    bool Read(const std::string& path);

    RecordTable table;
    // What the file came to; empty where that is not kept, or damaged.
    std::string_view Packed(const FileRecord& file) const;

private:
    std::string bytes;
};

// One that is written, under a temporary name.
class RecordWriter {
public:
    // Does nothing from then on when the file cannot be written.
    void Begin(const std::string& path);
    // Adds it to the table, and what it came to behind what is written.
    void Add(FileRecord file, std::string_view packed);
    // Puts the table behind that and the record into its place.
    void End();

    RecordTable table;

private:
    struct Passing;
    std::shared_ptr<Passing> passing;  // the file, which goes with the writer unless it has ended
};
