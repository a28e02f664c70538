#include "app/FolderTrash.h"

#include "core/FileMove.h"
#include "core/FileOps.h"
#include "core/PathName.h"
#include "core/TidyPlan.h"

#include <filesystem>

namespace lumivale {

Trasher folderTrash(std::string folder) {
    return [folder = std::move(folder)](const std::string& path) {
        if (Status made = makeFolders(folder); !made)
            return TrashOutcome::failure(made.message());
        const auto exists = [](const std::string& p) {
            std::error_code ec;
            return std::filesystem::exists(std::filesystem::symlink_status(p, ec));
        };
        const std::string target = Tidy::unique(joinPath(folder, lastComponent(path)), "", {}, exists);
        if (Status moved = moveNoReplace(path, target); !moved)
            return TrashOutcome::failure(moved.message());
        return TrashOutcome::landedAt(target);
    };
}

} // namespace lumivale
