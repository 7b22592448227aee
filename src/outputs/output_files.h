// The files of the output folder: what the previous build left there and what this one writes.
//
// A run begins by deleting what the previous build produced. Most of these files come again, so their
// deletion is put off: they are overwritten, or not even touched when nothing in them has changed.
// Whichever way the run ends, the folder looks as if they had been deleted at once. With -check, nothing is reserved,
// written or deleted here, and all is said to have gone well.
#pragma once

#include <string>

#include "base/files.h"

// An Include that climbs ("../lib/util.kvl"), or a link in its path, leads out of the output folder.
bool LiesOutside(const std::string& path);
// Whether a file that is there may be overwritten and deleted: outside the output folder, one that a run of ours wrote.
bool IsOurs(const std::string& path);

// Leaves a file of the previous build where it is until the run ends. False when it is not certain that it
// can be deleted then and that overwriting it is as good: it has to be deleted at once. `facts` are those of the path.
bool PutOffDeletion(const std::string& path, const FileFacts& facts);
bool PutOffDeletion(const std::string& path);
// Whether the file is one of those, however its path is spelt.
bool IsPutOff(const std::string& path);
bool IsPutOff(const std::string& path, const FileFacts& facts);
// Takes such a file over from the previous build, so that it stays; false when it is none.
bool TakeOver(const std::string& path);
// Deletes such a file now, for those who must not see it.
void DeletePutOff(const std::string& path);

// False when an output cannot be created. What the previous build left in its place goes when the run ends,
// unless the output is written.
bool ReserveOutput(const std::string& path);
// Writes an output. Different ones can be written at the same time. False when that fails.
bool WriteOutput(const std::string& path, const std::string& text);
bool WriteOutput(const std::string& path, const LongText& text);
// Sees to it that a reserved output is not there. A file of the user's may be.
void DropOutput(const std::string& path);

// Deletes what was put off and nobody took over. The end of every run, also of one that a mistake ends,
void SettleOutputs();
// unless what the build before has left is to stay for the next one.
void LeaveOutputs();
