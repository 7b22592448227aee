// Translating again only what an edit has to do with. The record of the translation before (record.h) has what each file came
// to. A file gets that again, without a second pass, when
//     its text is the same, and the program is translated with the same settings, by the same compiler;
//     all declarations of the program are the same: whatever stands outside of routines, and their heads;
//     no routine that it calls, directly or not, does anything else than before (analysis/routine_digests.h);
//     the words that have decided about names of ours are in the program as before (symbols/own_names.h);
//     the units of its routines lie there as they were left.
// What leans on more than that (FileOutput::leansOnOthers), what names AnyObject, the main file and modules are translated each
// time. All files
// are read, cut and collected as ever, and everything behind the second pass is done for the program as a whole.
//
// The record is for programs in units, in which a file's routines stand apart from everything else.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "collect/first_pass.h"
#include "prelude/order.h"
#include "symbols/own_names.h"

// A file as the first pass has left it.
struct CollectedFile {
    const FileOutput* output;
    const Declarations* declarations;
};

// Before the second pass, when it is known that the program comes in units: finds out which files can be had from the record,
// and begins the next one. Does nothing where settings do not ask for a record.
void BeginReuse(const std::vector<CollectedFile>& files);

// Whether the file can be had from the record.
bool IsRecorded(const std::string& source);
// Puts what it came to into its opened outputs; `include` translates what the file includes, where it does so.
void TakeFromRecord(FileOutput& out, const std::function<void(const std::string&)>& include);

// The second pass of a file. What it comes to goes into the record, unless something is wrong with it.
class RecordedPass {
public:
    RecordedPass();
    ~RecordedPass();
    RecordedPass(const RecordedPass&) = delete;
    RecordedPass& operator=(const RecordedPass&) = delete;

    // When its outputs are complete, and its routines stand apart.
    void Record(const CollectedFile& file);

private:
    AskedWords askedAround;
    std::size_t firstSlip;
};

// When nobody asks for effects any more, and nothing is wrong with the program.
void RecordRoutines();

// Thrown, before anything is written, when the program has to be translated without the record: its units would get other
// numbers, or only the second pass of a file that was taken from it could tell what is wrong there.
struct StaleRecord {};

// Before units are written: the record before knows nothing of these, should this run end half-way.
void DropRecordBefore();
// When the units lie where they belong: the record counts from now on.
void EndRecord(const Program& program);
// When they do not: the one before stays.
void AbandonRecord();

// How many files came from the record.
std::size_t RecordedFiles();
