// The characters of names: "_", letters and digits, beyond ASCII too where C++11 takes them in identifiers.
#pragma once

#include <string_view>

// Whether the text is a name in valid UTF-8. Names begin with no digit and no combining mark.
bool IsNameText(std::string_view text);
