#include "app/Demo.h"

#include "app/Fixtures.h"
#include "app/FolderTrash.h"
#include "core/VaultKeySource.h"

#include <filesystem>

namespace lumivale::Demo {
namespace {

// The sixteen fixtures and a second, older round of the everyday kinds, so shelves hold a few
// screenshots each, spread over six weeks.
std::vector<Fixture> demoFixtures() {
    using Kind = Fixture::Kind;
    std::vector<Fixture> list = Fixtures::all();
    const std::vector<std::pair<Kind, double>> older = {
        {Kind::receipt, 9.4}, {Kind::chat, 15.1}, {Kind::boardingPass, 22.6}, {Kind::code, 12.8},
        {Kind::shopping, 17.3}, {Kind::map, 28.2}, {Kind::upiPayment, 36.5}, {Kind::groupChat, 30.7},
    };
    for (const auto& [kind, days] : older)
        for (Fixture f : Fixtures::all())
            if (f.kind == kind) {
                f.daysAgo = days;
                list.push_back(f);
                break;
            }
    return list;
}

} // namespace

Paths paths(const std::string& dir) {
    return Paths::at(dir + "/Data", dir + "/Screenshots", dir + "/Archive");
}

Status draw(const std::string& dir, Date now) {
    std::vector<Fixture> missing;
    for (const Fixture& f : demoFixtures()) {
        std::error_code ec;
        if (!std::filesystem::exists(dir + "/Screenshots/" + f.fileName(now), ec))
            missing.push_back(f);
    }
    return Fixtures::write(missing, paths(dir).screenshotFolder, now).status;
}

AppModel::Services services(const std::string& dir) {
    AppModel::Services services;
    services.trasher = folderTrash(dir + "/Trash");
    services.keySource = std::make_shared<MemoryKey>();
    return services;
}

} // namespace lumivale::Demo
