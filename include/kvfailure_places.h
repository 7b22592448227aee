// Where the routines under way stand in the source, read by libbacktrace from the line tables of the C++ compiler. A part
// of kvfailure.cpp.
#ifndef KV_FAILURE_PLACES_H
#define KV_FAILURE_PLACES_H

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <unwind.h>
#endif

#include "kvfailure_lines.h"

#ifdef KV_BACKTRACE
#include "kvfailure_names.h"

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

namespace {

#ifndef _WIN32
char folder[1000];  // in front of the sources' paths, as whoever runs the program sees them
#endif

#ifdef KV_BACKTRACE

#ifdef KV_STACK
const int placesWanted = 20;
#else
const int placesWanted = 1;
#endif
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

const char* places = "";  // a line each, see __kvReadPlaces

// A line of an anchored file as one of the source; others stay as they are.
void FindSourceLine(Word& file, unsigned long long& number) {
    const char* const anchor = std::strrchr(file.text, '@');
    for (const char* row = anchor == nullptr ? "" : places; *row != '\0';) {
        const char* const end = row + std::strcspn(row, "\n");
        if (std::strncmp(row, file.text, file.size) == 0 && row[file.size] == ' ') {
            number += std::strtoull(row + file.size, nullptr, 10) - 1;
            file.size = static_cast<std::size_t>(anchor - file.text);
            return;
        }
        row = end + (*end == '\n' ? 1 : 0);
    }
}

struct Place {
    Word file;
    unsigned long long line;  // 0: none
    const char* routine;
};
Place held = {};  // that of a part of a routine, until the routine itself comes

bool AreInOneLine(const Place& one, const Place& other) {
    return one.line == other.line && one.file.size == other.file.size &&
           std::strncmp(one.file.text, other.file.text, one.file.size) == 0;
}

void Say(const Place& place) {
    Line line;
    (line << "  at " << folder).Add(place.file.text, place.file.size) << ":" << place.line;
    if (place.routine != nullptr) SayRoutine(line, Name(place.routine));
    line.End();
    ++placesSaid;
}

void SayHeld() {
    if (held.line > 0 && placesSaid < placesWanted) Say(held);
    held.line = 0;
}

int SayPlace(void*, uintptr_t, const char* file, int number, const char* routine) {
    const char* path = PathOf(file, number, routine);
    if (path == nullptr) return 0;
    Place place = {{path, std::strlen(path)}, static_cast<unsigned long long>(number), routine};
    FindSourceLine(place.file, place.line);
    if (AreInOneLine(place, held)) held.line = 0;
    SayHeld();
    if (routine != nullptr && IsPart(Name(routine)))
        held = place;
    else if (placesSaid < placesWanted)
        Say(place);
    return placesSaid < placesWanted ? 0 : 1;
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
    if (address == walk.last || placesSaid >= placesWanted) return _URC_NO_REASON;
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
    SayHeld();
#ifdef KV_STACK
    Line line;
    if (placesSaid >= placesWanted) (line << "  ... " << walk.frames << " calls are under way").End();
#endif
}

#ifndef _WIN32

// The program's own memory is left as it is.
void ReadPlaces(const char* path) {
    const int file = open(path, O_RDONLY);
    const off_t size = file < 0 ? -1 : lseek(file, 0, SEEK_END);
    if (size > 0) {
        const std::size_t room = static_cast<std::size_t>(size) + 1;
        void* const memory = mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory != MAP_FAILED && pread(file, memory, room - 1, 0) > 0) places = static_cast<char*>(memory);
    }
    if (file >= 0) close(file);
}

#else

void ReadPlaces(const char*) {}

#endif

#else

void ReadPlaces(const char*) {}
void SayPlaces() {}

// Without places each text counts.
bool IsNewPlace(const char* text) {
    static std::set<std::string> told;
    return told.insert(text).second;
}

#endif

}  // namespace

#endif
