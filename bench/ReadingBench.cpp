// Reading speed and word recall.
//
//   ReadingBench FOLDER...            reads every picture with Reader::read on three threads, as
//                                     the application does
//   ReadingBench --baseline FOLDER... runs plain `tesseract FILE -` on each picture, one after
//                                     another, for comparison
//   ReadingBench --draw FOLDER        draws screenshot-like pictures and their expected.tsv
//   --details                         also prints each picture's recall and missing words
//
// Prints pictures per second, core-seconds per picture (user + system time over pictures) and,
// where the folder has an expected.tsv (lines: file name TAB expected line), word recall: the
// share of expected words, folded, that the text read holds.
#include "ReadingPictures.h"
#include "core/Fold.h"
#include "reading/Reader.h"
#include "reading/ReadingLanguages.h"

#include <algorithm>
#include <atomic>
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

// Reads every picture with `readOne` (which gives the text read, or nothing on a failure) on
// `threads` threads and prints the figures.
void measure(const std::string& label, const std::string& folder, int threads, int rusageWho,
             const std::function<std::optional<std::string>(const std::string&)>& readOne) {
    const auto files = picturesIn(folder);
    if (files.empty()) {
        std::printf("%-10s no pictures\n", label.c_str());
        return;
    }
    std::vector<std::optional<std::string>> texts(files.size());
    std::atomic<size_t> next = 0;
    const double coreBefore = coreSeconds(rusageWho);
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t)
        pool.emplace_back([&] {
            for (size_t i; (i = next++) < files.size();)
                texts[i] = readOne(files[i]);
        });
    for (auto& thread : pool)
        thread.join();
    const double wall =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double core = coreSeconds(rusageWho) - coreBefore;

    const auto expected = expectedLines(folder);
    Recall recall;
    size_t failed = 0;
    for (size_t i = 0; i < files.size(); ++i) {
        failed += !texts[i];
        countRecall(expected, files[i], texts[i].value_or(""), recall);
    }
    const double n = double(files.size());
    std::printf("%-10s %4zu pictures %3zu failed %7.2f s %7.2f pictures/s %6.3f core-s/picture",
                label.c_str(), files.size(), failed, wall, double(files.size()) / wall, core / n);
    if (recall.expected > 0)
        std::printf("  recall %.3f (%zu/%zu words)", double(recall.found) / double(recall.expected),
                    recall.found, recall.expected);
    std::printf("\n");
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

int main(int argc, char** argv) {
    Reader::startWithOneRecognitionThread(argv);
    std::vector<std::string> args(argv + 1, argv + argc);
    if (const auto flag = std::find(args.begin(), args.end(), "--details"); flag != args.end()) {
        details = true;
        args.erase(flag);
    }
    if (args.empty() || (args[0] == "--draw" && args.size() != 2)) {
        std::fprintf(stderr,
                     "usage: ReadingBench [--baseline] [--details] FOLDER... | --draw FOLDER\n");
        return 2;
    }
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
            measure("tesseract", args[i], 1, RUSAGE_CHILDREN, readWithTesseract);
        else
            measure("lumivale", args[i], readingThreads, RUSAGE_SELF,
                    [&](const std::string& file) { return readWithLumivale(file, languages); });
    }
    return 0;
}
