// The phases that every translation goes through, whoever asks for it.
#pragma once

// Reads the word lists and the program of `settings` and translates it, up to the finished pieces of all outputs.
// Nothing has been written then, and nothing said: that stands in the journal, and mistakes are kept.
void RunPhases();

// Stops the run of a program without Main.
void CheckMainFunction();
