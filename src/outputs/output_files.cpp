#include "outputs/output_files.h"

#include <filesystem>
#include <fstream>
#include <unordered_map>

#include "base/files.h"
#include "base/paths.h"
#include "base/places.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/utf8.h"
#include "outputs/marks.h"

namespace fs = std::filesystem;

namespace {

// A file, whatever it is called.
struct FileKey {
    std::uint64_t device, number;
    bool operator==(const FileKey& other) const { return device == other.device && number == other.number; }
};
struct FileKeyHash {
    std::size_t operator()(const FileKey& key) const {
        return static_cast<std::size_t>(key.number * 31 + key.device);
    }
};

struct Reservation {
    bool creatable = true;
    bool passing = false;  // what stands there goes when the run ends, unless it is written
    bool outside = false;
};

std::unordered_map<FileKey, std::string, FileKeyHash> putOff;  // files of the previous build and their paths
std::unordered_map<std::string, Reservation> reservations;     // by path
std::unordered_map<std::string, bool> folders;                 // answers of MayChangeFolder
std::unordered_map<std::string, bool> outsideFolders;          // answers of LiesOutside
const PartOfRun partOfRun(putOff, reservations, folders, outsideFolders);

bool MayChangeFolderOf(const std::string& path) {
    const std::string folder = FolderOf(path);
    const auto known = folders.find(folder);
    if (known != folders.end()) return known->second;
    return folders[folder] = MayChangeFolder(folder.empty() ? "." : folder);
}

// The entry of putOff that a path leads to.
auto FindPutOff(const std::string& path, FileFacts facts) {
    if (facts.kind == FileFacts::Kind::Link) {
        std::error_code failed;
        facts = Examine(TextOf(fs::canonical(PathOf(path), failed)));
    }
    if (facts.kind != FileFacts::Kind::Regular) return putOff.end();
    return putOff.find({facts.device, facts.number});
}
auto FindPutOff(const std::string& path) {
    return putOff.empty() ? putOff.end() : FindPutOff(path, Examine(path));
}

bool CanOpen(const std::string& path) {
    return static_cast<bool>(std::ofstream(PathOf(path), std::ios::app));
}

void Remove(const std::string& path, bool outside) {
    std::error_code failed;
    if (outside)
        RemoveMarked(path);
    else
        fs::remove(PathOf(path), failed);
}

void Remove(const std::string& path) { Remove(path, LiesOutside(path)); }

// New files, those that take the place of a link and those of the previous build are not opened before they are
// written.
Reservation Reserve(const std::string& path) {
    using Kind = FileFacts::Kind;
    Reservation reservation;
    reservation.outside = LiesOutside(path);
    const FileFacts facts = Examine(path);
    const bool isNew = (facts.kind == Kind::Missing || facts.kind == Kind::Link) && MayChangeFolderOf(path);
    const bool isOld = facts.kind == Kind::Regular && putOff.erase({facts.device, facts.number}) != 0;
    reservation.passing = isOld || facts.kind == Kind::Missing;
    if (isNew || isOld) return reservation;
    reservation.creatable = facts.kind != Kind::Other && facts.kind != Kind::Link && CanOpen(path);
    return reservation;
}

// What is written does not go when the run ends.
void Keep(const std::string& path) {
    const auto reservation = reservations.find(path);
    if (reservation != reservations.end()) reservation->second.passing = false;
}

bool IsReservedOutside(const std::string& path) {
    const auto reservation = reservations.find(path);
    return reservation != reservations.end() && reservation->second.outside;
}

}  // namespace

bool LiesOutside(const std::string& path) {
    const std::string folder = FolderOf(path);
    const auto [entry, isNew] = outsideFolders.emplace(folder, false);
    if (isNew && folder != settings.outputPath)
        entry->second = LeadsOutOf(settings.outputPath, folder.empty() ? "." : folder);
    return entry->second;
}

bool IsOurs(const std::string& path) { return !LiesOutside(path) || IsMarked(path); }

bool PutOffDeletion(const std::string& path) { return PutOffDeletion(path, Examine(path)); }

bool PutOffDeletion(const std::string& path, const FileFacts& facts) {
    if (!IsLikeNew(path) || !MayChangeFolderOf(path)) return false;
    putOff.emplace(FileKey{facts.device, facts.number}, path);
    return true;
}

bool IsPutOff(const std::string& path) { return FindPutOff(path) != putOff.end(); }
bool IsPutOff(const std::string& path, const FileFacts& facts) {
    return FindPutOff(path, facts) != putOff.end();
}

bool TakeOver(const std::string& path) {
    const auto found = FindPutOff(path);
    if (found == putOff.end()) return false;
    putOff.erase(found);
    return true;
}

void DeletePutOff(const std::string& path) {
    const auto found = FindPutOff(path);
    if (found == putOff.end()) return;
    Remove(found->second);
    putOff.erase(found);
}

bool ReserveOutput(const std::string& path) {
    if (settings.checkOnly) return true;
    const auto known = reservations.find(path);
    if (known != reservations.end()) return known->second.creatable;
    return (reservations[path] = Reserve(path)).creatable;
}

bool WriteOutput(const std::string& path, const std::string& text) {
    Keep(path);
    if (settings.checkOnly) return true;
    return IsReservedOutside(path) ? WriteMarked(path, text) : WriteContents(path, text);
}

bool WriteOutput(const std::string& path, const LongText& text) {
    Keep(path);
    if (settings.checkOnly) return true;
    return IsReservedOutside(path) ? WriteMarked(path, text.Joined()) : WriteContents(path, text);
}

void DropOutput(const std::string& path) {
    const bool outside = IsReservedOutside(path);
    if (!settings.checkOnly && (!outside || IsMarked(path))) Remove(path, outside);
}

void LeaveOutputs() {
    putOff.clear();
    reservations.clear();
}

void SettleOutputs() {
    for (const auto& [key, path] : putOff) Remove(path);
    putOff.clear();
    for (const auto& [path, reservation] : reservations)
        if (reservation.passing) Remove(path);
    reservations.clear();
}
