#pragma once

#include <nlohmann/json.hpp>

using Json = nlohmann::json;
