#include "symbols/fixes.h"

void AddFix(korvel::Diagnostic& mistake, int line, std::size_t from, std::size_t to,
            const std::string& text) {
    korvel::Fix& fix = mistake.fixes.emplace_back();
    fix.file = mistake.file;
    fix.line = line;
    fix.firstColumn = static_cast<int>(from) + 1;
    fix.lastColumn = static_cast<int>(to);
    fix.replacement = text;
}

void AddFix(korvel::Diagnostic& mistake, std::size_t from, std::size_t to, const std::string& text) {
    AddFix(mistake, mistake.line, from, to, text);
}
