#include "symbols/file_places.h"

#include <algorithm>

#include "base/platform.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "symbols/modules.h"

namespace {

constexpr const char* userlibs = "userlibs/";

}  // namespace

std::vector<std::string> PlacesOfUserlib(const std::string& name) {
    return {InstallationPath(userlibs + name), settings.sourceFolder + "/" + userlibs + name};
}

std::vector<std::string> PlacesOfInclude(const std::string& includeName) {
    std::string name = includeName;
    std::replace(name.begin(), name.end(), '\\', '/');
    std::vector<std::string> places = {settings.sourceFolder + "/" + name};
    const std::string module = PlaceOfModule(name);
    if (!module.empty()) places.push_back(module);
    places.push_back(settings.sourceFolder + "/" + userlibs + name);
    places.push_back(InstallationPath(userlibs + name));
    return places;
}

std::string FirstOf(const std::vector<std::string>& places) {
    const auto found = std::find_if(places.begin(), places.end(), [](const std::string& place) {
        return IsFile(place) || IsNoFile(place);
    });
    return found == places.end() ? places.front() : *found;
}

std::string LookedFor(const std::vector<std::string>& places) {
    std::string text = "looked for ";
    for (std::size_t i = 0; i < places.size(); ++i)
        text += (i == 0 ? "" : i + 1 == places.size() ? " and " : ", ") + AbsolutePath(places[i]);
    return text;
}
