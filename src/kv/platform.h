// The calls to the operating system that kv needs beside std::filesystem. One implementation per system.
#pragma once

#include <string>
#include <vector>

struct ProcessRequest {
    std::vector<std::string> arguments;  // the program (a path) and its arguments, passed on unchanged
    std::string workingFolder;           // empty: that of kv
    std::string outputFile;              // both streams are written to these files, and there is no input;
    std::string errorFile;               // empty: streams and input are those of kv
};

// Runs a program to its end and returns its exit status, 128 + n when signal n ended it. While a program with kv's
// own streams runs, Ctrl-C is its business alone. Returns -1 and sets `problem` when it could not be started.
int RunProcess(const ProcessRequest& request, std::string& problem);

// The full path of the running executable, links resolved; empty if it cannot be had.
std::string OwnExecutable();

// Whether the error stream is a terminal that shows colours.
bool ErrorStreamHasColours();

// Whether a program of this path can be executed.
bool IsExecutable(const std::string& path);

// The folder in which a user's programs keep what can be made again; empty if there is none.
std::string UserCacheFolder();

// Makes a folder that nobody else can write to. False when it cannot be had, or belongs to somebody else.
bool MakePrivateFolder(const std::string& folder);

// The folder for temporary files, with a name of this user's own below it.
std::string UserTemporaryFolder();

// Holds a file locked against other processes from construction to destruction; waits for them first. A lock that
// cannot be had does no harm: two builds at once may then redo each other's work.
class FileLock {
public:
    explicit FileLock(const std::string& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    long long handle_;
};

// How the system names and finds programs.
extern const char* const executableSuffix;  // "" or ".exe"
extern const char searchPathSeparator;      // ':' or ';'
