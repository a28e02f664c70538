#pragma once
// An application model over a made-up library, in a temporary folder of its own, for the
// benchmarks that time the model's work.

#include "SyntheticShots.h"
#include "app/AppModel.h"

#include <QSettings>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace lumivale::bench {

// The count after "--shots" on the command line, else `fallback`.
inline int shotsArgument(int argc, char** argv, int fallback) {
    for (int i = 1; i + 1 < argc; ++i)
        if (std::strcmp(argv[i], "--shots") == 0) return std::atoi(argv[i + 1]);
    return fallback;
}

// A model whose data folder holds a library of `count` made-up read shots, not yet loaded. The
// program ends when the library cannot be written.
struct SyntheticModel {
    explicit SyntheticModel(int count)
        : count(count), root(dir.path().toStdString()),
          paths(Paths::at(root + "/data", root + "/Screenshots", root + "/Archive")),
          settings(QString::fromStdString(root + "/settings.ini"), QSettings::IniFormat),
          model(paths, settings) {
        if (!syntheticLibrary(count).save(paths.libraryFile())) {
            std::fprintf(stderr, "could not write the library\n");
            std::exit(1);
        }
    }

    const int count;
    QTemporaryDir dir;
    const std::string root;
    const Paths paths;
    QSettings settings;
    AppModel model;
};

} // namespace lumivale::bench
