#include "driver/settings.h"

Settings settings;
