#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "driver/files.h"

static bool HasUsualRights(const struct stat& status) {
    static const mode_t hidden = [] {
        const mode_t mask = umask(0);
        umask(mask);
        return mask;
    }();
    return (status.st_mode & 07777) == (0666 & ~hidden) && status.st_uid == geteuid() &&
           status.st_gid == getegid();
}

FileFacts Examine(const std::string& path) {
    FileFacts facts;
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) {
        if (errno == ENOENT) facts.kind = FileFacts::Kind::Missing;
        return facts;
    }
    facts.kind = S_ISREG(status.st_mode) ? FileFacts::Kind::Regular : FileFacts::Kind::Other;
    facts.device = static_cast<std::uint64_t>(status.st_dev);
    facts.number = static_cast<std::uint64_t>(status.st_ino);
    return facts;
}

bool IsLikeNew(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1 &&
           HasUsualRights(status) && access(path.c_str(), W_OK) == 0;
}

bool MayChangeFolder(const std::string& folder) { return access(folder.c_str(), W_OK | X_OK) == 0; }

namespace {

class OpenFile {
public:
    OpenFile(const std::string& path, int flags) : handle(open(path.c_str(), flags | O_CLOEXEC, 0666)) {}
    ~OpenFile() {
        if (handle >= 0) close(handle);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool IsOpen() const { return handle >= 0; }

    // The size of a regular file; -1 for everything else.
    off_t Size() const {
        struct stat status;
        return fstat(handle, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
    }
    bool Holds(const std::string& text) const {
        char buffer[65536];
        for (std::size_t at = 0; at < text.size();) {
            const ssize_t got = pread(handle, buffer, sizeof buffer, static_cast<off_t>(at));
            if (got <= 0 || static_cast<std::size_t>(got) > text.size() - at) return false;
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
    bool Cut(std::size_t size) const { return ftruncate(handle, static_cast<off_t>(size)) == 0; }

private:
    int handle;
};

}  // namespace

bool WriteContents(const std::string& path, const std::string& text) {
    const OpenFile file(path, O_RDWR | O_CREAT);
    const off_t before = file.IsOpen() ? file.Size() : -1;
    if (before < 0) {
        const OpenFile emptied(path, O_WRONLY | O_CREAT | O_TRUNC);
        return emptied.IsOpen() && emptied.Write(text);
    }
    // Emptying a file first would make ext4 write it to the disk when it is closed.
    const auto size = static_cast<std::size_t>(before);
    if (size == text.size() && file.Holds(text)) return true;
    return file.Write(text) && (size <= text.size() || file.Cut(text.size()));
}
