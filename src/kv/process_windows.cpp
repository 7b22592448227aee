#ifdef _WIN32

#include <windows.h>

#include <algorithm>

#include "base/command_quoting.h"
#include "base/utf8.h"
#include "kv/platform.h"
#include "kv/windows_handles.h"

const int interruptedStatus = static_cast<int>(0xC000013A);

namespace {

HANDLE OpenForChild(const std::string& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inheritable = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return CreateFileW(Wide(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                       disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// A tool and all the programs that it starts: they end when kv ends, however that comes about.
class ToolGroup {
public:
    explicit ToolGroup(bool wanted) : job_(wanted ? CreateJobObjectW(nullptr, nullptr) : nullptr) {
        EndWithKv(JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE);
    }
    ~ToolGroup() {
        EndWithKv(0);  // what a tool that has done its work has left behind may stay
        CloseIfOpen(job_);
    }
    ToolGroup(const ToolGroup&) = delete;
    ToolGroup& operator=(const ToolGroup&) = delete;

    void Add(HANDLE process) const {
        if (job_ != nullptr) AssignProcessToJobObject(job_, process);
    }
    void End() const {
        if (job_ != nullptr) TerminateJobObject(job_, 1);
    }

private:
    void EndWithKv(DWORD flags) const {
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
        limits.BasicLimitInformation.LimitFlags = flags;
        if (job_ != nullptr)
            SetInformationJobObject(job_, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    }

    HANDLE job_;
};

BOOL WINAPI IgnoreCtrlC(DWORD) { return TRUE; }

// Starts a program. Null, and why, if that cannot be.
HANDLE Start(const ProcessRequest& request, const ToolGroup& group, std::string& problem) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    if (!request.outputFile.empty()) {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = OpenForChild("NUL", GENERIC_READ, OPEN_EXISTING);
        startup.hStdOutput = OpenForChild(request.outputFile, GENERIC_WRITE, CREATE_ALWAYS);
        startup.hStdError = OpenForChild(request.errorFile, GENERIC_WRITE, CREATE_ALWAYS);
    }
    std::wstring line = Wide(WindowsCommandLine(request.arguments));
    const std::wstring folder = Wide(request.workingFolder);
    PROCESS_INFORMATION process = {};
    const BOOL started =
        CreateProcessW(Wide(request.arguments[0]).c_str(), &line[0], nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                       nullptr, folder.empty() ? nullptr : folder.c_str(), &startup, &process);
    if (started) {
        group.Add(process.hProcess);
        ResumeThread(process.hThread);
        CloseHandle(process.hThread);
    } else {
        problem = LastProblem();
    }
    CloseIfOpen(startup.hStdInput);
    CloseIfOpen(startup.hStdOutput);
    CloseIfOpen(startup.hStdError);
    return process.hProcess;
}

// The exit status of a program that has ended; nothing is known of it afterwards.
int StatusOf(HANDLE process) {
    DWORD code = 1;
    GetExitCodeProcess(process, &code);
    CloseHandle(process);
    return static_cast<int>(code);
}

}  // namespace

int RunProcess(const ProcessRequest& request, std::string& problem) {
    problem.clear();
    const bool captured = !request.outputFile.empty();
    if (!captured) SetConsoleCtrlHandler(IgnoreCtrlC, TRUE);
    const ToolGroup group(captured);
    const HANDLE process = Start(request, group, problem);
    int status = -1;
    if (process != nullptr) {
        while (WaitForSingleObject(process, tickMilliseconds) == WAIT_TIMEOUT) {
            if (request.whileWaiting) request.whileWaiting();
            if (request.shallEnd && request.shallEnd()) TerminateProcess(process, 1);
        }
        status = StatusOf(process);
        if (status != 0) group.End();
    }
    if (!captured) SetConsoleCtrlHandler(IgnoreCtrlC, FALSE);
    return status;
}

bool RunTools(const std::vector<ProcessRequest>& tools, std::size_t atOnce,
              const std::function<void(std::size_t)>& whileWaiting, std::size_t& failed, ProcessEnd& end) {
    const ToolGroup group(true);
    std::vector<HANDLE> atWork;
    std::vector<std::size_t> numbers;  // of the tools at work
    std::size_t begun = 0;
    while (begun < tools.size() || !atWork.empty()) {
        end = ProcessEnd();
        failed = begun;
        if (begun < tools.size() && atWork.size() < atOnce) {
            const HANDLE process = Start(tools[begun], group, end.problem);
            if (process == nullptr) break;
            atWork.push_back(process);
            numbers.push_back(begun++);
            continue;
        }
        const DWORD ended =
            WaitForMultipleObjects(static_cast<DWORD>(atWork.size()), atWork.data(), FALSE, tickMilliseconds);
        if (ended == WAIT_TIMEOUT) {
            if (whileWaiting) whileWaiting(begun - atWork.size());
            continue;
        }
        const std::size_t at = ended - WAIT_OBJECT_0;
        if (at >= atWork.size()) {
            end.problem = LastProblem();
            break;
        }
        failed = numbers[at];
        end.status = StatusOf(atWork[at]);
        atWork.erase(atWork.begin() + static_cast<std::ptrdiff_t>(at));
        numbers.erase(numbers.begin() + static_cast<std::ptrdiff_t>(at));
        if (end.status != 0) break;
    }
    const bool good = begun == tools.size() && atWork.empty() && (tools.empty() || end.IsGood());
    if (!good) group.End();
    for (const HANDLE process : atWork) {
        WaitForSingleObject(process, INFINITE);
        CloseHandle(process);
    }
    return good;
}

std::size_t CoreCount() {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return std::min<std::size_t>(std::max<std::size_t>(system.dwNumberOfProcessors, 1), mostAtOnce);
}

#endif
