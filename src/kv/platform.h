// The calls to the operating system that kv needs beside std::filesystem. One implementation per system.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

struct ProcessRequest {
    std::vector<std::string> arguments;  // the program (a path) and its arguments, passed on unchanged
    std::string workingFolder;           // empty: that of kv
    std::string outputFile;              // both streams are written to these files, and there is no input;
    std::string errorFile;               // empty: streams and input are those of kv
    std::function<void()> whileWaiting;  // called a few times a second while the program runs; may be empty
    std::function<bool()> shallEnd;      // asked as often: whether to end the program; may be empty
};

// Runs a program to its end and returns its exit status, 128 + n when signal n ended it. While a program with kv's
// own streams runs, Ctrl-C is its business alone; a tool whose streams are caught ends together with kv, and so do all
// programs that it has started. Every status is passed on unchanged, negative ones too: whether the program could be
// started is told by `problem`, which is empty then.
int RunProcess(const ProcessRequest& request, std::string& problem);

// How a tool has ended: as RunProcess tells it.
struct ProcessEnd {
    int status = -1;
    std::string problem;

    bool IsGood() const { return status == 0 && problem.empty(); }
};

// Runs tools (whose streams are caught) side by side, at most `atOnce` of them, begun in their order. When one has failed
// those at work are ended and no further one is begun. `whileWaiting` is told how many have done their work; it may be
// empty. Returns false if one has failed, whose number and end are `failed` and `end`.
bool RunTools(const std::vector<ProcessRequest>& tools, std::size_t atOnce,
              const std::function<void(std::size_t)>& whileWaiting, std::size_t& failed, ProcessEnd& end);

// How many tools the machine can run side by side without slowing one another down, and how many RunTools takes.
std::size_t CoreCount();
constexpr std::size_t mostAtOnce = 64;

// From now on a file that would grow beyond the limit of its size cannot be written, and kv lives on. Programs that it
// starts have the signal again as kv had it.
void WriteBeyondLimits();

// From now on what is read from standard input and written to standard output stays as it is, line ends included.
void UseBinaryStreams();

// The full path of the running executable, links resolved; empty if it cannot be had.
std::string OwnExecutable();

// Whether the error stream is a terminal that shows colours.
bool ErrorStreamHasColours();

// The width of the error stream when it is a terminal on which kv may rewrite a line, else 0.
int ErrorStreamColumns();

// Writes the text over the line that the cursor of the error stream is in, or leaves that line empty. A signal that
// ends kv meanwhile empties the line, too.
void RewriteErrorLine(const std::string& text);
void EraseErrorLine();

// Where a file or folder stands: changes when it is written, replaced or renamed.
struct FileState {
    std::string text;      // one line
    long long latest = 0;  // when it changed last, in nanoseconds of the system's clock for files
};

// Returns false when there is no such file or folder.
bool StateOf(const std::string& path, FileState& state);

// Whether a program of this path can be executed.
bool IsExecutable(const std::string& path);

// The folder in which a user's programs keep what can be made again; empty if there is none.
std::string UserCacheFolder();

// Makes a folder (its parent is there) that belongs to the user and is closed to everybody else. One that others could
// read is closed to them and emptied. False when it cannot be had, is a link, or is there already and others can write
// to it.
bool MakePrivateFolder(const std::string& folder);

// Whether a file or folder is the user's own.
bool BelongsToUser(const std::string& path);

// Whether files can be made in the folder.
bool CanWriteIn(const std::string& folder);

// Whether the file system of the folder has hardly room for further files, however small.
bool IsShortOfFiles(const std::string& folder);

// Copies a file, with the right to execute it, to a name that must be a new one. Returns false and sets `problem` when
// that fails.
bool CopyToNewFile(const std::string& from, const std::string& to, std::string& problem);

// The folder for temporary files, with a name of this user's own below it.
std::string UserTemporaryFolder();

// Without a path it does nothing. Otherwise it holds a file locked against other processes from construction to
// destruction; waits for them first. Programs that are started meanwhile hold it, too, in case kv is killed.
// `whileWaiting` is called a few times a second while another process has it.
class FileLock {
public:
    FileLock(const std::string& path, const std::function<void()>& whileWaiting);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Whether there is a file to lock.
    bool HasFile() const { return handle_ != -1; }

    // False where the file cannot be had or the file system has no locks.
    bool IsHeld() const { return isHeld_; }

private:
    long long handle_;
    bool isHeld_;
};

// A path as a tool that runs in `folder` is told it. On Windows most compilers read their command line in the letters
// of the system's language only: there it is the way from the folder, or a short name, where that helps.
std::string PathForTool(const std::string& path, const std::string& folder);

// How the system names and finds programs.
extern const char* const executableSuffix;  // "" or ".exe"
extern const char searchPathSeparator;      // ':' or ';'
extern const int interruptedStatus;         // of a program that Ctrl-C has ended

// Where the system has a C++ compiler to be had from, as a sentence without its full stop.
extern const char* const compilerAdvice;
