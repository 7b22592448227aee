#include "base/debugger.h"

#include "base/run.h"
#include "base/settings.h"

bool forDebugger = false, checksBesideHooks = false;
static const PartOfRun partOfRun(forDebugger, checksBesideHooks);

bool ChecksValues() { return settings.safeMode && (!settings.debugMode || checksBesideHooks); }
