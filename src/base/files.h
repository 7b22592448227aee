// Files as the build needs them beyond the standard library: which file a path names, and writing only what changed.
#pragma once

#include <cstdint>
#include <string>

#include "base/long_text.h"

// What the file system knows about a path; a link at its end is not followed.
struct FileFacts {
    enum class Kind : unsigned char { Unknown, Missing, Regular, Link, Other };
    Kind kind = Kind::Unknown;
    std::uint64_t device = 0, number = 0;  // the same for all names of a file
    std::uint64_t size = 0;
    std::int64_t time = 0;  // when it was written last, in nanoseconds where these are known
};
FileFacts Examine(const std::string& path);

// True for a regular file that nobody could tell from one created now: of this user, writable, with the
// usual rights and this one name.
bool IsLikeNew(const std::string& path);

// True when files can be created in the folder and deleted from it, false when that is not certain.
bool MayChangeFolder(const std::string& folder);

// Makes `text` the contents of a file, which need not exist. One that has these contents already keeps its
// time. A link, or a file with a second name, is replaced: nothing is written to where it leads. False when that
// fails; a file that could not be written whole is not left behind then.
bool WriteContents(const std::string& path, const std::string& text);
bool WriteContents(const std::string& path, const LongText& text);

// Keeps other runs out of a folder while it lives. One that takes longer than some seconds is not waited for, nor is
// anybody where the system cannot lock a folder.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int handle = -1;
};

// When a file was written last, in nanoseconds where these are known; 0 for one that cannot be examined.
std::int64_t FineFileTime(const std::string& path);
