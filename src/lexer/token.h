#pragma once

#include "base/token.h"
