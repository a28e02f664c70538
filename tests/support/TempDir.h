#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace lumivale::test {

// A fresh folder under the test's private temporary root, removed with everything in it
// when the object goes.
class TempDir {
  public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    std::string str() const { return path_.string(); }
    // path() / name, as a string.
    std::string file(const std::string& name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

// Writes bytes to a file, creating its folders; returns the path.
std::string writeFile(const std::string& path, const std::string& bytes);
// The whole file, or an empty string when it cannot be read.
std::string readFile(const std::string& path);
// The names of a folder's entries; none when it cannot be listed.
std::set<std::string> namesIn(const std::string& folder);
// The test program's private temporary root, or the system's temporary folder outside one.
std::string testRoot();
// Whether the tests run as root, for whom permissions do not hold.
bool runningAsRoot();

} // namespace lumivale::test
