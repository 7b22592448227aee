// Loads the reserved words of both languages from the installation's config folder.
#pragma once

// Fills `wordLists` (symbols/identifiers.h) from config/keywords.txt and config/cpp.txt. A missing file
// and too many keywords end the run.
void LoadWordLists();
