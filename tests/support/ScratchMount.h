#pragma once

#include <string>

namespace lumivale::test {

// A fresh folder on another file system than the tests' temporary folders, removed with
// everything in it when the object goes. `anyOther` takes a folder under /dev/shm when that is
// another file system and mounts a tmpfs otherwise; `ownMount` always mounts a tmpfs of its own
// with the given options ("size=64k"). Mounting needs root: when no folder could be had,
// `path()` is empty and `why()` says why, for the test to skip with.
class ScratchMount {
  public:
    enum class Where { anyOther, ownMount };

    explicit ScratchMount(Where where = Where::anyOther, const std::string& options = "size=16m");
    ~ScratchMount();
    ScratchMount(const ScratchMount&) = delete;
    ScratchMount& operator=(const ScratchMount&) = delete;

    bool ok() const { return !path_.empty(); }
    const std::string& why() const { return why_; }
    const std::string& path() const { return path_; }
    // path() + "/" + name.
    std::string file(const std::string& name) const { return path_ + "/" + name; }
    // Makes the mounted file system read-only (own mounts only); false when that failed.
    bool makeReadOnly();

  private:
    std::string path_;
    std::string why_;
    bool mounted_ = false;
};

} // namespace lumivale::test
