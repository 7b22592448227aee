// The build manifest: the list of files that a build produced, and the cleaning before the next one.
#pragma once

#include <string>

// Writes symbols.generatedFiles into the output folder; an empty list leaves an earlier manifest alone.
void WriteBuildManifest(const std::string& outputPath);

// Deletes what the previous manifest of the main source lists, then the manifest itself. A line may say
// anything: folders, links, sources and files outside this build's folders are never deleted.
// The program that a user may have built beside the source, and its file of linker flags, go as well unless only
// outputs are to be cleaned.
enum class Cleaned : unsigned char { Outputs, All };
void CleanPreviousBuild(const std::string& outputPath, Cleaned what = Cleaned::All);
