// Messages for machines: an object of JSON in each line.
#include "kv/diagnostics.h"

#if __has_include(<nlohmann/json.hpp>)
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

Json RangeOf(const korvel::Range& range) {
    Json object = {{"file", range.file}, {"line", range.line}};
    if (range.firstColumn > 0) object["columns"] = {range.firstColumn, range.lastColumn};
    return object;
}

}  // namespace

bool HasJson() { return true; }

std::string JsonFormat(const Diagnostic& diagnostic) {
    Json object = RangeOf(diagnostic);
    object["severity"] = WordOf(diagnostic.severity);
    if (!diagnostic.name.empty()) object["name"] = diagnostic.name;
    object["message"] = diagnostic.message;
    if (!diagnostic.hint.empty()) object["hint"] = diagnostic.hint;
    for (const korvel::Related& related : diagnostic.related) {
        Json other = RangeOf(related);
        other["message"] = related.message;
        object["related"].push_back(other);
    }
    for (const korvel::Fix& fix : diagnostic.fixes) {
        Json change = RangeOf(fix);
        change["replacement"] = fix.replacement;
        object["fix"].push_back(change);
    }
    return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

#else

bool HasJson() { return false; }

std::string JsonFormat(const Diagnostic&) { return ""; }

#endif
