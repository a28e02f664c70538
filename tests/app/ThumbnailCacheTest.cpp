#include "app/ThumbnailCache.h"

#include "app/ThumbnailMaker.h"
#include "support/ChildRun.h"
#include "support/TempDir.h"

#include <QCryptographicHash>
#include <QImageReader>
#include <QPainter>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
namespace cache = ThumbnailCache;
using test::TempDir;

// The cache folder, found as another program would find it.
std::string thumbnailsRoot() {
    return std::string(std::getenv("XDG_CACHE_HOME")) + "/thumbnails";
}

// The standard's file name for a URI written out by hand.
std::string md5Name(const std::string& uri) {
    return QCryptographicHash::hash(QByteArray::fromStdString(uri), QCryptographicHash::Md5)
               .toHex()
               .toStdString() +
           ".png";
}

// A picture with a dark band across its top, so an upright thumbnail is told from a turned one.
void drawPicture(const std::string& path, QSize size, QColor colour = Qt::blue) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QPainter(&image).fillRect(0, 0, size.width(), size.height() / 8, Qt::black);
    ASSERT_TRUE(image.save(QString::fromStdString(path)));
}

// Writes a thumbnail with these keys where another program would put it.
void writeForeign(const std::string& file, const std::map<QString, QString>& keys,
                  QSize size = {256, 192}) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    for (const auto& [key, value] : keys)
        image.setText(key, value);
    fs::create_directories(fs::path(file).parent_path());
    ASSERT_TRUE(image.save(QString::fromStdString(file), "PNG"));
}

struct FileId {
    ino_t inode;
    timespec mtime;
    bool operator==(const FileId& o) const {
        return inode == o.inode && mtime.tv_sec == o.mtime.tv_sec &&
               mtime.tv_nsec == o.mtime.tv_nsec;
    }
};
FileId idOf(const std::string& file) {
    struct stat info {};
    stat(file.c_str(), &info);
    return {info.st_ino, info.st_mtim};
}

mode_t modeOf(const std::string& path) {
    struct stat info {};
    stat(path.c_str(), &info);
    return info.st_mode & 07777;
}

class ThumbnailCacheTest : public ::testing::Test {
  protected:
    void SetUp() override { fs::remove_all(thumbnailsRoot()); }
    TempDir dir;
};

TEST_F(ThumbnailCacheTest, WritesThumbnailsAsTheStandardSays) {
    const std::string picture = dir.file("Screenshot 1 ä.png");
    drawPicture(picture, {800, 600});
    const std::string uri = "file://" + dir.str() + "/Screenshot%201%20%C3%A4.png";
    ASSERT_EQ(cache::uriOf(picture), uri);

    const cache::Thumbnail made = cache::obtain(picture, true);
    EXPECT_EQ(made.origin, cache::Origin::picture);
    EXPECT_EQ(made.image.size(), QSize(256, 192));

    struct stat info {};
    ASSERT_EQ(stat(picture.c_str(), &info), 0);
    for (const auto& [folder, size] :
         {std::pair{"large", QSize(256, 192)}, {"normal", QSize(128, 96)}}) {
        SCOPED_TRACE(folder);
        const std::string file = thumbnailsRoot() + "/" + folder + "/" + md5Name(uri);
        EXPECT_EQ(test::namesIn(thumbnailsRoot() + "/" + folder), std::set{md5Name(uri)});
        EXPECT_TRUE(test::readFile(file).starts_with("\x89PNG\r\n\x1a\n"));
        const QImage written(QString::fromStdString(file));
        EXPECT_EQ(written.size(), size);
        EXPECT_EQ(written.text("Thumb::URI").toStdString(), uri);
        EXPECT_EQ(written.text("Thumb::MTime").toLongLong(), info.st_mtim.tv_sec);
        EXPECT_EQ(written.text("Thumb::Size").toLongLong(), info.st_size);
        EXPECT_EQ(written.text("Thumb::Image::Width"), "800");
        EXPECT_EQ(written.text("Thumb::Image::Height"), "600");
        EXPECT_EQ(written.pixelColor(128 * size.width() / 256, size.height() / 2),
                  QColor(Qt::blue));
        EXPECT_EQ(modeOf(file), 0600u);
        EXPECT_EQ(modeOf(thumbnailsRoot() + "/" + folder), 0700u);
    }
    EXPECT_EQ(modeOf(thumbnailsRoot()), 0700u);
    EXPECT_EQ(cache::obtain(picture, true).origin, cache::Origin::cache);
}

TEST_F(ThumbnailCacheTest, ReusesValidThumbnailsOfOtherProgramsAndReplacesStaleOnes) {
    const std::string picture = dir.file("shot.png");
    drawPicture(picture, {1000, 750});
    const std::string uri = "file://" + picture;
    struct stat info {};
    ASSERT_EQ(stat(picture.c_str(), &info), 0);
    const QString mtime = QString::number(info.st_mtim.tv_sec);
    const QString size = QString::number(info.st_size);
    struct Case {
        const char* name;
        std::map<QString, QString> keys;
        bool reused;
        const char* folder = "large";
        QSize size{256, 192};
    };
    const Case cases[] = {
        {"whole seconds",
         {{"Thumb::URI", QString::fromStdString(uri)}, {"Thumb::MTime", mtime}},
         true},
        {"fractional seconds",
         {{"Thumb::URI", QString::fromStdString(uri)}, {"Thumb::MTime", mtime + ".734518"}},
         true},
        {"with the right size",
         {{"Thumb::URI", QString::fromStdString(uri)},
          {"Thumb::MTime", mtime},
          {"Thumb::Size", size}},
         true},
        {"older time",
         {{"Thumb::URI", QString::fromStdString(uri)},
          {"Thumb::MTime", QString::number(info.st_mtim.tv_sec - 60)}},
         false},
        {"wrong size",
         {{"Thumb::URI", QString::fromStdString(uri)},
          {"Thumb::MTime", mtime},
          {"Thumb::Size", "12"}},
         false},
        {"no time", {{"Thumb::URI", QString::fromStdString(uri)}}, false},
        {"other picture",
         {{"Thumb::URI", "file:///elsewhere.png"}, {"Thumb::MTime", mtime}},
         false},
        {"larger size",
         {{"Thumb::URI", QString::fromStdString(uri)}, {"Thumb::MTime", mtime}},
         true,
         "x-large",
         {512, 384}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(thumbnailsRoot());
        const std::string file = thumbnailsRoot() + "/" + c.folder + "/" + md5Name(uri);
        writeForeign(file, c.keys, c.size);
        const FileId before = idOf(file);
        const cache::Thumbnail got = cache::obtain(picture, true);
        EXPECT_EQ(got.origin, c.reused ? cache::Origin::cache : cache::Origin::picture);
        EXPECT_EQ(got.image.size(), QSize(256, 192));
        EXPECT_EQ(got.image.pixelColor(128, 150), c.reused ? QColor(Qt::red) : QColor(Qt::blue));
        EXPECT_EQ(idOf(file) == before, c.reused);
        EXPECT_EQ(fs::exists(thumbnailsRoot() + "/normal"), !c.reused);
    }
}

TEST_F(ThumbnailCacheTest, ReusesAThumbnailMadeByTheDesktopsThumbnailer) {
    const std::string picture = dir.file("desk [1].png");
    drawPicture(picture, {1200, 900}, Qt::green);
    const std::string made = dir.file("made.png");
    ASSERT_TRUE(test::runShell("gdk-pixbuf-thumbnailer -s 256 '" + picture + "' '" + made + "'"));
    // The thumbnailer makes the pixels; the desktop's thumbnail factory adds the keys as it
    // stores them, under the URI as GLib spells it.
    QImage image(QString::fromStdString(made));
    ASSERT_EQ(image.size(), QSize(256, 192));
    struct stat info {};
    ASSERT_EQ(stat(picture.c_str(), &info), 0);
    const std::string uri = "file://" + dir.str() + "/desk%20%5B1%5D.png";
    image.setText("Thumb::URI", QString::fromStdString(uri));
    image.setText("Thumb::MTime", QString::number(info.st_mtim.tv_sec));
    const std::string file = thumbnailsRoot() + "/large/" + md5Name(uri);
    fs::create_directories(fs::path(file).parent_path());
    ASSERT_TRUE(image.save(QString::fromStdString(file)));
    const FileId before = idOf(file);

    const cache::Thumbnail got = cache::obtain(picture, true);
    EXPECT_EQ(got.origin, cache::Origin::cache);
    EXPECT_EQ(got.image.convertToFormat(QImage::Format_RGB32),
              image.convertToFormat(QImage::Format_RGB32));
    EXPECT_TRUE(idOf(file) == before);
    EXPECT_EQ(test::namesIn(thumbnailsRoot() + "/large"), std::set{md5Name(uri)});
}

TEST_F(ThumbnailCacheTest, RecordsPicturesThatCannotBeRead) {
    struct Case {
        const char* name;
        std::string bytes;
    };
    const Case cases[] = {
        {"text", "not a picture at all\n"},
        {"empty", ""},
        {"cut-png", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string picture =
            test::writeFile(dir.file(std::string(c.name) + ".png"), c.bytes);
        const cache::Thumbnail got = cache::obtain(picture, true);
        EXPECT_EQ(got.origin, cache::Origin::failed);
        EXPECT_TRUE(got.image.isNull());
        const std::string fail = cache::failurePathOf(picture);
        EXPECT_EQ(fs::path(fail).filename(), md5Name("file://" + picture));
        EXPECT_EQ(fs::path(fail).parent_path().parent_path(), thumbnailsRoot() + "/fail");
        EXPECT_TRUE(fs::path(fail).parent_path().filename().string().starts_with("lumivale-"));
        const QImage record(QString::fromStdString(fail));
        EXPECT_EQ(record.text("Thumb::URI").toStdString(), "file://" + picture);
        EXPECT_EQ(modeOf(fail), 0600u);
        EXPECT_TRUE(cache::hasFailed(picture, *cache::stampOf(picture)));
        EXPECT_FALSE(fs::exists(cache::pathOf(picture, cache::Size::large)));
    }
    // Once the file becomes a picture, the record no longer holds.
    const std::string picture = dir.file("text.png");
    drawPicture(picture, {300, 200});
    const timespec later[2] = {{0, UTIME_OMIT}, {time(nullptr) + 5, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, picture.c_str(), later, 0), 0);
    EXPECT_EQ(cache::obtain(picture, true).origin, cache::Origin::picture);
    // A file that is gone is neither made nor recorded.
    EXPECT_EQ(cache::obtain(dir.file("gone.png"), true).origin, cache::Origin::failed);
    EXPECT_FALSE(fs::exists(cache::failurePathOf(dir.file("gone.png"))));
}

TEST_F(ThumbnailCacheTest, WritesNothingWhenNotShared) {
    const std::string picture = dir.file("private.png");
    drawPicture(picture, {640, 480});
    EXPECT_EQ(cache::obtain(picture, false).origin, cache::Origin::picture);
    EXPECT_EQ(cache::obtain(test::writeFile(dir.file("bad.png"), "x"), false).origin,
              cache::Origin::failed);
    EXPECT_FALSE(fs::exists(thumbnailsRoot()));
}

TEST_F(ThumbnailCacheTest, ForgetRemovesEverySizeAndEveryFailureRecord) {
    const std::string picture = dir.file("locked [1];.png"), other = dir.file("kept.png");
    // Qt's spelling of the URI, and GLib's, which escapes more.
    const std::set<std::string> names = {
        md5Name("file://" + dir.str() + "/locked%20[1];.png"),
        md5Name("file://" + dir.str() + "/locked%20%5B1%5D%3B.png")};
    const std::string kept = md5Name("file://" + other);
    const std::vector<std::string> folders = {"normal",
                                              "large",
                                              "x-large",
                                              "xx-large",
                                              "fail/gnome-thumbnail-factory",
                                              "fail/lumivale-0.0.1"};
    for (const std::string& folder : folders)
        for (const std::string& name : {*names.begin(), *names.rbegin(), kept})
            writeForeign(thumbnailsRoot() + "/" + folder + "/" + name, {});
    cache::forget(picture);
    for (const std::string& folder : folders) {
        SCOPED_TRACE(folder);
        EXPECT_EQ(test::namesIn(thumbnailsRoot() + "/" + folder), std::set{kept});
    }
}

TEST_F(ThumbnailCacheTest, MakesUprightThumbnailsWithinTheLongestSide) {
    struct Case {
        const char* name;
        QSize size;
        int longest;
        QSize expected;
    };
    const Case cases[] = {
        {"wide", {1920, 1080}, 256, {256, 144}},
        {"tall", {400, 3200}, 256, {32, 256}},
        {"small stays", {100, 60}, 256, {100, 60}},
        {"normal", {1920, 1080}, 128, {128, 72}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string picture = dir.file(std::string(c.name) + ".jpg");
        drawPicture(picture, c.size);
        const QImage image = makeThumbnail(picture, c.longest);
        EXPECT_EQ(image.size(), c.expected);
        EXPECT_EQ(image.text("Thumb::Image::Width").toInt(), c.size.width());
        // The dark band is on top.
        EXPECT_LT(qGray(image.pixel(image.width() / 2, 0)), 15);
        EXPECT_GT(qGray(image.pixel(image.width() / 2, image.height() - 1)), 25);
    }
}

TEST_F(ThumbnailCacheTest, TurnsAPictureUprightAsItsOrientationSays) {
    // Stored 400 × 200 with the band on top; orientation 6 shows it turned a quarter clockwise.
    const std::string stored = dir.file("stored.jpg");
    drawPicture(stored, {400, 200});
    const std::string exif("\xFF\xE1\x00\x22"
                           "Exif\0\0"
                           "MM\x00\x2A\x00\x00\x00\x08"
                           "\x00\x01"
                           "\x01\x12\x00\x03\x00\x00\x00\x01\x00\x06\x00\x00"
                           "\x00\x00\x00\x00",
                           36);
    const std::string jpeg = test::readFile(stored);
    const std::string picture =
        test::writeFile(dir.file("turned.jpg"), jpeg.substr(0, 2) + exif + jpeg.substr(2));

    const QImage image = makeThumbnail(picture, 256);
    EXPECT_EQ(image.size(), QSize(128, 256));
    EXPECT_EQ(image.text("Thumb::Image::Width"), "200");
    EXPECT_EQ(image.text("Thumb::Image::Height"), "400");
    // The band (black) is now on the right, the blue on the left.
    EXPECT_LT(qGray(image.pixel(image.width() - 1, 128)), 15);
    EXPECT_GT(qGray(image.pixel(0, 128)), 25);
}

} // namespace
} // namespace lumivale
