// Tells why a program made by kv failed, and where, on the error stream:
//
//     error: the program used an object that is Null
//       at game.kvl:12 in Method TPlayer\Move
//
// With KV_STACK defined all routines under way follow, the innermost first. Status and signal of the program stay what
// they are without this. Nothing happens, and nothing is slower, until something fails: signals and exceptions that end
// the program lead here, and so do run-time errors (kvfailure.h). The places come from the line tables of the C++
// compiler, whose #line directives lead to the source; libbacktrace, which comes with g++, reads them. Without it the
// message stands alone.
#include "kvfailure.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <set>
#include <string>
#include <typeinfo>

#include <cxxabi.h>

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>
#include <unwind.h>
#endif

#ifdef KV_BACKTRACE
// Of libbacktrace, whose header only g++ finds.
#include <link.h>
struct backtrace_state;
extern "C" {
typedef void (*backtrace_error_callback)(void* data, const char* message, int error);
typedef int (*backtrace_full_callback)(void* data, uintptr_t address, const char* file, int line,
                                       const char* function);
backtrace_state* backtrace_create_state(const char* file, int threaded, backtrace_error_callback failed,
                                        void* data);
int backtrace_pcinfo(backtrace_state* state, uintptr_t address, backtrace_full_callback told,
                     backtrace_error_callback failed, void* data);
}
#endif

extern "C" {
void (*__kvBeforeFailure)() = nullptr;
void (*__kvAtFailure)(const char* text) = nullptr;
}

namespace {

// ---- Writing: no memory is asked for, for there may be none ------------------------------------------------------

void Say(const char* text, std::size_t size) {
    while (size > 0) {
        const int written = static_cast<int>(::write(2, text, static_cast<unsigned>(size)));
        if (written <= 0) return;
        text += written;
        size -= static_cast<std::size_t>(written);
    }
}

const char failureMark[] = "error: ";
char failure[2000] = "";  // the line that has told what failed

class Line {
public:
    Line& operator<<(const char* text) { return Add(text, std::strlen(text)); }
    Line& operator<<(unsigned long long number) {
        char digits[24];
        std::size_t at = sizeof digits;
        do {
            digits[--at] = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number > 0);
        return Add(digits + at, sizeof digits - at);
    }
    Line& Add(const char* text, std::size_t length) {
        if (length > sizeof bytes - 1 - used) length = sizeof bytes - 1 - used;
        std::memcpy(bytes + used, text, length);
        used += length;
        return *this;
    }
    void End() {
        if (std::strncmp(bytes, failureMark, sizeof failureMark - 1) == 0) {
            std::memcpy(failure, bytes, used);
            failure[used] = '\0';
        }
        bytes[used++] = '\n';
        Say(bytes, used);
        used = 0;
    }

private:
    char bytes[2000];
    std::size_t used = 0;
};

void SayError(const char* what) {
    Line line;
    (line << "error: " << what).End();
}

void SayWarning(const char* what) {
    Line line;
    (line << "warning: " << what).End();
}

// ---- Places ------------------------------------------------------------------------------------------------------

#ifndef _WIN32
char folder[1000];  // in front of the sources' paths, as whoever runs the program sees them
#endif

#ifdef KV_BACKTRACE

struct Word {
    const char* text;
    std::size_t size;
};

bool StartsWith(const char* text, const char* start) {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

Word WithoutPrefix(Word word) {
    const bool prefixed = word.size > 4 && StartsWith(word.text, "KVL_");
    return prefixed ? Word{word.text + 4, word.size - 4} : word;
}

// "6KVL_Do" moves on behind it.
bool TakeWord(const char*& mangled, Word& word) {
    std::size_t size = 0;
    const char* at = mangled;
    for (; *at >= '0' && *at <= '9'; ++at) size = size * 10 + static_cast<std::size_t>(*at - '0');
    if (size == 0 || size > std::strlen(at)) return false;
    word = {at, size};
    mangled = at + size;
    return true;
}

// "_ZN11KVL_TPlayer8KVL_MoveEi", "_Z8KVL_Drawv", with a lambda or a local inside it "_ZZ..."; a Function that nobody
// else can call has its plain name.
struct Name {
    explicit Name(const char* text) : first{text, std::strlen(text)}, rest(text + first.size) {
        if (!StartsWith(text, "_Z")) return;
        rest = text + 2;
        while (*rest == 'Z' || *rest == 'L') ++rest;
        nested = *rest == 'N';
        while (*rest == 'N' || *rest == 'K' || *rest == 'L') ++rest;
        if (!TakeWord(rest, first)) first.size = 0;
    }
    Word first;
    const char* rest;  // behind it
    bool nested = false;
};

// Of the support code or the C++ library. Parts of these have no line of their own once they are a part of another
// routine: the tables give the line of whatever stands before.
bool IsOwn(const Name& name) {
    if (name.first.size == 0) return *name.rest == 'S';
    const char* text = name.first.text;
    if (StartsWith(text, "KVL_"))
        return *name.rest == 'I' || std::memchr(text, '<', name.first.size) != nullptr;
    return StartsWith(text, "KV") || StartsWith(text, "__kv");
}

void SayRoutine(Line& line, Name name) {
    Word first = WithoutPrefix(name.first), second;
    if (first.size == 0 || StartsWith(first.text, "operator()")) return;  // a part of a routine
    if (first.size == 4 && StartsWith(first.text, "main")) {
        line << " in Function Main";
    } else if (StartsWith(first.text, "__") || StartsWith(first.text, "_GLOBAL__")) {
        line << " in the value of a Global";
    } else if (name.nested && TakeWord(name.rest, second)) {
        second = WithoutPrefix(second);
        ((line << " in Method ").Add(first.text, first.size) << "\\").Add(second.text, second.size);
    } else if (name.nested) {
        (line << (*name.rest == 'D' ? " in the destructor of " : " in the constructor of "))
            .Add(first.text, first.size);
    } else {
        (line << " in Function ").Add(first.text, first.size);
    }
}

const int framesShown = 20;
backtrace_state* state = nullptr;
int placesSaid = 0;

void IgnoreProblem(void*, const char*, int) {}

// Paths of the source count from its folder. All else is the system's, or marked as ours.
const char* SourcePath(const char* file) {
    if (file[0] == '.' && file[1] == '/') file += 2;
    const bool other = file[0] == '/' || file[0] == '<' || file[0] == '\0' || file[1] == ':';
    return other ? nullptr : file;
}

// Null for what is not of the source.
const char* PathOf(const char* file, int number, const char* routine) {
    const char* path = file == nullptr ? nullptr : SourcePath(file);
    return number <= 0 || (routine != nullptr && IsOwn(Name(routine))) ? nullptr : path;
}

int SayPlace(void*, uintptr_t, const char* file, int number, const char* routine) {
    const char* path = PathOf(file, number, routine);
    if (path == nullptr) return 0;
    Line line;
    line << "  at " << folder << path << ":" << static_cast<unsigned long long>(number);
    if (routine != nullptr) SayRoutine(line, Name(routine));
    line.End();
    ++placesSaid;
#ifdef KV_STACK
    return 0;
#else
    return 1;
#endif
}

// Where the code of the program lies: the first of what is loaded. Libraries may bring line tables of their own.
struct Range {
    uintptr_t begin, end;
} ownCode = {~static_cast<uintptr_t>(0), 0};

int NoteOwnCode(dl_phdr_info* info, std::size_t, void*) {
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const uintptr_t begin = info->dlpi_addr + info->dlpi_phdr[i].p_vaddr;
        const uintptr_t end = begin + info->dlpi_phdr[i].p_memsz;
        if (info->dlpi_phdr[i].p_type != PT_LOAD) continue;
        if (begin < ownCode.begin) ownCode.begin = begin;
        if (end > ownCode.end) ownCode.end = end;
    }
    return 1;
}

struct Walk {
    unsigned long long frames = 0, repeats = 0;
    uintptr_t last = 0;
};

std::size_t HashOf(const char* text, const char* end) {
    std::size_t hash = 0;
    for (; *text != '\0' && text != end; ++text) hash = hash * 31 + static_cast<unsigned char>(*text);
    return hash;
}

// Leaves a number that stands for the first place of the source.
int NotePlace(void* data, uintptr_t, const char* file, int number, const char* routine) {
    std::size_t& place = *static_cast<std::size_t*>(data);
    if (place == 0 && PathOf(file, number, routine) != nullptr)
        place = HashOf(file, nullptr) * 100003 + static_cast<std::size_t>(number);
    return 0;
}

_Unwind_Reason_Code FindPlace(_Unwind_Context* context, void* data) {
    const uintptr_t address = _Unwind_GetIP(context);
    if (address >= ownCode.begin && address < ownCode.end)
        backtrace_pcinfo(state, address - 1, NotePlace, IgnoreProblem, data);
    return *static_cast<std::size_t*>(data) != 0 ? _URC_END_OF_STACK : _URC_NO_REASON;
}

bool FindTables() {
    if (state == nullptr) state = backtrace_create_state(nullptr, 0, IgnoreProblem, nullptr);
    if (state != nullptr) dl_iterate_phdr(NoteOwnCode, nullptr);
    return state != nullptr;
}

const std::size_t warningsSaid = 200;

// Whether nothing has been said of what stands in front of the text's colon, at the place under way.
bool IsNewPlace(const char* text) {
    static std::size_t told[warningsSaid];
    static std::size_t count = 0;
    std::size_t place = 0;
    if (!FindTables()) return true;
    _Unwind_Backtrace(FindPlace, &place);
    place ^= HashOf(text, std::strchr(text, ':'));
    for (std::size_t i = 0; i < count; ++i) {
        if (told[i] == place) return false;
    }
    if (count == warningsSaid) return false;
    told[count++] = place;
    return true;
}

void SayRepeats(Walk& walk) {
    Line line;
    if (walk.repeats > 0) (line << "     ... and " << walk.repeats << " times more").End();
    walk.repeats = 0;
}

_Unwind_Reason_Code Visit(_Unwind_Context* context, void* data) {
    Walk& walk = *static_cast<Walk*>(data);
    int isExact = 0;
    const uintptr_t address = _Unwind_GetIPInfo(context, &isExact);
    if (address == 0) return _URC_END_OF_STACK;
    ++walk.frames;
#ifdef KV_STACK
    if (address == walk.last) ++walk.repeats;
    if (address == walk.last || placesSaid >= framesShown) return _URC_NO_REASON;
    walk.last = address;
    SayRepeats(walk);
#else
    if (placesSaid > 0 || walk.frames > 1000) return _URC_END_OF_STACK;
#endif
    if (address >= ownCode.begin && address < ownCode.end)
        backtrace_pcinfo(state, address - (isExact ? 0 : 1), SayPlace, IgnoreProblem, nullptr);
    return _URC_NO_REASON;
}

void SayPlaces() {
    if (!FindTables()) return;
    placesSaid = 0;
    Walk walk;
    _Unwind_Backtrace(Visit, &walk);
    SayRepeats(walk);
    Line line;
    if (placesSaid >= framesShown) (line << "  ... " << walk.frames << " calls are under way").End();
}

#else

void SayPlaces() {}

// Without places each text counts.
bool IsNewPlace(const char* text) {
    static std::set<std::string> told;
    return told.insert(text).second;
}

#endif

// All has been said, and the routines are still there to be looked at.
void TellDebugger() {
    if (__kvAtFailure != nullptr) __kvAtFailure(failure);
}

// ---- Exceptions --------------------------------------------------------------------------------------------------

bool said = false;  // what ends the program now has been told

// The number behind the mark, as the C++ library has it: "(which is 7)".
bool NumberBehind(const char* text, const char* mark, unsigned long long& number) {
    const char* at = std::strstr(text, mark);
    return at != nullptr && std::sscanf(at + std::strlen(mark), " (which is %llu)", &number) == 1;
}

void SayOutOfRange(const char* what) {
    unsigned long long index = 0, size = 0;
    const bool isText = std::strncmp(what, "basic_string", 12) == 0;
    const bool known =
        NumberBehind(what, isText ? "__pos" : "__n", index) && NumberBehind(what, "size()", size);
    if (!known) return SayError(what);
    Line line;
    line << "error: ";
    if (isText)
        line << "position " << index << " is behind the end of a text of " << size << " bytes";
    else if (index > ~0ULL / 2)
        line << "index -" << ~index + 1 << " is outside of an array of " << size;
    else
        line << "index " << index << " is outside of an array of " << size;
    line.End();
}

// Within a handler of the exception.
void SayException() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        SayError("memory ran out");
    } catch (const std::length_error&) {
        SayError("memory ran out: an array, Sequence or text cannot become so large");
    } catch (const std::out_of_range& problem) {
        SayOutOfRange(problem.what());
    } catch (const std::invalid_argument& problem) {
        SayError(problem.what());
    } catch (const std::exception& problem) {
        Line line;
        (line << "error: an exception of C++ ended the program: " << problem.what()).End();
    } catch (...) {
        SayError("an exception of C++ ended the program");
    }
}

[[noreturn]] void EndByException() {
    if (!said) {
        said = true;
        if (__cxxabiv1::__cxa_current_exception_type() != nullptr)
            SayException();
        else
            SayError("an exception of C++ ended the program");
        SayPlaces();
        TellDebugger();
    }
    std::abort();
}

// ---- Signals -----------------------------------------------------------------------------------------------------

const uintptr_t nullPage = 65536;
const char nullText[] = "the program used an object that is Null";
const char deepText[] = "calls went too deep";
const char memoryText[] =
    "the program used memory that is not its own (an index outside of its array, an object that is gone?)";
const char divisionText[] = "division by zero";
const char abortText[] = "the program was aborted";
const char codeText[] = "the program came to code that cannot be executed";

// g++ puts this instruction where it can see that an object is Null.
bool IsTrap(const void* address) {
#if defined(__x86_64__) || defined(__i386__)
    const unsigned char* code = static_cast<const unsigned char*>(address);
    return code[0] == 0x0f && code[1] == 0x0b;
#else
    (void)address;
    return false;
#endif
}

bool IsNull(const void* address) { return reinterpret_cast<uintptr_t>(address) < nullPage; }

#ifndef _WIN32

char handlerStack[256 * 1024];  // endless recursion leaves no room on the usual one
extern "C" char** environ;
const char* stackTop = nullptr;

const int signals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// Whether nearly all of the stack is in use, and the program wanted to use what lies below it.
bool IsStackEnd(const char* address) {
    struct rlimit limit;
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY || address > stackTop)
        return false;
    const unsigned long long depth = static_cast<unsigned long long>(stackTop - address);
    return depth > limit.rlim_cur / 8 * 7 && depth / 2 < limit.rlim_cur;
}

const char* TextOf(int number, const siginfo_t* info) {
    const char* address = static_cast<const char*>(info->si_addr);
    const bool bySystem = info->si_code > 0;  // otherwise somebody has sent it
    switch (number) {
        case SIGSEGV:
        case SIGBUS:
            if (!bySystem) return number == SIGSEGV ? "signal SIGSEGV" : "signal SIGBUS";
            if (number == SIGSEGV && IsStackEnd(address)) return deepText;
            if (info->si_code == SEGV_MAPERR && IsNull(address)) return nullText;
            return memoryText;
        case SIGFPE:
            return bySystem ? divisionText : "signal SIGFPE";
        case SIGILL:
            return !bySystem ? "signal SIGILL" : IsTrap(address) ? nullText : codeText;
        default:
            return abortText;
    }
}

// The program ends as it would have without this.
void EndBySignal(int number, siginfo_t* info, void*) {
    struct sigaction usual;
    std::memset(&usual, 0, sizeof usual);
    usual.sa_handler = SIG_DFL;
    sigaction(number, &usual, nullptr);
    if (__kvBeforeFailure != nullptr) __kvBeforeFailure();
    if (!said) {
        said = true;
        SayError(TextOf(number, info));
        SayPlaces();
        TellDebugger();
    }
    raise(number);  // comes when this one returns
}

// Before anything of the program runs. Whoever wants these signals takes them over later, or has done so by now.
__attribute__((constructor(101))) void Begin() {
    stackTop = reinterpret_cast<const char*>(environ);
    if (const char* given = std::getenv("KORVEL_FOLDER")) {
        if (std::strlen(given) < sizeof folder) std::strcpy(folder, given);
        unsetenv("KORVEL_FOLDER");  // for programs that this one starts it means nothing
    }
    std::set_terminate(EndByException);
    stack_t own, present;
    std::memset(&own, 0, sizeof own);
    own.ss_sp = handlerStack;
    own.ss_size = sizeof handlerStack;
    if (sigaltstack(nullptr, &present) == 0 && (present.ss_flags & SS_DISABLE)) sigaltstack(&own, nullptr);
    struct sigaction action, before;
    std::memset(&action, 0, sizeof action);
    action.sa_sigaction = EndBySignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (const int number : signals) {
        if (sigaction(number, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
            sigaction(number, &action, nullptr);
    }
}

#else

const char* TextOf(const EXCEPTION_RECORD& record) {
    switch (record.ExceptionCode) {
        case EXCEPTION_ACCESS_VIOLATION:
            return IsNull(reinterpret_cast<const void*>(record.ExceptionInformation[1])) ? nullText
                                                                                         : memoryText;
        case EXCEPTION_STACK_OVERFLOW:
            return deepText;
        case EXCEPTION_INT_DIVIDE_BY_ZERO:
            return divisionText;
        case EXCEPTION_ILLEGAL_INSTRUCTION:
            return IsTrap(record.ExceptionAddress) ? nullText : codeText;
        default:
            return nullptr;
    }
}

void TellFault(const char* text) {
    if (said) return;
    said = true;
    if (__kvBeforeFailure != nullptr) __kvBeforeFailure();
    SayError(text);
}

#ifdef _WIN64
char otherStack[64 * 1024];

// A full stack has no room to say anything.
void TellOnOtherStack(CONTEXT& thread, void (*tell)()) {
    const auto top = reinterpret_cast<DWORD64>(otherStack + sizeof otherStack);
    thread.Rsp = top / 16 * 16 - 40;  // a return address, and above it the room that is the callee's
    thread.Rip = reinterpret_cast<DWORD64>(tell);
}

void EndByFullStack() {
    TellFault(deepText);
    TerminateProcess(GetCurrentProcess(), EXCEPTION_STACK_OVERFLOW);
}
#endif

// Before the C library makes a signal of it. Exceptions of C++ come here, too.
LONG WINAPI HandleFault(EXCEPTION_POINTERS* fault) {
#ifdef _WIN64
    if (fault->ExceptionRecord->ExceptionCode == EXCEPTION_STACK_OVERFLOW) {
        TellOnOtherStack(*fault->ContextRecord, EndByFullStack);
        return EXCEPTION_CONTINUE_EXECUTION;
    }
#endif
    if (const char* text = TextOf(*fault->ExceptionRecord)) TellFault(text);
    return EXCEPTION_CONTINUE_SEARCH;
}

__attribute__((constructor(101))) void Begin() {
    ULONG room = 65536;  // of the stack, for what is to be said when it is full
    SetThreadStackGuarantee(&room);
    std::set_terminate(EndByException);
    AddVectoredExceptionHandler(1, HandleFault);
}

#endif

}  // namespace

extern "C" void __kvWarn(const char* text) {
    if (!IsNewPlace(text)) return;
    SayWarning(text);
    SayPlaces();
}

extern "C" void __kvFail(int status) {
    SayPlaces();
    TellDebugger();
    std::exit(status);
}
