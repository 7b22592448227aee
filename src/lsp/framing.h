// Messages of the protocols that editors speak: a head with the length, and the text.
#pragma once

#include <cstdio>
#include <string>

// Reads the text of a message behind its head. What has no head that makes sense is passed over. False at the end.
bool ReadMessage(std::FILE* from, std::string& text);

void WriteMessage(std::FILE* to, const std::string& text);
