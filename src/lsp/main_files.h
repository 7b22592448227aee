// Which program a file belongs to: what can be told of texts before the compiler is asked.
#pragma once

#include <string>
#include <vector>

namespace lsp {

bool DeclaresMain(const std::string& text);

// Whether the text names the file at all.
bool MayInclude(const std::string& text, const std::string& path);

// Other sources in the file's folder and those above it, the nearest first, as far as one of the roots; without such a
// one in two folders more.
std::vector<std::string> FilesNear(const std::string& path, const std::vector<std::string>& roots);

// All sources in the folders and those below them; hidden ones are left out, and what is beyond a few thousand.
std::vector<std::string> SourcesBelow(const std::vector<std::string>& folders);

}  // namespace lsp
