#include "support/ScratchMount.h"

#include "support/TempDir.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace lumivale::test {
namespace {

std::string testRoot() {
    const char* root = std::getenv("LUMIVALE_TEST_ROOT");
    return root ? root : fs::temp_directory_path().string();
}

bool sameFileSystem(const std::string& a, const std::string& b) {
    struct stat sa {
    }, sb{};
    return stat(a.c_str(), &sa) == 0 && stat(b.c_str(), &sb) == 0 && sa.st_dev == sb.st_dev;
}

} // namespace

ScratchMount::ScratchMount(Where where, const std::string& options) {
    if (where == Where::anyOther && access("/dev/shm", W_OK) == 0 &&
        !sameFileSystem(testRoot(), "/dev/shm")) {
        std::string folder = "/dev/shm/lumivale-test-XXXXXX";
        if (mkdtemp(folder.data())) {
            path_ = folder;
            return;
        }
    }
    if (!runningAsRoot()) {
        why_ = "no second file system: /dev/shm is not one, and mounting a tmpfs needs root";
        return;
    }
    std::string point = testRoot() + "/mount-XXXXXX";
    if (!mkdtemp(point.data())) {
        why_ = std::string("cannot make a mount point: ") + std::strerror(errno);
        return;
    }
    if (mount("tmpfs", point.c_str(), "tmpfs", 0, options.c_str()) != 0) {
        why_ = std::string("cannot mount a tmpfs: ") + std::strerror(errno);
        rmdir(point.c_str());
        return;
    }
    mounted_ = true;
    path_ = point;
}

bool ScratchMount::makeReadOnly() {
    return mounted_ && mount(nullptr, path_.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

ScratchMount::~ScratchMount() {
    if (path_.empty()) return;
    std::error_code ec;
    if (mounted_) {
        umount2(path_.c_str(), MNT_DETACH);
        rmdir(path_.c_str());
    } else {
        fs::remove_all(path_, ec);
    }
}

} // namespace lumivale::test
