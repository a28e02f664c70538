// Reading speed and word recall.
//
//   ReadingBench FOLDER...            reads every picture with Reader::read on three threads, as
//                                     the application does
//   ReadingBench --baseline FOLDER... runs plain `tesseract FILE -` on each picture, one after
//                                     another, for comparison
//   ReadingBench --draw FOLDER        draws screenshot-like pictures and their expected.tsv
//   ReadingBench --fixtures FOLDER    draws the sixteen made-up screenshots and an expected.tsv
//                                     of the texts quoted on them
//   --details                         also prints each picture's recall and missing words
//
// The reader reads each folder twice on the same three threads: first with the engines still to
// load, then again with them loaded, as in a long scan.
// Prints pictures per second, core-seconds per picture (user + system time over pictures) and,
// where the folder has an expected.tsv (lines: file name TAB expected line), word recall: the
// share of expected words, folded, that the text read holds.
#include "ReadingPictures.h"
#include "app/Fixtures.h"
#include "core/PathName.h"
#include "core/Fold.h"
#include "reading/Reader.h"
#include "reading/ReadingLanguages.h"

#include <QGuiApplication>

#include <algorithm>
#include <atomic>
#include <barrier>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace fs = std::filesystem;
using namespace lumivale;

namespace {

constexpr int readingThreads = 3;

std::vector<std::string> picturesIn(const std::string& folder) {
    static const std::set<std::string> kinds = {".png", ".jpg",  ".jpeg", ".heic", ".heif",
                                                ".tif", ".tiff", ".webp", ".gif",  ".bmp"};
    std::vector<std::string> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        std::string extension = entry.path().extension().string();
        std::transform(extension.begin(), extension.end(), extension.begin(), ::tolower);
        if (entry.is_regular_file() && kinds.count(extension))
            files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// The folded words of a text: runs of letters and digits (any non-ASCII character counts as a
// letter).
std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    std::string word;
    for (unsigned char c : foldText(text) + " ") {
        if (std::isalnum(c) || c >= 0x80) {
            word += char(c);
        } else if (!word.empty()) {
            words.push_back(word);
            word.clear();
        }
    }
    return words;
}

// Expected lines by file name, from the folder's expected.tsv; empty when it has none.
std::multimap<std::string, std::string> expectedLines(const std::string& folder) {
    std::multimap<std::string, std::string> lines;
    std::ifstream in(folder + "/expected.tsv");
    for (std::string line; std::getline(in, line);)
        if (const size_t tab = line.find('\t'); tab != std::string::npos)
            lines.emplace(line.substr(0, tab), line.substr(tab + 1));
    return lines;
}

struct Recall {
    size_t expected = 0, found = 0;
};

bool details = false;

void countRecall(const std::multimap<std::string, std::string>& expected, const std::string& file,
                 const std::string& text, Recall& recall) {
    const auto read = wordsOf(text);
    const std::set<std::string> words(read.begin(), read.end());
    const std::string name = fs::path(file).filename().string();
    const auto [first, last] = expected.equal_range(name);
    Recall here;
    std::string missing;
    for (auto it = first; it != last; ++it)
        for (const auto& word : wordsOf(it->second)) {
            ++here.expected;
            here.found += words.count(word);
            if (!words.count(word)) missing += " " + word;
        }
    if (details && here.expected > 0)
        std::printf("  %-24s recall %.3f  missing:%s\n", name.c_str(),
                    double(here.found) / double(here.expected), missing.c_str());
    recall.expected += here.expected;
    recall.found += here.found;
}

double coreSeconds(int who) {
    rusage usage{};
    getrusage(who, &usage);
    auto seconds = [](const timeval& t) { return double(t.tv_sec) + double(t.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

using ReadOne = std::function<std::optional<std::string>(const std::string&)>;

struct Pass {
    std::vector<std::optional<std::string>> texts; // by file; nothing where reading failed
    double wall = 0, core = 0;                     // seconds
};

// Reads every file with `readOne` in `passes` passes, on `threads` threads that live through
// all passes (so that what a thread keeps, such as its engine, is kept from pass to pass).
std::vector<Pass> readInPasses(const std::vector<std::string>& files, int threads, int passes,
                               int rusageWho, const ReadOne& readOne) {
    std::vector<Pass> results(size_t(passes),
                              Pass{std::vector<std::optional<std::string>>(files.size())});
    std::barrier sync(threads + 1);
    std::atomic<size_t> next = 0;
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t)
        pool.emplace_back([&] {
            for (Pass& pass : results) {
                sync.arrive_and_wait();
                for (size_t i; (i = next++) < files.size();)
                    pass.texts[i] = readOne(files[i]);
                sync.arrive_and_wait();
            }
        });
    for (Pass& pass : results) {
        next = 0;
        const double coreBefore = coreSeconds(rusageWho);
        const auto start = std::chrono::steady_clock::now();
        sync.arrive_and_wait(); // go
        sync.arrive_and_wait(); // all done
        pass.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        pass.core = coreSeconds(rusageWho) - coreBefore;
    }
    for (auto& thread : pool)
        thread.join();
    return results;
}

void report(const std::string& label, const std::string& folder,
            const std::vector<std::string>& files, const Pass& pass) {
    const auto expected = expectedLines(folder);
    Recall recall;
    size_t failed = 0;
    for (size_t i = 0; i < files.size(); ++i) {
        failed += !pass.texts[i];
        countRecall(expected, files[i], pass.texts[i].value_or(""), recall);
    }
    const double n = double(files.size());
    std::printf("%-10s %4zu pictures %3zu failed %7.2f s %7.2f pictures/s %6.3f core-s/picture",
                label.c_str(), files.size(), failed, pass.wall, n / pass.wall, pass.core / n);
    if (recall.expected > 0)
        std::printf("  recall %.3f (%zu/%zu words)", double(recall.found) / double(recall.expected),
                    recall.found, recall.expected);
    std::printf("\n");
}

// Reads the folder's pictures and prints the figures of each pass under its label.
void measure(const std::vector<std::string>& labels, const std::string& folder, int threads,
             int rusageWho, const ReadOne& readOne) {
    const auto files = picturesIn(folder);
    if (files.empty()) {
        std::printf("%-10s no pictures\n", labels.front().c_str());
        return;
    }
    const auto passes = readInPasses(files, threads, int(labels.size()), rusageWho, readOne);
    for (size_t p = 0; p < passes.size(); ++p)
        report(labels[p], folder, files, passes[p]);
}

std::optional<std::string> readWithLumivale(const std::string& file,
                                            const std::vector<std::string>& languages) {
    const Reading reading = Reader::read(file, languages);
    if (reading.failed) return std::nullopt;
    std::string text;
    for (const auto& line : reading.lines)
        text += line.text + "\n";
    return text;
}

// Plain `tesseract FILE -`, its output captured; nothing when it fails.
std::optional<std::string> readWithTesseract(const std::string& file) {
    int out[2];
    if (pipe(out) != 0) return std::nullopt;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const char* argv[] = {"tesseract", file.c_str(), "-", nullptr};
    pid_t pid = 0;
    const int spawned =
        posix_spawnp(&pid, "tesseract", &actions, nullptr, const_cast<char* const*>(argv), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    std::string text;
    char buffer[4096];
    for (ssize_t n; (n = ::read(out[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, size_t(n));
    close(out[0]);
    int status = 0;
    if (spawned != 0 || waitpid(pid, &status, 0) != pid || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0)
        return std::nullopt;
    return text;
}

} // namespace

// Draws the sixteen made-up screenshots into `folder` with an expected.tsv of the texts quoted
// on them; false on a failure.
bool drawFixtures(const std::string& folder, int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QGuiApplication app(argc, argv);
    const Fixtures::WriteResult written = Fixtures::write(Fixtures::all(), folder, now());
    if (!written.status)
        return false;
    std::ofstream expected(folder + "/expected.tsv");
    for (const Fixtures::Written& file : written.files)
        for (const std::string& text : Fixtures::quotedTexts(file.fixture.kind))
            expected << lastComponent(file.path) << '\t' << text << '\n';
    return bool(expected.flush());
}

int main(int argc, char** argv) {
    Reader::startWithOneRecognitionThread(argv);
    std::vector<std::string> args(argv + 1, argv + argc);
    if (const auto flag = std::find(args.begin(), args.end(), "--details"); flag != args.end()) {
        details = true;
        args.erase(flag);
    }
    if (args.empty() || ((args[0] == "--draw" || args[0] == "--fixtures") && args.size() != 2)) {
        std::fprintf(stderr, "usage: ReadingBench [--baseline] [--details] FOLDER... | --draw FOLDER | "
                             "--fixtures FOLDER\n");
        return 2;
    }
    if (args[0] == "--fixtures")
        return drawFixtures(args[1], argc, argv) ? 0 : 1;
    if (args[0] == "--draw") {
        if (VIPS_INIT(argv[0]) || !bench::drawPictures(args[1])) {
            std::fprintf(stderr, "ReadingBench: cannot draw the pictures into %s\n",
                         args[1].c_str());
            return 1;
        }
        return 0;
    }
    const bool baseline = args[0] == "--baseline";
    const auto languages =
        ReadingLanguages::defaults(ReadingLanguages::preferred(), ReadingLanguages::supported());
    for (size_t i = baseline ? 1 : 0; i < args.size(); ++i) {
        std::printf("%s\n", args[i].c_str());
        if (baseline)
            measure({"tesseract"}, args[i], 1, RUSAGE_CHILDREN, readWithTesseract);
        else
            measure({"lumivale", "  again"}, args[i], readingThreads, RUSAGE_SELF,
                    [&](const std::string& file) { return readWithLumivale(file, languages); });
    }
    return 0;
}
