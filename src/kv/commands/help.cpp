// kv help and kv version.
#include <cstdio>

#include "kv/commands/commands.h"

int HelpCommand(const Options& options) {
    std::fputs(HelpText(options.names.empty() ? "" : options.names[0]).c_str(), stdout);
    return 0;
}

int VersionCommand(const Options&) {
    std::printf("%s\n", versionText);
    return 0;
}
