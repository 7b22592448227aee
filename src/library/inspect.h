// What Inspect tells beside the result, from what has been noted during the run.
#pragma once

#include "library/korvel.h"

void Describe(korvel::Inspection& inspection);
