#include "kv/translation.h"

#include <cstdlib>
#include <sstream>
#include <vector>

namespace {

const char version[] = "kv-translation 4\n";
const char endMark[] = "end";

// A text of the result is a line with its name and size, the text, and a line end.
void Put(std::string& packed, const std::string& name, const std::string& text) {
    packed += name + " " + std::to_string(text.size()) + "\n" + text + "\n";
}

bool Take(std::istream& packed, std::string& name, std::string& text) {
    std::size_t size = 0;
    if (!(packed >> name >> size) || packed.get() != '\n') return false;
    if (packed.rdbuf()->in_avail() < 0 || size > static_cast<std::size_t>(packed.rdbuf()->in_avail()))
        return false;
    text.assign(size, '\0');
    return packed.read(&text[0], static_cast<std::streamsize>(size)) && packed.get() == '\n';
}

struct ListRow {
    const char* name;
    std::vector<std::string> korvel::Result::*list;
};
const ListRow listRows[] = {
    {"source", &korvel::Result::sources},    {"declaration", &korvel::Result::declarations},
    {"missing", &korvel::Result::missing},   {"flag", &korvel::Result::linkerFlags},
    {"library", &korvel::Result::libraries},
};

// A record begins with its kind; what is told of it follows. Fixes and related places belong to the diagnostic before.
const char* const severityNames[] = {"error", "warning", "note"};
const char relatedName[] = "related";
const char fixName[] = "fix";
const char mainName[] = "main";
const char cppName[] = "c++";

void PutRange(std::string& packed, const korvel::Range& range) {
    Put(packed, "file", range.file);
    Put(packed, "line", std::to_string(range.line));
    Put(packed, "first", std::to_string(range.firstColumn));
    Put(packed, "last", std::to_string(range.lastColumn));
}

void PutDiagnostic(std::string& packed, const korvel::Diagnostic& diagnostic) {
    Put(packed, severityNames[static_cast<int>(diagnostic.severity)], diagnostic.message);
    PutRange(packed, diagnostic);
    Put(packed, "hint", diagnostic.hint);
    Put(packed, "name", diagnostic.name);
    for (const korvel::Related& related : diagnostic.related) {
        Put(packed, relatedName, related.message);
        PutRange(packed, related);
    }
    for (const korvel::Fix& fix : diagnostic.fixes) {
        Put(packed, fixName, fix.replacement);
        PutRange(packed, fix);
    }
}

int Number(const std::string& text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));  // 0 when it is damaged
}

// What comes out of the records, and the one that has begun last.
struct Reader {
    korvel::Result& result;
    korvel::Range* range = nullptr;

    bool TakeBegin(const std::string& name, const std::string& text) {
        for (const char* const& word : severityNames) {
            if (name != word) continue;
            korvel::Diagnostic& diagnostic = result.diagnostics.emplace_back();
            diagnostic.severity = static_cast<korvel::Severity>(&word - severityNames);
            diagnostic.message = text;
            range = &diagnostic;
        }
        if (result.diagnostics.empty()) return false;
        korvel::Diagnostic& diagnostic = result.diagnostics.back();
        if (name == relatedName) {
            diagnostic.related.emplace_back().message = text;
            range = &diagnostic.related.back();
        } else if (name == fixName) {
            diagnostic.fixes.emplace_back().replacement = text;
            range = &diagnostic.fixes.back();
        }
        return true;
    }

    void Take(const std::string& name, const std::string& text) {
        if (name == mainName) result.mainFile = text;
        if (name == cppName) result.hasCpp = true;
        for (const ListRow& row : listRows) {
            if (name == row.name) (result.*row.list).push_back(text);
        }
        if (!TakeBegin(name, text)) return;
        if (name == "hint") result.diagnostics.back().hint = text;
        if (name == "name") result.diagnostics.back().name = text;
        if (name == "file") range->file = text;
        if (name == "line") range->line = Number(text);
        if (name == "first") range->firstColumn = Number(text);
        if (name == "last") range->lastColumn = Number(text);
    }
};

}  // namespace

std::string PackTranslation(const korvel::Result& result) {
    std::string packed = version;
    Put(packed, mainName, result.mainFile);
    if (result.hasCpp) Put(packed, cppName, "");
    for (const ListRow& row : listRows) {
        for (const std::string& text : result.*row.list) Put(packed, row.name, text);
    }
    for (const korvel::Diagnostic& diagnostic : result.diagnostics) PutDiagnostic(packed, diagnostic);
    Put(packed, endMark, "");
    return packed;
}

bool UnpackTranslation(const std::string& text, korvel::Result& result) {
    std::istringstream packed(text);
    std::string name, value;
    Reader reader{result};
    if (!std::getline(packed, name) || name + "\n" != version) return false;
    while (Take(packed, name, value)) {
        if (name == endMark) return true;
        reader.Take(name, value);
    }
    return false;
}
