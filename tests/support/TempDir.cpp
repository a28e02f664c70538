#include "support/TempDir.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <unistd.h>

namespace fs = std::filesystem;

namespace lumivale::test {

TempDir::TempDir() {
    std::string pattern = testRoot() + "/t-XXXXXX";
    if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make a temporary folder");
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ec;
    // Give back permissions a test may have taken away, so removal succeeds.
    for (auto it = fs::recursive_directory_iterator(
             path_, fs::directory_options::skip_permission_denied, ec);
         !ec && it != fs::recursive_directory_iterator(); it.increment(ec))
        if (it->is_directory(ec) && !it->is_symlink(ec))
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
    fs::remove_all(path_, ec);
}

std::string writeFile(const std::string& path, const std::string& bytes) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return path;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::set<std::string> namesIn(const std::string& folder) {
    std::set<std::string> names;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(folder, ec))
        names.insert(entry.path().filename().string());
    return names;
}

std::string testRoot() {
    const char* root = std::getenv("LUMIVALE_TEST_ROOT");
    return root ? root : fs::temp_directory_path().string();
}

bool runningAsRoot() {
    return geteuid() == 0;
}

} // namespace lumivale::test
