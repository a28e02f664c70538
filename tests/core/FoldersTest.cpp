#include "core/Folders.h"

#include "support/TempDir.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <grp.h>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace fs = std::filesystem;
using lumivale::FoundFile;
using lumivale::test::TempDir;
namespace Folders = lumivale::Folders;

namespace {

// One thing to put into a test tree: a file of `size` bytes (made sparse, so large sizes cost
// nothing), a folder when the path ends in "/", or a symbolic link when `linkTo` is set.
struct Item {
    std::string path;
    int64_t size = 3;
    std::string linkTo;
};

void make(const std::string& root, const std::vector<Item>& items) {
    for (const Item& item : items) {
        const fs::path path = fs::path(root) / item.path;
        if (item.path.ends_with('/')) {
            fs::create_directories(path);
        } else if (!item.linkTo.empty()) {
            fs::create_directories(path.parent_path());
            fs::create_symlink(fs::path(root) / item.linkTo, path);
        } else {
            fs::create_directories(path.parent_path());
            const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            ASSERT_GE(fd, 0) << path;
            ASSERT_EQ(ftruncate(fd, item.size), 0) << path;
            close(fd);
        }
    }
}

// The found paths relative to root, in the order given.
std::vector<std::string> relative(const std::vector<FoundFile>& found, const std::string& root) {
    std::vector<std::string> paths;
    for (const FoundFile& f : found)
        paths.push_back(f.path.substr(root.size() + 1));
    return paths;
}

struct ListCase {
    std::string name;
    std::vector<Item> tree;
    std::vector<std::string> expected;
    int depth = 2;
    int64_t limit = 100000;
    bool screenshotsOnly = false;
    std::vector<std::string> skipping = {};
};

std::vector<Item> fiftyPicturesShuffled() {
    std::vector<Item> items;
    for (int i = 0; i < 50; ++i)
        items.push_back({"pic " + std::to_string(100 + i) + ".png"});
    std::shuffle(items.begin(), items.end(), std::mt19937(7));
    return items;
}

std::vector<std::string> picturesNumbered(int from, int count) {
    std::vector<std::string> names;
    for (int i = from; i < from + count; ++i)
        names.push_back("pic " + std::to_string(i) + ".png");
    return names;
}

const std::vector<Item> nested = {
    {"top.png"}, {"sub/one.png"}, {"sub/deeper/two.png"}, {"sub/deeper/deepest/three.png"}};

TEST(FoldersTest, ListsTheRightFilesInNameOrder) {
    const std::vector<ListCase> cases = {
        {"depth 0 stays in the folder", nested, {"top.png"}, 0},
        {"depth 1 enters one level", nested, {"sub/one.png", "top.png"}, 1},
        {"depth 2 enters two levels", nested, {"sub/deeper/two.png", "sub/one.png", "top.png"}, 2},
        {"names in byte order, not by locale",
         {{"a.png"}, {"B.png"}, {"_.png"}, {"é.png"}, {"Z.png"}, {"10.png"}, {"9.png"}},
         {"10.png", "9.png", "B.png", "Z.png", "_.png", "a.png", "é.png"}},
        {"limit 10 of 50 gives the first 10 by name", fiftyPicturesShuffled(),
         picturesNumbered(100, 10), 0, 10},
        {"the limit counts files of sub-folders",
         {{"a/1.png"}, {"a/2.png"}, {"b.png"}, {"c/3.png"}},
         {"a/1.png", "a/2.png"},
         2,
         2},
        {"a limit of zero gives nothing", {{"a.png"}}, {}, 2, 0},
        {"a skipped folder is not entered, a folder of the same name deeper is",
         {{"keep/a.png"}, {"keep/skip/b.png"}, {"skip/c.png"}, {"z.png"}},
         {"keep/a.png", "keep/skip/b.png", "z.png"},
         2,
         100000,
         false,
         {"skip"}},
        {"skipping a nested folder",
         {{"keep/a.png"}, {"keep/inner/b.png"}, {"keep/inner2/c.png"}},
         {"keep/a.png", "keep/inner2/c.png"},
         2,
         100000,
         false,
         {"keep/inner"}},
        {"skipping the folder itself gives nothing", {{"a.png"}}, {}, 2, 100000, false, {""}},
        {"hidden names and the .hidden list are left out",
         {{".Screenshot 1.png"},
          {".dots/inside.png"},
          {"secret.png"},
          {"private/x.png"},
          {"shown.png"},
          {"windows.png"}},
         {"shown.png"}},
        {"symbolic links are never followed",
         {{"real/a.png"}, {"link.png", 3, "real/a.png"}, {"linked folder", 3, "real"}},
         {"real/a.png"}},
        {"empty and too large files are left out, one byte less is listed",
         {{"empty.png", 0}, {"huge.png", 80'000'000}, {"big.png", 79'999'999}, {"small.png", 1}},
         {"big.png", "small.png"}},
        {"extensions are compared in lower case; other files are left out",
         {{"a.PNG"},
          {"b.JpEg"},
          {"c.txt"},
          {"d.pdf"},
          {"e.heic"},
          {"f.TIF"},
          {"g"},
          {"h.png.txt"},
          {"i.gif"},
          {"j.bmp"},
          {"k.webp"},
          {"l.HEIF"},
          {"m.tiff"},
          {"n.jpg"},
          {"png"},
          {"o.png/"},
          {"p.svg"}},
         {"a.PNG", "b.JpEg", "e.heic", "f.TIF", "i.gif", "j.bmp", "k.webp", "l.HEIF", "m.tiff",
          "n.jpg"},
         0},
        {"screenshots only: by the start of the folded name",
         {{"Screenshot 2024-01-02 at 10.11.12.png"},
          {"SCREENSHOT.png"},
          {"Bildschirmfoto 2024-01-02 um 10.11.12.png"},
          {"Skärmavbild 2024-01-02 kl. 10.11.12.png"},
          {"IMG_0001.png"},
          {"My screenshot.png"},
          {"2024-01-02_10-11.png"},
          {"sub/Schermafbeelding 1.png"}},
         {"Bildschirmfoto 2024-01-02 um 10.11.12.png", "SCREENSHOT.png",
          "Screenshot 2024-01-02 at 10.11.12.png", "Skärmavbild 2024-01-02 kl. 10.11.12.png",
          "sub/Schermafbeelding 1.png"},
         2,
         100000,
         true},
    };
    for (const ListCase& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        make(dir.str(), c.tree);
        if (c.name.starts_with("hidden"))
            lumivale::test::writeFile(dir.file(".hidden"), "secret.png\nprivate\r\nwindows.png\n");
        std::set<std::string> skipping;
        for (const std::string& s : c.skipping)
            skipping.insert(s.empty() ? dir.str() : dir.file(s));
        const auto found = Folders::list(dir.str(), c.screenshotsOnly, c.depth, skipping, c.limit);
        EXPECT_EQ(relative(found, dir.str()), c.expected);
    }
}

TEST(FoldersTest, ReportsPathSizeAndDates) {
    TempDir dir;
    const auto before = lumivale::now() - std::chrono::seconds(1);
    make(dir.str(), {{"shot.png", 12345}});
    const auto after = lumivale::now() + std::chrono::seconds(1);
    // A modification date long before the file was made, to tell the two dates apart.
    const timespec times[2] = {{978307200, 250'000'000}, {978307200, 500'000'000}};
    ASSERT_EQ(utimensat(AT_FDCWD, dir.file("shot.png").c_str(), times, 0), 0);

    // Listing through a trailing slash still gives clean paths.
    const auto found = Folders::list(dir.str() + "/", false, 0, {}, 10);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].path, dir.file("shot.png"));
    EXPECT_EQ(found[0].size, 12345);
    EXPECT_EQ(found[0].modified, lumivale::dateFromSeconds(978307200.5));

    struct statx st;
    ASSERT_EQ(statx(AT_FDCWD, dir.file("shot.png").c_str(), 0, STATX_BTIME, &st), 0);
    if (st.stx_mask & STATX_BTIME) {
        EXPECT_GE(found[0].created, before);
        EXPECT_LE(found[0].created, after);
    } else {
        EXPECT_EQ(found[0].created, found[0].modified);
    }
}

TEST(FoldersTest, FoundFilesAreEqualOnlyWhenAllFourFieldsAre) {
    const FoundFile base{"/a/b.png", 10, lumivale::dateFromSeconds(5),
                         lumivale::dateFromSeconds(6)};
    std::vector<FoundFile> changed(4, base);
    changed[0].path = "/a/c.png";
    changed[1].size = 11;
    changed[2].created = lumivale::dateFromSeconds(5.000001);
    changed[3].modified = lumivale::dateFromSeconds(7);
    EXPECT_EQ(base, FoundFile(base));
    EXPECT_EQ(std::hash<FoundFile>{}(base), std::hash<FoundFile>{}(FoundFile(base)));
    for (const FoundFile& other : changed) {
        EXPECT_NE(base, other);
        EXPECT_NE(std::hash<FoundFile>{}(base), std::hash<FoundFile>{}(other));
    }
}

// Sets the screen-capture attribute, or says why it cannot be set here.
std::optional<std::string> markAsCapture(const std::string& path, std::string_view value) {
    if (setxattr(path.c_str(), Folders::screenCaptureAttribute, value.data(), value.size(), 0) == 0)
        return std::nullopt;
    return std::string("this file system keeps no user attributes: ") + std::strerror(errno);
}

TEST(FoldersTest, TheScreenCaptureAttributeMarksScreenshots) {
    TempDir dir;
    make(dir.str(), {{"IMG_0001.png"}, {"IMG_0002.png"}, {"IMG_0003.png"}, {"Screenshot 1.png"}});
    if (auto why = markAsCapture(dir.file("IMG_0001.png"), "\x01")) GTEST_SKIP() << *why;
    ASSERT_FALSE(markAsCapture(dir.file("IMG_0002.png"), ""));

    const auto found = Folders::list(dir.str(), true, 0, {}, 100);
    EXPECT_EQ(relative(found, dir.str()),
              (std::vector<std::string>{"IMG_0001.png", "Screenshot 1.png"}));

    const struct {
        std::string path;
        bool expected;
    } cases[] = {
        {dir.file("IMG_0001.png"), true},
        {dir.file("IMG_0002.png"), false}, // an empty value does not count
        {dir.file("IMG_0003.png"), false},
        {dir.file("Screenshot 1.png"), true},
        {dir.file("gone/Screenshot 9.png"), true}, // the name alone decides
        {dir.file("gone/IMG_0009.png"), false},    // an unreadable attribute is absent
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(Folders::isScreenCapture(c.path), c.expected);
    }
}

// Runs `probe` as a user without privileges and gives its exit status: directly when the tests
// are not root, else in a child process that has become "nobody" (uid and gid 65534). Nothing
// when that cannot be arranged. `reachable` must be traversable for that user.
std::optional<int> unprivileged(const std::string& reachable, const std::function<int()>& probe) {
    if (!lumivale::test::runningAsRoot()) return probe();
    // Let the other user pass through the test's own folders down to `reachable` (not list
    // them); folders above the test's temporary root are left as they are.
    const char* root = std::getenv("LUMIVALE_TEST_ROOT");
    for (fs::path p = reachable; p.has_relative_path(); p = p.parent_path()) {
        std::error_code ec;
        fs::permissions(p, fs::perms::others_exec | fs::perms::group_exec, fs::perm_options::add,
                        ec);
        if (!root || p == fs::path(root)) break;
    }
    constexpr int cannot = 255;
    const pid_t child = fork();
    if (child < 0) return std::nullopt;
    if (child == 0) {
        if (setgroups(0, nullptr) != 0 || setgid(65534) != 0 || setuid(65534) != 0 ||
            access(reachable.c_str(), X_OK) != 0)
            _exit(cannot);
        _exit(probe());
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) == cannot)
        return std::nullopt;
    return WEXITSTATUS(status);
}

TEST(FoldersTest, CanReadTellsMissingFromUnreadable) {
    TempDir dir;
    make(dir.str(), {{"open/a.png"},
                     {"locked/inner/a.png"},
                     {"no entry/a.png"},
                     {"no search/a.png"},
                     {"file.png"},
                     {"partly/a.png"},
                     {"partly/locked/b.png"}});
    fs::permissions(dir.file("locked"), fs::perms::none, fs::perm_options::replace);
    fs::permissions(dir.file("no entry"),
                    fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec,
                    fs::perm_options::replace);
    fs::permissions(dir.file("no search"),
                    fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read,
                    fs::perm_options::replace);
    fs::permissions(dir.file("partly/locked"), fs::perms::none, fs::perm_options::replace);

    const struct {
        std::string path;
        bool readable;
        size_t files; // what a listing at depth 2 finds
    } cases[] = {
        {"open", true, 1},
        {"missing", true, 0},        // gone away: yields nothing, but is not unreadable
        {"file.png/below", true, 0}, // nothing can exist there
        {"file.png", false, 0},      // something else stands in the folder's place
        {"locked", false, 0},
        {"locked/inner", false, 0}, // it may well exist: the way in is barred
        {"no entry", false, 0},
        {"no search", true, 0}, // names can be read, but nothing about the files
        {"partly", true, 1},    // the unreadable sub-folder gives nothing, the rest stands
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        const std::string path = dir.file(c.path);
        const auto result = unprivileged(dir.str(), [&] {
            return (Folders::canRead(path) ? 1 : 0) |
                   static_cast<int>(Folders::list(path, false, 2, {}, 100).size() << 1);
        });
        if (!result)
            GTEST_SKIP() << "cannot run as an unprivileged user here, so permissions do not hold";
        EXPECT_EQ((*result & 1) == 1, c.readable);
        EXPECT_EQ(static_cast<size_t>(*result >> 1), c.files);
    }
}

} // namespace
