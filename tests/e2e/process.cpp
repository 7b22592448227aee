#include "process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

static void Redirect(const std::string& path, int flags, int target) {
    int file = open(path.c_str(), flags, 0644);
    if (file < 0 || dup2(file, target) < 0) _exit(126);
    close(file);
}

[[noreturn]] static void BecomeProgram(const std::vector<std::string>& command, const std::string& folder,
                                       const std::string& base) {
    setpgid(0, 0);
    rlimit fileSize{64U << 20, 64U << 20};
    setrlimit(RLIMIT_FSIZE, &fileSize);
    rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    Redirect(base + ".in", O_RDONLY, 0);
    Redirect(base + ".out", O_WRONLY | O_CREAT | O_TRUNC, 1);
    Redirect(base + ".err", O_WRONLY | O_CREAT | O_TRUNC, 2);
    if (chdir(folder.c_str()) != 0) _exit(126);
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

ProcessResult RunProcess(const std::vector<std::string>& command, const std::string& folder,
                         const std::string& input, int seconds) {
    const std::string base = folder + "/process";
    WriteFile(base + ".in", input);
    ProcessResult result;
    const pid_t child = fork();
    if (child == 0) BecomeProgram(command, folder, base);

    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::seconds(seconds);
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() > deadline) {
            result.timedOut = true;
            kill(-child, SIGKILL);
            waitpid(child, &status, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    kill(-child, SIGKILL);  // whatever it started and left behind
    if (!result.timedOut && WIFEXITED(status)) result.exitStatus = WEXITSTATUS(status);
    if (!result.timedOut && WIFSIGNALED(status)) result.signal = WTERMSIG(status);
    result.out = ReadFile(base + ".out");
    result.err = ReadFile(base + ".err");
    return result;
}

std::string DescribeEnd(const ProcessResult& result) {
    if (result.timedOut) return "was still running after the time limit";
    if (result.signal != 0) return "was killed by signal " + std::to_string(result.signal);
    return "ended with status " + std::to_string(result.exitStatus);
}
