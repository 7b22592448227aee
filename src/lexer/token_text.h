#pragma once

#include "base/token_text.h"
