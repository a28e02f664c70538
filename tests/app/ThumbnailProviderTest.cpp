#include "app/ThumbnailProvider.h"

#include "support/TempDir.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using test::TempDir;

std::string thumbnailsRoot() {
    return std::string(std::getenv("XDG_CACHE_HOME")) + "/thumbnails";
}

std::string largePathOf(const std::string& picture) {
    const QByteArray uri = QByteArray::fromStdString("file://" + picture);
    return thumbnailsRoot() + "/large/" +
           QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex().toStdString() + ".png";
}

// Every file under the cache, by path relative to it.
std::set<std::string> cacheFiles() {
    std::set<std::string> files;
    std::error_code ec;
    for (const auto& entry : fs::recursive_directory_iterator(thumbnailsRoot(), ec))
        if (entry.is_regular_file()) files.insert(fs::relative(entry.path(), thumbnailsRoot()));
    return files;
}

// A picture of one colour with black lines of text-like stripes across it.
void drawPicture(const std::string& path, QColor colour, QSize size = {800, 600}) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QPainter painter(&image);
    for (int y = 20; y < size.height(); y += 24)
        painter.fillRect(20, y, size.width() - 40, 3, Qt::black);
    painter.end();
    ASSERT_TRUE(image.save(QString::fromStdString(path)));
}

// A read shot of the file as it is now; private when `flags` is given.
Shot shotOf(const std::string& path, bool isPrivate = false, bool read = true) {
    struct stat info {};
    stat(path.c_str(), &info);
    const Date modified = dateFromSeconds(info.st_mtim.tv_sec + info.st_mtim.tv_nsec / 1e9);
    Shot shot(path, info.st_size, modified, modified);
    if (read) shot.readAt = now();
    if (isPrivate) shot.flags = {SensitiveKind::cardNumber};
    return shot;
}

// Runs the event loop until `done` holds or the time is up.
bool waitFor(const std::function<bool()>& done, int milliseconds = 5000) {
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return done();
}

// The thumbnail once the provider has made it.
QImage thumbnailOf(ThumbnailProvider& provider, const Shot& shot, bool blurred = false) {
    QImage image = provider.thumbnail(shot, blurred);
    if (!image.isNull()) return image;
    bool ready = false;
    const auto connection =
        QObject::connect(&provider, &ThumbnailProvider::ready,
                         [&](const QString& path) { ready |= path.toStdString() == shot.path; });
    waitFor([&] { return ready; });
    QObject::disconnect(connection);
    return provider.thumbnail(shot, blurred);
}

class ThumbnailProviderTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        static int argc = 1;
        static char name[] = "thumbnail-test", *argv[] = {name, nullptr};
        if (!QCoreApplication::instance()) new QGuiApplication(argc, argv);
    }
    void SetUp() override { fs::remove_all(thumbnailsRoot()); }
    TempDir dir;
};

TEST_F(ThumbnailProviderTest, SharesOnlyThumbnailsOfReadShotsThatAreNotPrivate) {
    struct Case {
        const char* name;
        bool isPrivate, read, shared;
    };
    const Case cases[] = {
        {"ordinary", false, true, true},
        {"private", true, true, false},
        {"not read yet", false, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(thumbnailsRoot());
        const std::string picture = dir.file(std::string(c.name) + ".png");
        drawPicture(picture, Qt::yellow);
        ThumbnailProvider provider;
        const Shot shot = shotOf(picture, c.isPrivate, c.read);
        EXPECT_EQ(thumbnailOf(provider, shot).size(), QSize(256, 192));
        EXPECT_FALSE(thumbnailOf(provider, shot, true).isNull());
        EXPECT_EQ(fs::exists(largePathOf(picture)), c.shared);
        if (!c.shared) {
            EXPECT_EQ(cacheFiles(), std::set<std::string>{});
        }
    }
}

TEST_F(ThumbnailProviderTest, SharesAThumbnailOnceItsShotIsReadAndNotPrivate) {
    const std::string picture = dir.file("later.png");
    drawPicture(picture, Qt::yellow);
    ThumbnailProvider provider;
    Shot shot = shotOf(picture, false, false);
    ASSERT_FALSE(thumbnailOf(provider, shot).isNull());
    EXPECT_FALSE(fs::exists(largePathOf(picture)));
    shot.readAt = now();
    // Shown from memory meanwhile.
    EXPECT_FALSE(provider.thumbnail(shot, false).isNull());
    EXPECT_TRUE(waitFor([&] { return fs::exists(largePathOf(picture)); }));
}

TEST_F(ThumbnailProviderTest, ShowsACachedThumbnailWithoutMakingOrWritingIt) {
    const std::string picture = dir.file("cached.png");
    drawPicture(picture, Qt::yellow);
    QImage foreign(256, 192, QImage::Format_RGB32);
    foreign.fill(Qt::red);
    struct stat info {};
    stat(picture.c_str(), &info);
    foreign.setText("Thumb::URI", QString::fromStdString("file://" + picture));
    foreign.setText("Thumb::MTime", QString::number(info.st_mtim.tv_sec) + ".5");
    fs::create_directories(thumbnailsRoot() + "/large");
    ASSERT_TRUE(foreign.save(QString::fromStdString(largePathOf(picture))));
    struct stat before {};
    stat(largePathOf(picture).c_str(), &before);

    // Private or not, a thumbnail another program made is used as it is.
    for (bool isPrivate : {false, true}) {
        ThumbnailProvider provider;
        EXPECT_EQ(thumbnailOf(provider, shotOf(picture, isPrivate)).pixelColor(128, 100),
                  QColor(Qt::red));
    }
    struct stat after {};
    stat(largePathOf(picture).c_str(), &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    EXPECT_EQ(cacheFiles(),
              std::set<std::string>{fs::relative(largePathOf(picture), thumbnailsRoot())});
}

TEST_F(ThumbnailProviderTest, MakesAgainWhenTheFileChanges) {
    const std::string picture = dir.file("changing.png");
    drawPicture(picture, Qt::yellow);
    ThumbnailProvider provider;
    const QImage first = thumbnailOf(provider, shotOf(picture));
    EXPECT_EQ(first.pixelColor(128, 100), QColor(Qt::yellow));

    drawPicture(picture, Qt::cyan, {640, 640});
    const timespec later[2] = {{0, UTIME_OMIT}, {time(nullptr) + 10, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, picture.c_str(), later, 0), 0);
    const Shot changed = shotOf(picture);
    // The old one is shown until the new one is ready.
    EXPECT_EQ(provider.thumbnail(changed, false), first);
    EXPECT_TRUE(
        waitFor([&] { return provider.thumbnail(changed, false).size() == QSize(256, 256); }));
    EXPECT_EQ(provider.thumbnail(changed, false).pixelColor(128, 100), QColor(Qt::cyan));
    EXPECT_EQ(QImage(QString::fromStdString(largePathOf(picture))).size(), QSize(256, 256));
}

TEST_F(ThumbnailProviderTest, AFileThatIsNotAPictureGivesNoThumbnail) {
    const std::string picture = test::writeFile(dir.file("broken.png"), "\x89PNG but nothing more");
    ThumbnailProvider provider;
    bool ready = false;
    QObject::connect(&provider, &ThumbnailProvider::ready, [&] { ready = true; });
    EXPECT_TRUE(provider.thumbnail(shotOf(picture), true).isNull());
    ASSERT_TRUE(waitFor([&] { return ready; }));
    EXPECT_TRUE(provider.thumbnail(shotOf(picture), false).isNull());
    EXPECT_TRUE(provider.thumbnail(shotOf(picture), true).isNull());
    EXPECT_TRUE(ThumbnailCache::hasFailed(picture, *ThumbnailCache::stampOf(picture)));
}

TEST_F(ThumbnailProviderTest, DropsQueuedWorkForWhatIsNeitherOnScreenNorNear) {
    std::vector<Shot> shots;
    for (int i = 0; i < 10; ++i) {
        const std::string picture = dir.file("shot" + std::to_string(i) + ".png");
        drawPicture(picture, Qt::yellow, {1600, 1200});
        shots.push_back(shotOf(picture));
    }
    ThumbnailProvider provider;
    std::vector<std::string> readied;
    QObject::connect(&provider, &ThumbnailProvider::ready,
                     [&](const QString& path) { readied.push_back(path.toStdString()); });
    for (const Shot& shot : shots)
        provider.thumbnail(shot, false);
    // The first two are being made already; of the rest, only 9 and 8 are still wanted.
    provider.prioritise({shots[9].path}, {shots[8].path, shots[0].path});
    ASSERT_TRUE(waitFor([&] { return readied.size() >= 4; }));
    waitFor([] { return false; }, 500); // anything else would arrive meanwhile
    std::sort(readied.begin(), readied.end());
    EXPECT_EQ(readied, (std::vector{shots[0].path, shots[1].path, shots[8].path, shots[9].path}));
}

TEST_F(ThumbnailProviderTest, WhileScrollingFastMakesTheLastAskedFirstAndLetsTheOldestGo) {
    const size_t n = ThumbnailProvider::waitingLimit + 10;
    std::vector<Shot> shots;
    for (size_t i = 0; i < n; ++i) {
        const std::string picture = dir.file("fast" + std::to_string(i) + ".png");
        drawPicture(picture, Qt::yellow, {64, 48});
        shots.push_back(shotOf(picture));
    }
    ThumbnailProvider provider;
    std::vector<std::string> readied;
    QObject::connect(&provider, &ThumbnailProvider::ready,
                     [&](const QString& path) { readied.push_back(path.toStdString()); });
    // Asked as a grid paints page after page, with no pause to say what is on screen: the first
    // two are made at once, and 256 of the other 264 wait.
    for (const Shot& shot : shots)
        provider.thumbnail(shot, false);
    ASSERT_TRUE(waitFor([&] { return readied.size() >= n - 8; }, 60000)) << readied.size();
    waitFor([] { return false; }, 300); // anything else would arrive meanwhile
    ASSERT_EQ(readied.size(), n - 8);
    // The newest asked are made before the oldest kept, which were asked for first.
    const auto place = [&](size_t i) {
        return std::find(readied.begin(), readied.end(), shots[i].path) - readied.begin();
    };
    EXPECT_LT(place(n - 1), place(10));
    EXPECT_LT(place(n - 2), place(11));
    for (size_t i = 2; i < 10; ++i)
        EXPECT_EQ(std::count(readied.begin(), readied.end(), shots[i].path), 0) << i;
}

TEST_F(ThumbnailProviderTest, KeepsMemoryWithinItsBudget) {
    constexpr qint64 budget = 3 * 256 * 192 * 4;
    ThumbnailProvider provider(budget);
    std::vector<Shot> shots;
    for (int i = 0; i < 8; ++i) {
        const std::string picture = dir.file("many" + std::to_string(i) + ".png");
        drawPicture(picture, Qt::yellow);
        shots.push_back(shotOf(picture));
        EXPECT_FALSE(thumbnailOf(provider, shots.back()).isNull());
        EXPECT_LE(provider.bytesHeld(), budget);
    }
    // The most recent are kept, the oldest went first.
    EXPECT_FALSE(provider.thumbnail(shots[7], false).isNull());
    EXPECT_FALSE(provider.thumbnail(shots[6], false).isNull());
    EXPECT_TRUE(provider.thumbnail(shots[0], false).isNull());
    EXPECT_GT(provider.bytesHeld(), budget / 2);
}

} // namespace
} // namespace lumivale
