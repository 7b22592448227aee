// What a build for the debugger of kv is, beside one of settings.debugMode.
#pragma once

// Whether the program is made for the debugger: with tables in place of texts, and with the checks of settings.safeMode.
// Written where the settings are.
extern bool forDebugger;

// Whether a build with hooks checks divisions and array bounds as one of -safe does, which kvt's -d leaves out.
extern bool checksBesideHooks;

// Whether the program checks divisions and array bounds.
bool ChecksValues();
