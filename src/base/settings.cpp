#include "base/settings.h"
#include "base/run.h"

Settings settings;
static const PartOfRun partOfRun(settings);

std::string InstallationPath(const std::string& name) {
    return settings.installation.empty() ? name : settings.installation + "/" + name;
}
