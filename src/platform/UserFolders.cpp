#include "platform/UserFolders.h"

#include <cstdlib>

namespace lumivale::UserFolders {

std::string configHome(const std::string& home) {
    return configHomeFor(home, std::getenv("XDG_CONFIG_HOME"));
}

UserDirs dirs(const std::string& home) {
    return UserDirs::load(configHome(home), home);
}

} // namespace lumivale::UserFolders
