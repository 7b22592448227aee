#include "base/debugger.h"

#include "base/run.h"
#include "base/settings.h"

bool forDebugger = false;
static const PartOfRun partOfRun(forDebugger);

bool ChecksValues() { return settings.safeMode && (!settings.debugMode || forDebugger); }
