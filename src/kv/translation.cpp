#include "kv/translation.h"

#include <cstdlib>
#include <sstream>
#include <vector>

namespace {

const char version[] = "kv-translation 1\n";
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
    {"source", &korvel::Result::sources},
    {"declaration", &korvel::Result::declarations},
    {"flag", &korvel::Result::linkerFlags},
    {"library", &korvel::Result::libraries},
};

struct TextRow {
    const char* name;
    std::string korvel::Diagnostic::*text;
};
const TextRow textRows[] = {{"file", &korvel::Diagnostic::file},
                            {"message", &korvel::Diagnostic::message},
                            {"hint", &korvel::Diagnostic::hint}};

struct NumberRow {
    const char* name;
    int korvel::Diagnostic::*number;
};
const NumberRow numberRows[] = {{"line", &korvel::Diagnostic::line},
                                {"first", &korvel::Diagnostic::firstColumn},
                                {"last", &korvel::Diagnostic::lastColumn}};

const char errorName[] = "error";  // a diagnostic begins; what is told of it follows
const char warningName[] = "warning";
const char mainName[] = "main";

void TakeInto(korvel::Result& result, const std::string& name, const std::string& text) {
    if (name == mainName) result.mainFile = text;
    if (name == errorName || name == warningName)
        result.diagnostics.emplace_back().isWarning = name == warningName;
    for (const ListRow& row : listRows) {
        if (name == row.name) (result.*row.list).push_back(text);
    }
    if (result.diagnostics.empty()) return;
    for (const TextRow& row : textRows) {
        if (name == row.name) result.diagnostics.back().*row.text = text;
    }
    for (const NumberRow& row : numberRows) {
        if (name != row.name) continue;
        const long number = std::strtol(text.c_str(), nullptr, 10);  // 0 when it is damaged
        result.diagnostics.back().*row.number = static_cast<int>(number);
    }
}

}  // namespace

std::string PackTranslation(const korvel::Result& result) {
    std::string packed = version;
    Put(packed, mainName, result.mainFile);
    for (const ListRow& row : listRows) {
        for (const std::string& text : result.*row.list) Put(packed, row.name, text);
    }
    for (const korvel::Diagnostic& diagnostic : result.diagnostics) {
        Put(packed, diagnostic.isWarning ? warningName : errorName, "");
        for (const TextRow& row : textRows) Put(packed, row.name, diagnostic.*row.text);
        for (const NumberRow& row : numberRows) Put(packed, row.name, std::to_string(diagnostic.*row.number));
    }
    Put(packed, endMark, "");
    return packed;
}

bool UnpackTranslation(const std::string& text, korvel::Result& result) {
    std::istringstream packed(text);
    std::string name, value;
    if (!std::getline(packed, name) || name + "\n" != version) return false;
    while (Take(packed, name, value)) {
        if (name == endMark) return true;
        TakeInto(result, name, value);
    }
    return false;
}
