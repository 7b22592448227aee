#pragma once

#include "base/keywords.h"
