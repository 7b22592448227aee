// What a run says, what it finishes and what it finds wrong, in the order in which it is told. An included file is
// told where the first pass meets it and again where the second one does, but is read and translated once: what
// is said of it goes to chapters of its own, which are told in both places.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/report.h"

// When something is told: each time, or in one of the places only.
enum class Telling : unsigned char { Both, First, Second };

struct Chapter {
    struct Entry {
        Telling when = Telling::Both;
        std::string text;  // finished lines
        bool onErrorStream = false;
        std::string file;  // a source whose outputs are finished
        std::shared_ptr<const Stop> mistake;
        const Chapter* chapter = nullptr;  // is told here,
        Telling as = Telling::Both;        // this time of its two,
        bool mistakesOnly = false;         // or what is wrong in it
    };
    std::vector<Entry> entries;
};

// The chapter of the whole run.
Chapter& WholeRun();

// While one lives, everything goes to its chapter.
class OpenChapter {
public:
    explicit OpenChapter(Chapter& chapter);
    ~OpenChapter();
    OpenChapter(const OpenChapter&) = delete;
    OpenChapter& operator=(const OpenChapter&) = delete;

private:
    Chapter* before;
    Telling tellingBefore;
};

// While one lives, what goes to the open chapter is told only then.
class TellOnly {
public:
    explicit TellOnly(Telling when);
    ~TellOnly();
    TellOnly(const TellOnly&) = delete;
    TellOnly& operator=(const TellOnly&) = delete;

private:
    Telling before;
};

// These note something in the open chapter.
void NoteChapter(const Chapter& chapter, Telling as);
void NoteMistakesOf(const Chapter& chapter, Telling as);
void NoteFile(const std::string& source);
// What names that are still unread could set right is told the second time only.
void NoteMistake(const Stop& stop);
// False when no chapter is open.
bool NoteText(const std::string& lines, bool onErrorStream);

struct Told {
    const Stop* mistake = nullptr;   // which ended it
    std::vector<std::string> files;  // finished before
};
// Prints the chapter of the whole run, up to the first mistake.
Told TellRun();
