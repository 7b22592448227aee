// What a file came to, packed: what the second pass has put into its outputs, warned of and taken from the program.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/report.h"
#include "prelude/output.h"
#include "symbols/own_names.h"

// Of a file whose routines stand apart. The slips are located already.
std::string PackFile(const FileOutput& out, const AskedWords& asked, const std::vector<Slip>& slips);

// Whether the words that decided about names decide the same today.
bool NamesStayOwn(std::string_view packed);

// Puts all of that back, but for the routines, whose texts stay in their units: into the opened outputs of the file, which
// has its lists of objects already, and among the slips. `include` translates what the file includes, where it does so.
void UnpackFile(std::string_view packed, FileOutput& out,
                const std::function<void(const std::string&)>& include);
