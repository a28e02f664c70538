// What a desktop search costs: how long the main thread is held to find and describe the best
// results in a large library (each keystroke in GNOME Shell or KRunner asks), and how long the
// worker takes for the thumbnails of one screen of results, made and then from the cache.
//
//   DesktopSearchBench [--shots N]

#include "ScreenshotDrawing.h"
#include "SyntheticModel.h"
#include "Timing.h"
#include "app/AppModel.h"
#include "app/ThumbnailMaker.h"
#include "ui/DesktopResults.h"

#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

using namespace lumivale;

using bench::median;
using bench::millisecondsOf;

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QGuiApplication app(argc, argv);
    bench::SyntheticModel synthetic(bench::shotsArgument(argc, argv, 100000));
    const int count = synthetic.count;
    const std::string& root = synthetic.root;
    setenv("XDG_CACHE_HOME", (root + "/cache").c_str(), 1);
    AppModel& model = synthetic.model;
    model.load();

    std::vector<double> answers;
    for (const char* typed : {"café total", "zebra7", "booking 12", "gate", "invoice zürich"}) {
        const SearchQuery query(typed);
        for (int round = 0; round < 3; ++round)
            answers.push_back(millisecondsOf([&] {
                (void)DesktopResults::describe(model, DesktopResults::find(model, query), query);
            }));
    }

    // One screen of results: five read screenshots, 1920 × 1080 PNG.
    std::vector<DesktopResult> screen;
    for (int i = 0; i < 5; ++i) {
        const std::string path = root + "/shot" + std::to_string(i) + ".png";
        bench::drawScreenshot(path, {1920, 1080}, i);
        screen.push_back({path, "", "", false, true});
    }
    const auto thumbnails = [&] {
        for (const DesktopResult& result : screen)
            (void)DesktopResults::thumbnailFile(result);
    };
    const double made = millisecondsOf(thumbnails);
    std::vector<double> cached;
    for (int round = 0; round < 5; ++round)
        cached.push_back(millisecondsOf(thumbnails));
    std::vector<double> icons;
    for (int round = 0; round < 5; ++round)
        icons.push_back(millisecondsOf([&] {
            for (const DesktopResult& result : screen)
                (void)makeThumbnail(*DesktopResults::thumbnailFile(result), 96);
        }));

    std::printf("shots: %d\n", count);
    std::printf("find and describe the best %zu on the main thread: %.1f ms (median of 15)\n",
                DesktopResults::limit, median(answers));
    std::printf("thumbnails of 5 results, 1920 x 1080 PNG, on the worker: made and shared %.0f ms; "
                "from the cache %.1f ms (median of 5); as KRunner icons %.1f ms (median of 5)\n",
                made, median(cached), median(icons));
    return 0;
}
