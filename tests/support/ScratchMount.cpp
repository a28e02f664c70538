#include "support/ScratchMount.h"

#include "support/TempDir.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace lumivale::test {

ScratchMount::ScratchMount(Where where, const std::string& options) {
    struct stat root = {}, shm = {};
    const bool shmIsAnother = stat(testRoot().c_str(), &root) == 0 && stat("/dev/shm", &shm) == 0 &&
                              root.st_dev != shm.st_dev && access("/dev/shm", W_OK) == 0;
    if (where == Where::anyOther && shmIsAnother) {
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
    if (!mkdtemp(point.data()) || mount("tmpfs", point.c_str(), "tmpfs", 0, options.c_str()) != 0) {
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
    if (mounted_) umount2(path_.c_str(), MNT_DETACH);
    std::error_code ec;
    if (!path_.empty()) fs::remove_all(path_, ec);
}

} // namespace lumivale::test
