#include "platform/Trash.h"

#include "core/FileMove.h"
#include "core/FileOps.h"
#include "core/PathName.h"
#include "core/TidyPlan.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_set>

namespace lumivale::Trash {
namespace {

// One Trash folder, and the folder its "Path=" lines are relative to (empty: absolute paths).
struct TrashFolder {
    std::string root;
    std::string topdir;
};

Status failure(int err) {
    return Status::failure(describeErrno(err), err);
}

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    const passwd* user = getpwuid(getuid());
    return user && user->pw_dir ? user->pw_dir : "/";
}

// A folder only its owner may enter; made if missing. Fails when something other than the
// user's own real folder is there, since a Trash must not be a link planted by someone else.
Status privateFolder(const std::string& path) {
    if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) return failure(errno);
    struct stat st {};
    if (lstat(path.c_str(), &st) != 0) return failure(errno);
    if (!S_ISDIR(st.st_mode) || st.st_uid != getuid())
        return Status::failure("The Trash folder " + path + " isn't one this user owns.", EPERM);
    return Status::ok();
}

Status prepare(const TrashFolder& trash) {
    for (const std::string& folder : {trash.root, trash.root + "/files", trash.root + "/info"})
        if (Status made = privateFolder(folder); !made) return made;
    return Status::ok();
}

// The highest folder above `file` that is still on the file's file system.
std::string mountTop(const std::string& file, dev_t device) {
    std::string top(parentPath(file));
    while (top != "/") {
        const std::string up(parentPath(top));
        struct stat st {};
        if (stat(up.c_str(), &st) != 0 || st.st_dev != device) break;
        top = up;
    }
    return top;
}

// The Trash at the top of another mount: the shared ".Trash/$uid" when the administrator made a
// sticky, real ".Trash" folder, else the user's own ".Trash-$uid".
std::optional<TrashFolder> topdirTrash(const std::string& topdir) {
    const std::string uid = std::to_string(getuid());
    const std::string shared = joinPath(topdir, ".Trash");
    struct stat st {};
    if (lstat(shared.c_str(), &st) == 0 && S_ISDIR(st.st_mode) && (st.st_mode & S_ISVTX)) {
        TrashFolder trash{joinPath(shared, uid), topdir};
        if (prepare(trash)) return trash;
    }
    TrashFolder trash{joinPath(topdir, ".Trash-" + uid), topdir};
    if (prepare(trash)) return trash;
    return std::nullopt;
}

// The Trash that serves a file on `device`: the home Trash on its own file system, the mount's
// own Trash elsewhere, and the home Trash again (by copying) when the mount has none.
std::optional<TrashFolder> trashFor(const std::string& file, dev_t device, Status& error) {
    TrashFolder home{homeTrash(), {}};
    if (Status made = makeFolders(std::string(parentPath(home.root))); !made) {
        error = made;
        return std::nullopt;
    }
    if (Status made = prepare(home); !made) {
        error = made;
        return std::nullopt;
    }
    struct stat st {};
    if (stat(home.root.c_str(), &st) == 0 && st.st_dev != device)
        if (auto other = topdirTrash(mountTop(file, device))) return other;
    return home;
}

// The file's absolute path with its folder resolved, so the path written down is the one the
// file will be restored to whatever links led to it.
std::optional<std::string> canonical(const std::string& path, Status& error) {
    std::string trimmed = path;
    while (trimmed.size() > 1 && trimmed.back() == '/')
        trimmed.pop_back();
    const std::string_view name = lastComponent(trimmed);
    if (name.empty() || name == "." || name == "..") {
        error = Status::failure("This can't be put in the Trash: " + path, EINVAL);
        return std::nullopt;
    }
    std::string folder(parentPath(trimmed));
    if (folder.empty()) folder = ".";
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(folder.c_str(), nullptr),
                                                               &std::free);
    if (!resolved) {
        error = failure(errno);
        return std::nullopt;
    }
    return joinPath(resolved.get(), name);
}

std::string deletionDate(Date when) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(
        std::chrono::time_point_cast<std::chrono::system_clock::duration>(when));
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
    return text;
}

std::string infoPathOf(const TrashFolder& trash, std::string_view name) {
    return joinPath(trash.root + "/info", std::string(name) + ".trashinfo");
}

} // namespace

std::string homeTrash() {
    const char* data = std::getenv("XDG_DATA_HOME");
    const std::string base = data && data[0] == '/' ? data : homeFolder() + "/.local/share";
    return joinPath(base, "Trash");
}

std::string encodePath(std::string_view path) {
    static constexpr char hex[] = "0123456789ABCDEF";
    std::string out;
    for (const unsigned char c : path) {
        const bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                           (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_' || c == '~' ||
                           c == '/';
        if (plain) {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 0x0F];
        }
    }
    return out;
}

TrashOutcome put(const std::string& path, Date when) {
    Status error;
    const auto file = canonical(path, error);
    if (!file) return TrashOutcome::failure(error.message());
    struct stat st {};
    if (lstat(file->c_str(), &st) != 0) return TrashOutcome::failure(describeErrno(errno));
    const auto trash = trashFor(*file, st.st_dev, error);
    if (!trash) return TrashOutcome::failure("The Trash isn't available: " + error.message());

    const std::string original =
        trash->topdir.empty() ? *file
                              : file->substr(trash->topdir == "/" ? 1 : trash->topdir.size() + 1);
    const std::string info = "[Trash Info]\nPath=" + encodePath(original) +
                             "\nDeletionDate=" + deletionDate(when) + "\n";
    const auto taken = [&](const std::string& place) {
        return isTaken(place) || isTaken(infoPathOf(*trash, lastComponent(place)));
    };

    // Another program may take the same name at the same moment: the info file is claimed with
    // O_EXCL, and the move never replaces, so a lost race just tries the next name.
    std::unordered_set<std::string> claimed;
    const std::string wanted = joinPath(trash->root + "/files", lastComponent(*file));
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string place = Tidy::unique(wanted, std::string(), claimed, taken);
        const std::string infoPath = infoPathOf(*trash, lastComponent(place));
        claimed.insert(place);
        if (Status written = writeNew(infoPath, info); !written) {
            if (written.code() == EEXIST) continue;
            return TrashOutcome::failure(written.message());
        }
        const Status moved = moveNoReplace(*file, place);
        if (moved) return TrashOutcome::landedAt(place);
        unlink(infoPath.c_str());
        if (moved.code() != EEXIST) return TrashOutcome::failure(moved.message());
    }
    return TrashOutcome::failure(describeErrno(EEXIST));
}

TrashOutcome systemTrash(const std::string& path) {
    return put(path, now());
}

} // namespace lumivale::Trash
