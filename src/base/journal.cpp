#include "base/journal.h"

#include <set>
#include <utility>

#include "base/run.h"

namespace {

Chapter whole;
Chapter* open = nullptr;
Telling telling = Telling::Both;
const PartOfRun partOfRun(whole, open, telling);

Chapter::Entry& NewEntry() {
    Chapter::Entry& entry = open->entries.emplace_back();
    entry.when = telling;
    return entry;
}

// Whether lines can be added to the entry.
bool TakesLines(const Chapter::Entry& entry, bool onErrorStream) {
    return entry.when == telling && !entry.text.empty() && entry.onErrorStream == onErrorStream;
}

// `sound` are chapters without mistakes: where many files include one another, each would be met many times.
using SoundChapters = std::set<std::pair<const Chapter*, Telling>>;

void Tell(const Chapter& chapter, Telling as, bool mistakesOnly, SoundChapters& sound, Told& told) {
    if (mistakesOnly && sound.count({&chapter, as}) != 0) return;
    for (const Chapter::Entry& entry : chapter.entries) {
        if (entry.when != Telling::Both && entry.when != as) continue;
        if (!mistakesOnly) SayText(entry.text, entry.onErrorStream);
        if (!mistakesOnly && !entry.file.empty()) told.files.push_back(entry.file);
        if (entry.chapter != nullptr)
            Tell(*entry.chapter, entry.as, mistakesOnly || entry.mistakesOnly, sound, told);
        if (entry.mistake != nullptr) told.mistake = entry.mistake.get();
        if (told.mistake != nullptr) return;
    }
    sound.emplace(&chapter, as);
}

}  // namespace

Chapter& WholeRun() { return whole; }

OpenChapter::OpenChapter(Chapter& chapter) : before(open), tellingBefore(telling) {
    open = &chapter;
    telling = Telling::Both;
}

OpenChapter::~OpenChapter() {
    open = before;
    telling = tellingBefore;
}

TellOnly::TellOnly(Telling when) : before(telling) { telling = when; }
TellOnly::~TellOnly() { telling = before; }

void NoteChapter(const Chapter& chapter, Telling as) {
    Chapter::Entry& entry = NewEntry();
    entry.chapter = &chapter;
    entry.as = as;
}

void NoteMistakesOf(const Chapter& chapter, Telling as) {
    NoteChapter(chapter, as);
    open->entries.back().mistakesOnly = true;
}

void NoteFile(const std::string& source) { NewEntry().file = source; }

void NoteMistake(const Stop& stop) {
    const TellOnly when(stop.ofUnknown ? Telling::Second : telling);
    NewEntry().mistake = std::make_shared<const Stop>(stop);
}

bool NoteText(const std::string& lines, bool onErrorStream) {
    if (open == nullptr) return false;
    if (open->entries.empty() || !TakesLines(open->entries.back(), onErrorStream))
        NewEntry().onErrorStream = onErrorStream;
    open->entries.back().text += lines;
    return true;
}

Told TellRun() {
    Told told;
    SoundChapters sound;
    Tell(whole, Telling::Both, false, sound, told);
    return told;
}
