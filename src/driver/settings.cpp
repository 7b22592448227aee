#include "driver/settings.h"
#include "driver/run.h"

Settings settings;
static const PartOfRun partOfRun(settings);
