// What a build for the debugger of kv is, beside one of settings.debugMode.
#pragma once

// Whether the program is made for the debugger: with tables in place of texts, and with the checks of settings.safeMode.
// Written where the settings are.
extern bool forDebugger;

// Whether the program checks divisions and array bounds; what -d puts out has no room for that.
bool ChecksValues();
