#include "reuse/record.h"

#include <cstring>
#include <filesystem>
#include <utility>

#include "base/text_hash.h"
#include "base/utf8.h"
#include "reuse/packing.h"

namespace fs = std::filesystem;

namespace {

constexpr std::string_view opening = "kv-record 1\n";

// At the end of the file.
struct Tail {
    std::uint64_t tableAt = 0, tableHash = 0;
};

void PackFileRecord(Packer& packer, const FileRecord& file) {
    packer.Text(file.source);
    for (const std::uint64_t number : {file.text, file.declarations, file.packedAt, file.packedSize,
                                       file.packedHash, std::uint64_t{file.firstUnit}})
        packer.Number(number);
    PackList(packer, file.units, [&](const OutputMark& mark) {
        packer.Number(mark.size);
        packer.Number(static_cast<std::uint64_t>(mark.time));
    });
}

FileRecord UnpackFileRecord(Unpacker& packed) {
    FileRecord file;
    file.source = packed.Text();
    for (std::uint64_t* const number :
         {&file.text, &file.declarations, &file.packedAt, &file.packedSize, &file.packedHash})
        *number = packed.Number();
    file.firstUnit = static_cast<std::size_t>(packed.Number());
    UnpackList(packed, [&] {
        const std::uint64_t size = packed.Number();
        file.units.push_back({size, static_cast<std::int64_t>(packed.Number())});
    });
    return file;
}

std::string PackTable(const RecordTable& table) {
    Packer packer;
    packer.Text(table.key);
    PackList(packer, table.files, [&](const FileRecord& file) { PackFileRecord(packer, file); });
    PackList(packer, table.routines, [&](const auto& routine) {
        packer.Number(routine.first);
        packer.Number(routine.second);
    });
    packer.Number(table.timers);
    return std::move(packer.packed);
}

bool UnpackTable(std::string_view text, RecordTable& table) {
    Unpacker packed(text);
    table.key = packed.Text();
    UnpackList(packed, [&] { table.files.push_back(UnpackFileRecord(packed)); });
    UnpackList(packed, [&] {
        const std::uint64_t name = packed.Number();
        table.routines[name] = packed.Number();
    });
    table.timers = packed.Number();
    return packed.IsGood();
}

// More than any program leaves; a damaged file may seem to have no end.
constexpr std::uintmax_t longestRecord = std::uintmax_t{1} << 30;

// Not more than it holds: nobody wants to find room for a record that is being written.
bool ReadAll(const std::string& path, std::string& bytes) {
    std::error_code failed;
    if (!fs::is_regular_file(PathOf(path), failed)) return false;
    const std::uintmax_t size = fs::file_size(PathOf(path), failed);
    std::FILE* file = failed || size > longestRecord ? nullptr : OpenFile(path, "rb");
    if (file == nullptr) return false;
    bytes.resize(static_cast<std::size_t>(size));
    const bool whole = std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size();
    std::fclose(file);
    return whole;
}

}  // namespace

bool Record::Read(const std::string& path) {
    *this = Record();
    Tail tail;
    if (!ReadAll(path, bytes) || bytes.size() < opening.size() + sizeof tail) return false;
    const std::size_t end = bytes.size() - sizeof tail;
    std::memcpy(&tail, bytes.data() + end, sizeof tail);
    const std::string_view all(bytes);
    const bool holds = all.substr(0, opening.size()) == opening && tail.tableAt <= end &&
                       TextHash(all.substr(tail.tableAt, end - tail.tableAt)) == tail.tableHash &&
                       UnpackTable(all.substr(tail.tableAt, end - tail.tableAt), table);
    if (!holds) *this = Record();
    return holds;
}

std::string_view Record::Packed(const FileRecord& file) const {
    if (file.packedAt > bytes.size() || file.packedSize > bytes.size() - file.packedAt) return {};
    const std::string_view packed = std::string_view(bytes).substr(file.packedAt, file.packedSize);
    return TextHash(packed) == file.packedHash ? packed : std::string_view();
}

struct RecordWriter::Passing {
    std::string path, passingPath;
    std::FILE* file = nullptr;
    std::uint64_t size = 0;
    bool good = true;

    explicit Passing(const std::string& target) : path(target), passingPath(target + ".new") {
        // What lies there may be a link, or a pipe that would have to be waited for.
        std::error_code ignored;
        fs::remove(PathOf(passingPath), ignored);
        file = OpenFile(passingPath, "wb");
    }
    ~Passing() {
        if (file == nullptr) return;
        Close();
        std::error_code ignored;
        fs::remove(PathOf(passingPath), ignored);
    }
    Passing(const Passing&) = delete;
    Passing& operator=(const Passing&) = delete;

    void Put(std::string_view text) {
        good = good && std::fwrite(text.data(), 1, text.size(), file) == text.size();
        size += text.size();
    }
    void Close() { good = std::fclose(std::exchange(file, nullptr)) == 0 && good; }
};

void RecordWriter::Begin(const std::string& path) {
    passing = std::make_shared<Passing>(path);
    if (passing->file == nullptr) return passing.reset();
    passing->Put(opening);
}

void RecordWriter::Add(FileRecord file, std::string_view packed) {
    if (passing == nullptr) return;
    file.packedAt = passing->size;
    file.packedSize = packed.size();
    file.packedHash = TextHash(packed);
    passing->Put(packed);
    table.files.push_back(std::move(file));
}

void RecordWriter::End() {
    if (passing == nullptr) return;
    const std::string text = PackTable(table);
    const Tail tail = {passing->size, TextHash(text)};
    passing->Put(text);
    passing->Put({reinterpret_cast<const char*>(&tail), sizeof tail});
    passing->Close();
    std::error_code failed;
    if (passing->good) fs::rename(PathOf(passing->passingPath), PathOf(passing->path), failed);
    if (!passing->good || failed) fs::remove(PathOf(passing->passingPath), failed);
    passing.reset();
}
