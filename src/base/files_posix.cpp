#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "base/files.h"

static bool HasUsualRights(const struct stat& status) {
    static const mode_t hidden = [] {
        const mode_t mask = umask(0);
        umask(mask);
        return mask;
    }();
    static const uid_t user = geteuid();
    static const gid_t group = getegid();
    return (status.st_mode & 07777) == (0666 & ~hidden) && status.st_uid == user && status.st_gid == group;
}

static std::int64_t TimeOf(const struct stat& status) {
#ifdef __APPLE__
    const struct timespec& time = status.st_mtimespec;
#else
    const struct timespec& time = status.st_mtim;
#endif
    return static_cast<std::int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

FileFacts Examine(const std::string& path) {
    FileFacts facts;
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) {
        if (errno == ENOENT) facts.kind = FileFacts::Kind::Missing;
        return facts;
    }
    facts.kind = S_ISREG(status.st_mode)   ? FileFacts::Kind::Regular
                 : S_ISLNK(status.st_mode) ? FileFacts::Kind::Link
                                           : FileFacts::Kind::Other;
    facts.device = static_cast<std::uint64_t>(status.st_dev);
    facts.number = static_cast<std::uint64_t>(status.st_ino);
    facts.size = static_cast<std::uint64_t>(status.st_size);
    facts.time = TimeOf(status);
    return facts;
}

bool IsLikeNew(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1 &&
           HasUsualRights(status) && access(path.c_str(), W_OK) == 0;
}

bool MayChangeFolder(const std::string& folder) { return access(folder.c_str(), W_OK | X_OK) == 0; }

// The folder itself is locked, so that no file has to lie in it.
FolderLock::FolderLock(const std::string& folder) {
    constexpr int tries = 2000;
    constexpr useconds_t pause = 5000;
    handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; handle >= 0 && i < tries && flock(handle, LOCK_EX | LOCK_NB) != 0; ++i) {
        if (errno != EWOULDBLOCK && errno != EINTR) return;
        usleep(pause);
    }
}

FolderLock::~FolderLock() {
    if (handle >= 0) close(handle);
}

std::int64_t FineFileTime(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) != 0 ? 0 : TimeOf(status);
}

namespace {

// A file open for reading and writing, which is there afterwards. No link is followed, and what is no file does
// not keep anybody waiting.
class OpenFile {
public:
    explicit OpenFile(const std::string& path) { Open(path, 0); }
    ~OpenFile() { Close(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    // Links and files with a second name make way for a new file.
    void ReplaceLink(const std::string& path) {
        if (handle < 0 ? errno != ELOOP : !hasOtherNames) return;
        Close();
        if (unlink(path.c_str()) == 0) Open(path, O_EXCL);
    }

    // The size of a regular file; -1 for everything else.
    off_t Size() const { return size; }
    bool Holds(std::string_view text, std::size_t begin) const {
        char buffer[65536];
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t wanted = std::min(sizeof buffer, text.size() - at);
            const ssize_t got = pread(handle, buffer, wanted, static_cast<off_t>(begin + at));
            if (got <= 0) return false;
            if (std::memcmp(buffer, text.data() + at, static_cast<std::size_t>(got)) != 0) return false;
            at += static_cast<std::size_t>(got);
        }
        return true;
    }
    bool Write(const std::string& text) const {
        for (std::size_t at = 0; at < text.size();) {
            const ssize_t written = write(handle, text.data() + at, text.size() - at);
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return false;
            at += static_cast<std::size_t>(written);
        }
        return true;
    }
    bool Cut(std::size_t length) const { return ftruncate(handle, static_cast<off_t>(length)) == 0; }
    // Some file systems say only now that there was no room.
    bool Close() {
        const bool good = handle < 0 || close(handle) == 0;
        handle = -1;
        return good;
    }

private:
    int handle = -1;
    off_t size = -1;
    bool hasOtherNames = false;

    void Open(const std::string& path, int flags) {
        flags |= O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
        handle = open(path.c_str(), O_RDWR | flags, 0666);
        if (handle < 0 && errno == EACCES) handle = open(path.c_str(), O_WRONLY | flags, 0666);
        struct stat status;
        const bool isFile = handle >= 0 && fstat(handle, &status) == 0 && S_ISREG(status.st_mode);
        size = isFile ? status.st_size : -1;
        hasOtherNames = isFile && status.st_nlink > 1;
    }
};

// A text in parts that lie in a row.
struct Parts {
    const std::string *first, *last;

    std::size_t Size() const {
        std::size_t size = 0;
        for (const std::string* part = first; part != last; ++part) size += part->size();
        return size;
    }
    bool AreIn(const OpenFile& file) const {
        std::size_t begin = 0;
        for (const std::string* part = first; part != last; begin += part++->size())
            if (!file.Holds(*part, begin)) return false;
        return true;
    }
    bool GoTo(const OpenFile& file) const {
        return std::all_of(first, last, [&file](const std::string& part) { return file.Write(part); });
    }
};

bool WriteParts(const std::string& path, const Parts& text) {
    OpenFile file(path);
    file.ReplaceLink(path);
    if (file.Size() < 0) return false;
    // Emptying a file first would make ext4 write it to the disk when it is closed.
    const auto before = static_cast<std::size_t>(file.Size());
    const std::size_t size = text.Size();
    if (before == size && text.AreIn(file)) return true;
    const bool written = text.GoTo(file) && (before <= size || file.Cut(size));
    if (file.Close() && written) return true;
    unlink(path.c_str());
    return false;
}

}  // namespace

bool WriteContents(const std::string& path, const std::string& text) {
    return WriteParts(path, {&text, &text + 1});
}

bool WriteContents(const std::string& path, const LongText& text) {
    const std::vector<std::string>& parts = text.Parts();
    return WriteParts(path, {parts.data(), parts.data() + parts.size()});
}
