// How long the application model holds the main thread when it saves a library of 100,000
// shots (the encoding and writing happen in the background), and how long the grid's list
// takes for the "all" place with a two-term query.
//
//   AppModelBench [--shots N]

#include "SyntheticModel.h"
#include "Timing.h"
#include "app/AppModel.h"

#include <QGuiApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

using namespace lumivale;

using bench::median;
using bench::millisecondsOf;

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QGuiApplication app(argc, argv);
    bench::SyntheticModel synthetic(bench::shotsArgument(argc, argv, 100000));
    const int count = synthetic.count;
    AppModel& model = synthetic.model;
    const double load = millisecondsOf([&] { model.load(); });

    std::vector<double> holds, background;
    for (int round = 0; round < 5; ++round) {
        const auto start = std::chrono::steady_clock::now();
        holds.push_back(millisecondsOf([&] { model.save(); }));
        model.waitForSaves();
        background.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }

    model.setPlace(Place::of(Place::Kind::all));
    std::vector<double> visible;
    for (const char* query : {"café total", "zebra7 eur", "booking 12", "gate señor", "invoice zürich"}) {
        model.setQuery(query);
        for (int round = 0; round < 3; ++round)
            visible.push_back(millisecondsOf([&] { (void)model.visible(); }));
    }

    std::printf("shots: %d (library loaded in %.0f ms)\n", count, load);
    std::printf("save: main thread held %.1f ms (median of 5; target <= 20 ms); whole save %.0f ms in the background\n",
                median(holds), median(background));
    std::printf("visible, place all, two-term query: %.1f ms (median of 15; target <= 30 ms)\n", median(visible));
    return 0;
}
