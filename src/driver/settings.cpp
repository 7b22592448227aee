#include "driver/settings.h"
#include "driver/run.h"

Settings settings;
static const PartOfRun partOfRun(settings);

std::string InstallationPath(const std::string& name) {
    return settings.installation.empty() ? name : settings.installation + "/" + name;
}
