// How many thumbnails a second are made from pictures and read back from the shared thumbnail
// cache, and whether the memory held for thumbnails stays within its bound while a grid scrolls
// through many pictures.
//
//   ThumbnailBench [--pictures N] [--requests M]
//
// N screenshot-like pictures of each kind (1920 × 1080 PNG and JPEG, default 100) are drawn
// first; the grid's M requests (default 10,000) go to distinct paths, hard links to a few
// smaller pictures, so that each is made anew.

#include "ScreenshotDrawing.h"
#include "app/ThumbnailCache.h"
#include "app/ThumbnailProvider.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace lumivale;

namespace {

// Shots of the files as they are now, unread: their thumbnails stay in memory.
Shot shotOf(const std::string& path) {
    struct stat info {};
    stat(path.c_str(), &info);
    const Date modified = dateFromSeconds(info.st_mtim.tv_sec + info.st_mtim.tv_nsec / 1e9);
    return Shot(path, info.st_size, modified, modified);
}

// A figure of this process from /proc/self/status ("VmRSS", "VmHWM"), in MB.
double processMegabytes(const std::string& key) {
    std::ifstream status("/proc/self/status");
    std::string name;
    double kilobytes = 0;
    while (status >> name) {
        if (name == key + ":" && status >> kilobytes) return kilobytes / 1024;
        status.ignore(1 << 10, '\n');
    }
    return 0;
}

void waitUntil(const std::function<bool()>& done) {
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
}

// Thumbnails a second through the cache's own calls on one thread, and where they came from.
void measureOneThread(const char* what, const std::vector<std::string>& pictures) {
    int fromCache = 0, failed = 0;
    QElapsedTimer timer;
    timer.start();
    for (const std::string& picture : pictures) {
        const auto origin = ThumbnailCache::obtain(picture, true).origin;
        fromCache += origin == ThumbnailCache::Origin::cache;
        failed += origin == ThumbnailCache::Origin::failed;
    }
    const double seconds = timer.nsecsElapsed() / 1e9;
    std::printf("%-34s %6.1f thumbnails/s  (%zu in %.2f s; %d from the cache, %d failed)\n", what,
                pictures.size() / seconds, pictures.size(), seconds, fromCache, failed);
}

} // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QGuiApplication app(argc, argv);
    int count = 100, requests = 10000;
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], "--pictures") == 0) count = std::atoi(argv[i + 1]);
        if (std::strcmp(argv[i], "--requests") == 0) requests = std::atoi(argv[i + 1]);
    }
    QTemporaryDir dir;
    const std::string root = dir.path().toStdString();
    setenv("XDG_CACHE_HOME", (root + "/cache").c_str(), 1);

    std::vector<std::string> pngs, jpegs;
    for (int i = 0; i < count; ++i) {
        pngs.push_back(root + "/shot" + std::to_string(i) + ".png");
        jpegs.push_back(root + "/photo" + std::to_string(i) + ".jpg");
        bench::drawScreenshot(pngs.back(), {1920, 1080}, i);
        bench::drawScreenshot(jpegs.back(), {1920, 1080}, i + count);
    }
    std::printf("pictures: %d PNG and %d JPEG, 1920 x 1080\n", count, count);
    measureOneThread("PNG from the picture, 1 thread", pngs);
    measureOneThread("PNG from the cache, 1 thread", pngs);
    measureOneThread("JPEG from the picture, 1 thread", jpegs);
    measureOneThread("JPEG from the cache, 1 thread", jpegs);

    {
        std::filesystem::remove_all(root + "/cache");
        ThumbnailProvider provider;
        int ready = 0;
        QObject::connect(&provider, &ThumbnailProvider::ready, [&] { ++ready; });
        QElapsedTimer timer;
        timer.start();
        for (const std::string& picture : pngs)
            provider.thumbnail(shotOf(picture), false);
        waitUntil([&] { return ready == count; });
        const double seconds = timer.nsecsElapsed() / 1e9;
        std::printf("%-34s %6.1f thumbnails/s  (%d in %.2f s)\n", "PNG from the picture, provider",
                    count / seconds, count, seconds);
    }

    // The grid: pages of 40 on screen with the next 40 near, in turn, each shown once it is ready.
    constexpr int page = 40;
    constexpr qint64 budget = 64 << 20;
    std::vector<std::string> small;
    for (int i = 0; i < 20; ++i) {
        small.push_back(root + "/small" + std::to_string(i) + ".png");
        bench::drawScreenshot(small.back(), {800, 500}, i);
    }
    std::vector<Shot> shots;
    std::filesystem::create_directories(root + "/many");
    for (int i = 0; i < requests; ++i) {
        const std::string path = root + "/many/" + std::to_string(i) + ".png";
        if (link(small[i % small.size()].c_str(), path.c_str()) != 0) return 1;
        shots.push_back(shotOf(path));
    }
    const double before = processMegabytes("VmRSS");
    ThumbnailProvider provider(budget);
    qint64 most = 0;
    QElapsedTimer timer;
    timer.start();
    for (int first = 0; first < requests; first += page) {
        std::vector<std::string> onScreen, near;
        for (int i = first; i < std::min(requests, first + 2 * page); ++i)
            (i < first + page ? onScreen : near).push_back(shots[i].path);
        const int last = std::min(requests, first + page);
        for (int i = first; i < std::min(requests, first + 2 * page); ++i)
            provider.thumbnail(shots[i], i % 10 == 0);
        provider.prioritise(onScreen, near);
        waitUntil([&] {
            for (int i = first; i < last; ++i)
                if (provider.thumbnail(shots[i], i % 10 == 0).isNull()) return false;
            return true;
        });
        most = std::max(most, provider.bytesHeld());
    }
    const double seconds = timer.nsecsElapsed() / 1e9;
    std::printf("grid of %d pictures (800 x 500 PNG, every tenth blurred), pages of %d:\n",
                requests, page);
    std::printf("  %.1f thumbnails/s on screen (%.1f s)\n", requests / seconds, seconds);
    std::printf("  pixels held at most %.1f MB of a %.1f MB bound, %.1f MB at the end\n",
                most / 1048576.0, budget / 1048576.0, provider.bytesHeld() / 1048576.0);
    std::printf("  resident memory %.1f MB before, %.1f MB after, peak %.1f MB\n", before,
                processMegabytes("VmRSS"), processMegabytes("VmHWM"));
    return 0;
}
