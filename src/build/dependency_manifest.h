// The dependency manifest: what the last translation read, and whether a quick build may skip the next.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

using FileTimes = std::map<std::string, std::int64_t>;  // path -> modification time in seconds

struct DependencyRecord {
    std::string main;                   // the main source as given with -s
    std::vector<std::string> includes;  // in order of inclusion, as opened from the working directory
    FileTimes sourceTimes;              // main source and includes
    FileTimes cppTimes;                 // the generated main .cpp
    FileTimes objectTimes;              // carried along as read
};

// The record of this run.
extern DependencyRecord dependencies;

// Before anything in the output folder changes, the record stops vouching for the main .cpp (whose time becomes
// 0), so that a run that is killed, fails or has no room is not mistaken for a finished one.
void DistrustDependencyManifest();

// Gives the record back as it was, after a translation without -quick.
void TrustDependencyManifest();

// Empties the record before a translation.
void ResetDependencies();

// True when the file of the last build could be read whole; what was read before a flaw stays in the record.
bool LoadDependencyManifest(DependencyRecord& record, const std::string& mainSource,
                            const std::string& outputPath);

// Writes the record into the output folder of `settings`; failure is a warning on the error stream.
void SaveDependencyManifest(const DependencyRecord& record);

// True when the header beside the .cpp names the runtime header of the other target.
bool HeaderBuiltForOtherTarget(const std::string& cppPath);

// The quick-build decision with its messages: true when nothing that was read has changed.
bool CanSkipTranslation();

// Brings the list of included files, unless translation was skipped, and the times up to date and saves the record:
// the last step of every quick build, when no output changes any more. It does not vouch for a .cpp of the other mode
// that is still there.
void UpdateDependencyManifest();
