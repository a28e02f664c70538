#include "core/Folders.h"

#include "support/ChildRun.h"
#include "support/TempDir.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace fs = std::filesystem;
using lumivale::FoundFile;
using lumivale::test::TempDir;
namespace Folders = lumivale::Folders;

namespace {

// Makes each item under root: "name" a file of 3 bytes, "name=N" one of N bytes (sparse, so
// large sizes cost nothing), "name/" a folder, "name->target" a symbolic link.
void make(const std::string& root, const std::vector<std::string>& items) {
    for (const std::string& item : items) {
        const size_t arrow = item.find("->"), equals = item.find('=');
        const fs::path path = root + "/" + item.substr(0, std::min(arrow, equals));
        fs::create_directories(item.ends_with('/') ? path : path.parent_path());
        if (arrow != std::string::npos)
            fs::create_symlink(root + "/" + item.substr(arrow + 2), path);
        else if (!item.ends_with('/'))
            fs::resize_file(lumivale::test::writeFile(path.string(), ""),
                            equals == std::string::npos ? 3 : std::stoll(item.substr(equals + 1)));
    }
}

// The paths listed under root, relative to it.
std::vector<std::string> listed(const std::string& root, bool screenshotsOnly = false,
                                int depth = 2, const std::set<std::string>& skipping = {},
                                int64_t limit = 100000) {
    std::vector<std::string> paths;
    for (const FoundFile& f : Folders::list(root, screenshotsOnly, depth, skipping, limit))
        paths.push_back(f.path.substr(root.size() + 1));
    return paths;
}

TEST(FoldersTest, ListsTheRightFilesInNameOrder) {
    const std::vector<std::string> nested = {"top.png", "sub/one.png", "sub/deeper/two.png",
                                             "sub/deeper/deepest/three.png"};
    const struct {
        std::vector<std::string> tree, expected;
        int depth = 2;
        bool screenshotsOnly = false;
        std::vector<std::string> skipping = {};
        int64_t limit = 100000;
    } cases[] = {
        {nested, {"top.png"}, 0},
        {nested, {"sub/deeper/two.png", "sub/one.png", "top.png"}},
        // The limit takes the first by name, counting sub-folders.
        {{"c/3.png", "b.png", "a/2.png", "a/1.png"}, {"a/1.png", "a/2.png"}, 2, false, {}, 2},
        // A skipped folder is not entered; one of the same name deeper is.
        {{"a/skip/b.png", "skip/c.png", "z.png"}, {"a/skip/b.png", "z.png"}, 2, false, {"skip"}},
        // Hidden names and those in the .hidden file are left out.
        {{".Screenshot 1.png", ".dots/inside.png", "secret.png", "private/x.png", "shown.png",
          "windows.png"},
         {"shown.png"}},
        // Symbolic links to files and folders are never followed.
        {{"real/a.png", "link.png->real/a.png", "linked folder->real"}, {"real/a.png"}},
        // Empty and too large files are left out; one byte less is listed.
        {{"empty.png=0", "huge.png=80000000", "big.png=79999999"}, {"big.png"}},
        // Extensions in any case; other files, and folders, are left out. Names in byte order.
        {{"a.PNG", "B.JpEg", "c.txt", "_.TIF", "g", "h.png.txt", "é.HEIF", "o.png/", "p.svg",
          "10.webp", "9.gif"},
         {"10.webp", "9.gif", "B.JpEg", "_.TIF", "a.PNG", "é.HEIF"},
         0},
        // Screenshots only: by the start of the folded name.
        {{"SCREENSHOT.png", "IMG_0001.png", "My screenshot.png", "sub/Skärmavbild 1.png"},
         {"SCREENSHOT.png", "sub/Skärmavbild 1.png"},
         2,
         true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tree.back());
        TempDir dir;
        make(dir.str(), c.tree);
        // Only the hidden-names case has files that the .hidden file names.
        lumivale::test::writeFile(dir.file(".hidden"), "secret.png\nprivate\r\nwindows.png\n");
        std::set<std::string> skipping;
        for (const std::string& s : c.skipping)
            skipping.insert(dir.file(s));
        EXPECT_EQ(listed(dir.str(), c.screenshotsOnly, c.depth, skipping, c.limit), c.expected);
    }
}

// A name that is not UTF-8 cannot be kept as it is: such a picture or folder is left out and
// named once, never confused with another; a non-picture of such a name is not even named.
TEST(FoldersTest, LeavesOutAndNamesWhatIsNotUtf8) {
    TempDir dir;
    make(dir.str(), {"caf\xE9.png", "caf\xE8.png", "caf\xC3\xA9.png", "\xFF/inside.png", "\xFE.txt",
                     "ok/\xC0\xAF.png"});
    std::vector<std::string> unnamed;
    std::vector<std::string> paths;
    for (const FoundFile& f : Folders::list(dir.str(), false, 2, {}, 100, &unnamed))
        paths.push_back(f.path.substr(dir.str().size() + 1));
    EXPECT_EQ(paths, std::vector<std::string>{"caf\xC3\xA9.png"});
    for (std::string& path : unnamed)
        path = path.substr(dir.str().size() + 1);
    EXPECT_EQ(unnamed,
              (std::vector<std::string>{"caf\xE8.png", "caf\xE9.png", "ok/\xC0\xAF.png", "\xFF"}));
}

TEST(FoldersTest, ReportsPathSizeAndDates) {
    TempDir dir;
    const auto start = lumivale::now() - std::chrono::seconds(1);
    make(dir.str(), {"shot.png=12345"});
    const lumivale::Date modified = lumivale::dateFromSeconds(978307200.5);
    fs::last_write_time(dir.file("shot.png"), std::chrono::file_clock::from_sys(modified));

    const auto found = Folders::list(dir.str() + "/", false, 0, {}, 10);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].path, dir.file("shot.png"));
    EXPECT_EQ(found[0].size, 12345);
    EXPECT_EQ(found[0].modified, modified);
    // Born just now where the file system keeps birth times; else the modification date.
    struct statx st;
    ASSERT_EQ(statx(AT_FDCWD, dir.file("shot.png").c_str(), 0, STATX_BTIME, &st), 0);
    EXPECT_EQ(found[0].created >= start, (st.stx_mask & STATX_BTIME) != 0);
}

TEST(FoldersTest, TheScreenCaptureAttributeMarksScreenshots) {
    TempDir dir;
    make(dir.str(), {"IMG_0001.png", "IMG_0002.png", "Screenshot 1.png"});
    const auto mark = [&](const char* name, std::string_view value) {
        return setxattr(dir.file(name).c_str(), Folders::screenCaptureAttribute, value.data(),
                        value.size(), 0) == 0;
    };
    if (!mark("IMG_0001.png", "\x01"))
        GTEST_SKIP() << "this file system keeps no user attributes: " << std::strerror(errno);
    ASSERT_TRUE(mark("IMG_0002.png", "")); // an empty value does not count
    EXPECT_EQ(listed(dir.str(), true, 0),
              (std::vector<std::string>{"IMG_0001.png", "Screenshot 1.png"}));
}

TEST(FoldersTest, CanReadTellsMissingFromUnreadable) {
    if (!lumivale::test::runsUnprivileged()) return;
    TempDir dir;
    make(dir.str(),
         {"open/a.png", "locked/a.png", "file.png", "partly/a.png", "partly/locked/b.png"});
    for (const char* locked : {"locked", "partly/locked"})
        fs::permissions(dir.file(locked), fs::perms::none);
    const struct {
        std::string path;
        bool readable;
        size_t files; // what a listing at depth 2 finds
    } cases[] = {
        {"open", true, 1},    {"missing", true, 0}, {"file.png", false, 0},
        {"locked", false, 0}, {"partly", true, 1}, // the unreadable sub-folder gives nothing, the
                                                   // rest stands
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(Folders::canRead(dir.file(c.path)), c.readable);
        EXPECT_EQ(Folders::list(dir.file(c.path), false, 2, {}, 100).size(), c.files);
    }
}

} // namespace
