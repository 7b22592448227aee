#pragma once

#include "base/token_span.h"
