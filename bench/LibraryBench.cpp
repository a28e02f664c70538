// Saves and loads a large library file and prints how long each takes, the file's size, and the
// peak memory of a fresh process that only loads it.
//
//   LibraryBench [--shots N]            build N read shots (default 100,000), save, load, print
//   LibraryBench --write-only FILE [--shots N]   only write the library (for plist-baselines.sh)
//   LibraryBench --load-only FILE       load FILE and print the load time and peak memory

#include "core/Library.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>

using namespace lumivale;

namespace {

// Wall-clock and processor seconds of one step; on a busy machine the two part.
struct Stopwatch {
    std::chrono::steady_clock::time_point wall = std::chrono::steady_clock::now();
    double cpu = cpuSeconds();

    static double cpuSeconds() {
        timespec t{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
    }
    double wallSeconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - wall).count();
    }
    double cpuSecondsSince() const { return cpuSeconds() - cpu; }
};

// The process's peak resident memory in bytes, from /proc/self/status.
long long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmHWM:", 0) == 0) return std::atoll(line.c_str() + 6) * 1024;
    return -1;
}

// A line of about 40 characters, as a receipt or a chat in several languages reads.
std::string lineText(std::mt19937& random) {
    static const char* words[] = {"Rechnung", "Überweisung", "Größe",    "número", "señor",
                                  "reçu",     "café",        "paiement", "Gesamt", "total",
                                  "EUR",      "Kreditkarte", "déjà",     "Straße", "Zürich",
                                  "ticket",   "Bestätigung", "mañana",   "Århus",  "crème"};
    std::string text;
    while (text.size() < 40) {
        if (!text.empty()) text += ' ';
        if (random() % 3 == 0)
            text += std::to_string(random() % 100000) + "," + std::to_string(10 + random() % 90);
        else
            text += words[random() % std::size(words)];
    }
    return text;
}

Library buildLibrary(int count) {
    std::mt19937 random(42);
    const Date base = now();
    Library library;
    library.reserve(count);
    for (int i = 0; i < count; ++i) {
        Shot shot("/home/me/Pictures/Screenshots/Screenshot 2024-03-05 at 10.11." +
                      std::to_string(i) + ".png",
                  200000 + random() % 800000, base - std::chrono::seconds(i),
                  base - std::chrono::seconds(i));
        std::vector<TextLine> lines;
        for (int l = 0; l < 20; ++l)
            lines.push_back({lineText(random), 0.05f + l * 0.001f, 1.0f - l * 0.045f,
                             0.3f + (random() % 600) / 1000.0f, 0.02f + (random() % 10) / 1000.0f});
        shot.setLines(std::move(lines));
        shot.pixelWidth = 1170;
        shot.pixelHeight = 2532;
        shot.guess = allShelves[random() % allShelves.size()];
        shot.guessScore = (random() % 1000) / 100.0;
        if (i % 7 == 0) shot.manual = Shelf::other;
        if (i % 11 == 0) shot.flags = {SensitiveKind::cardNumber};
        shot.readAt = base;
        shot.reader = 3;
        library.put(std::move(shot));
    }
    library.extraFolders = {"/home/me/Downloads"};
    return library;
}

int loadOnly(const std::string& file) {
    const Stopwatch watch;
    const auto library = Library::load(file);
    const double wall = watch.wallSeconds(), cpu = watch.cpuSecondsSince();
    if (!library) {
        std::fprintf(stderr, "could not load %s\n", file.c_str());
        return 1;
    }
    std::printf("%.3f %.3f %zu %lld\n", wall, cpu, library->size(), peakMemory());
    return 0;
}

// Saves the library into `folder` and prints the times; the file's size, or -1.
long long timeSave(const Library& library, const std::string& folder, const char* label) {
    const std::string file = folder + "/library.plist";
    const Stopwatch watch;
    const Status saved = library.save(file);
    const double wall = watch.wallSeconds(), cpu = watch.cpuSecondsSince();
    if (!saved) {
        std::fprintf(stderr, "save into %s failed: %s\n", folder.c_str(), saved.message().c_str());
        return -1;
    }
    std::printf("save %-24s %.3f s (processor %.3f s)\n", label, wall, cpu);
    return static_cast<long long>(std::filesystem::file_size(file));
}

std::string makeFolder(const std::filesystem::path& parent) {
    std::string folder = (parent / "library-bench-XXXXXX").string();
    return mkdtemp(folder.data()) ? folder : std::string();
}

} // namespace

int main(int argc, char** argv) {
    int count = 100000;
    std::string writeOnly;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--load-only" && i + 1 < argc) return loadOnly(argv[++i]);
        if (arg == "--write-only" && i + 1 < argc)
            writeOnly = argv[++i];
        else if (arg == "--shots" && i + 1 < argc)
            count = std::atoi(argv[++i]);
        else {
            std::fprintf(stderr, "usage: %s [--shots N] [--write-only FILE] [--load-only FILE]\n",
                         argv[0]);
            return 2;
        }
    }

    std::printf("building %d read shots of 20 lines...\n", count);
    std::fflush(stdout);
    const Library library = buildLibrary(count);
    if (!writeOnly.empty()) return library.save(writeOnly) ? 0 : 1;

    // Once into memory (no disk: the encoding and copying alone), then onto the disk.
    const std::string memory = makeFolder("/dev/shm"),
                      folder = makeFolder(std::filesystem::temp_directory_path());
    if (memory.empty() || folder.empty()) return 1;
    timeSave(library, memory, "into memory (/dev/shm):");
    std::filesystem::remove_all(memory);
    const long long fileSize = timeSave(library, folder, "onto disk (target 1.5 s):");
    if (fileSize < 0) return 1;

    // A fresh process, so the library built here does not count towards the peak.
    const std::string command = "'" + std::filesystem::read_symlink("/proc/self/exe").string() +
                                "' --load-only '" + folder + "/library.plist'";
    FILE* child = popen(command.c_str(), "r");
    double loadWall = -1, loadCpu = -1;
    size_t loaded = 0;
    long long peak = -1;
    if (!child || std::fscanf(child, "%lf %lf %zu %lld", &loadWall, &loadCpu, &loaded, &peak) != 4)
        std::fprintf(stderr, "the loading process failed\n");
    if (child) pclose(child);
    std::filesystem::remove_all(folder);

    const double mb = 1024.0 * 1024.0;
    std::printf("load (target 1.5 s)            %.3f s (processor %.3f s), %zu shots\n", loadWall,
                loadCpu, loaded);
    std::printf("file size                      %.1f MiB\n", fileSize / mb);
    std::printf("peak memory after load         %.1f MiB = %.2f x file size (target 2)\n",
                peak / mb, static_cast<double>(peak) / static_cast<double>(fileSize));
    return loaded == static_cast<size_t>(count) ? 0 : 1;
}
