// `lumivale read [--json] [--lang TAG]... FILE...`: reads and sorts pictures the way the scan
// does, and shows what came out of each.

#include "cli/Command.h"
#include "cli/Output.h"
#include "core/Facts.h"
#include "core/Shot.h"
#include "core/Sorter.h"
#include "core/Titles.h"
#include "reading/Reader.h"
#include "reading/ReadingLanguages.h"

#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <fcntl.h>
#include <iomanip>
#include <iostream>
#include <mutex>
#include <optional>
#include <sstream>
#include <sys/stat.h>
#include <thread>

namespace lumivale::cli {
namespace {

// Reading runs on at most this many threads, each with its own recognition engine.
constexpr size_t readingThreads = 3;
// Titles are cut to this many characters, about what a file name or a grid label can hold.
constexpr size_t titleLength = 60;

struct Outcome {
    Shot shot;
    Verdict verdict;
    std::optional<std::string> title;
    std::vector<Fact> facts;
    std::string problem; // why the file could not be read, when it could not
    double seconds = 0;
};

Date dateOf(const statx_timestamp& t) {
    return Date(std::chrono::seconds(t.tv_sec) + std::chrono::nanoseconds(t.tv_nsec));
}

// A fresh shot of the file, as the scan would make it: its size, its birth time (or the
// modification time where the file system keeps none) and its modification time.
Shot shotOfFile(const std::string& path, std::string& problem) {
    const std::string absolute = absolutePathOf(path);
    struct statx st {};
    if (statx(AT_FDCWD, path.c_str(), 0, STATX_SIZE | STATX_MTIME | STATX_BTIME, &st) != 0) {
        problem = std::strerror(errno);
        return Shot(absolute, 0, distantPast(), distantPast());
    }
    const Date modified = dateOf(st.stx_mtime);
    const Date created = (st.stx_mask & STATX_BTIME) ? dateOf(st.stx_btime) : modified;
    return Shot(absolute, static_cast<int64_t>(st.stx_size), created, modified);
}

Outcome readOne(const std::string& path, const std::vector<std::string>& languages) {
    const auto start = std::chrono::steady_clock::now();
    Outcome o;
    o.shot = shotOfFile(path, o.problem);
    const Reading reading = Reader::read(path, languages);
    Sorter::apply(reading, o.shot);
    std::vector<std::string> texts;
    for (const TextLine& line : reading.lines)
        texts.push_back(line.text);
    o.verdict = Sorter::sort(texts, reading.barcodes);
    o.title = Titles::of(o.shot, titleLength);
    o.facts = Facts::of(o.shot);
    if (o.shot.failed && o.problem.empty()) o.problem = "not a picture that can be read";
    o.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return o;
}

QString text(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

// A box coordinate as the float it is: its shortest decimal form, without the digits that
// widening it to a double would add.
double floatValue(float f) {
    char digits[32];
    const auto [end, ec] = std::to_chars(digits, digits + sizeof digits, f);
    return ec == std::errc() ? std::strtod(std::string(digits, end).c_str(), nullptr) : f;
}

QJsonObject readingJson(const Outcome& o) {
    const Shot& s = o.shot;
    QJsonArray lines;
    for (const TextLine& line : s.lines)
        lines.append(QJsonObject{{"text", text(line.text)},
                                 {"x", floatValue(line.x)},
                                 {"y", floatValue(line.y)},
                                 {"w", floatValue(line.w)},
                                 {"h", floatValue(line.h)}});
    QJsonArray barcodes;
    for (const std::string& kind : s.barcodes)
        barcodes.append(text(kind));
    QJsonObject scores;
    for (Shelf shelf : allShelves) {
        const auto it = o.verdict.scores.find(shelf);
        scores[text(shelfId(shelf))] = it == o.verdict.scores.end() ? 0.0 : it->second;
    }
    QJsonArray flags;
    for (SensitiveKind kind : s.flags)
        flags.append(text(sensitiveKindId(kind)));
    QJsonArray facts;
    for (const Fact& fact : o.facts)
        facts.append(QJsonObject{{"label", text(fact.label)}, {"value", text(fact.value)}});
    return QJsonObject{{"path", text(s.path)},
                       {"pixelWidth", static_cast<qint64>(s.pixelWidth)},
                       {"pixelHeight", static_cast<qint64>(s.pixelHeight)},
                       {"failed", s.failed},
                       {"lines", lines},
                       {"barcodes", barcodes},
                       {"shelf", text(shelfId(s.category()))},
                       {"confidence", s.guessScore},
                       {"scores", scores},
                       {"flags", flags},
                       {"title", o.title ? QJsonValue(text(*o.title)) : QJsonValue()},
                       {"facts", facts},
                       {"seconds", o.seconds}};
}

std::string plainText(const Outcome& o) {
    const Shot& s = o.shot;
    std::ostringstream out;
    out << s.path << "\n";
    if (s.failed) {
        out << "  could not be read: " << o.problem << "\n";
        return out.str();
    }
    out << std::fixed << std::setprecision(2);
    out << "  shelf:      " << shelfTitle(s.category()) << " (" << shelfId(s.category())
        << "), confidence " << s.guessScore << "\n";
    out << "  private:    ";
    if (s.flags.empty()) out << "no";
    for (auto it = s.flags.begin(); it != s.flags.end(); ++it)
        out << (it == s.flags.begin() ? "" : ", ") << sensitiveKindTitle(*it);
    out << "\n  title:      " << o.title.value_or("(none)") << "\n";
    for (const Fact& fact : o.facts)
        out << "  " << std::left << std::setw(11) << (fact.label + ":") << " " << fact.value
            << "\n";
    if (!s.barcodes.empty()) {
        out << "  barcodes:  ";
        for (const std::string& kind : s.barcodes)
            out << " " << kind;
        out << "\n";
    }
    out << "  " << s.pixelWidth << " × " << s.pixelHeight << " pixels, " << s.lines.size()
        << " lines of text, read in " << o.seconds << " s\n";
    for (const TextLine& line : s.lines)
        out << "    " << line.text << "\n";
    return out.str();
}

int runRead(std::vector<std::string> args) {
    // Everything after "--" is a file, even if it looks like an option.
    std::vector<std::string> files;
    if (const auto dashes = std::find(args.begin(), args.end(), "--"); dashes != args.end()) {
        files.assign(dashes + 1, args.end());
        args.erase(dashes, args.end());
    }
    const bool json = takeFlag(args, "--json");
    bool missing = false;
    std::vector<std::string> languages = takeValues(args, "--lang", missing);
    if (missing) return usageError("--lang needs a language tag such as en-US");
    for (const std::string& arg : args)
        if (arg.size() > 1 && arg[0] == '-')
            return usageError("unknown option '" + arg + "' (see lumivale --help)");
    files.insert(files.begin(), args.begin(), args.end());
    if (files.empty()) return usageError("usage: lumivale read [--json] [--lang TAG]... FILE...");
    const std::vector<std::string> supported = ReadingLanguages::supported();
    for (const std::string& tag : languages)
        if (std::find(supported.begin(), supported.end(), tag) == supported.end()) {
            std::string installed;
            for (const std::string& s : supported)
                installed += (installed.empty() ? "" : ", ") + s;
            return usageError("no reading model for '" + tag + "' is installed (installed: " + installed + ")");
        }
    if (languages.empty())
        languages = ReadingLanguages::defaults(ReadingLanguages::preferred(), supported);

    // Files are read on a few threads and shown in the order they were given, each as soon as
    // it and every file before it are done.
    std::vector<std::optional<Outcome>> outcomes(files.size());
    std::mutex mutex;
    std::condition_variable ready;
    size_t next = 0;
    auto work = [&] {
        for (;;) {
            size_t i;
            {
                std::lock_guard lock(mutex);
                if (next == files.size()) return;
                i = next++;
            }
            Outcome o = readOne(files[i], languages);
            {
                std::lock_guard lock(mutex);
                outcomes[i] = std::move(o);
            }
            ready.notify_all();
        }
    };
    std::vector<std::thread> threads;
    for (size_t t = 0; t < std::min(readingThreads, files.size()); ++t)
        threads.emplace_back(work);

    bool anyFailed = false;
    for (size_t i = 0; i < files.size(); ++i) {
        std::unique_lock lock(mutex);
        ready.wait(lock, [&] { return outcomes[i].has_value(); });
        const Outcome o = std::move(*outcomes[i]);
        outcomes[i].reset();
        lock.unlock();
        if (o.shot.failed) {
            anyFailed = true;
            printError("couldn't read " + files[i] + ": " + o.problem);
        }
        if (json)
            printJsonLine(readingJson(o));
        else
            std::cout << plainText(o) << (i + 1 < files.size() ? "\n" : "");
        std::cout << std::flush;
    }
    for (std::thread& t : threads)
        t.join();
    return anyFailed ? Exit::failed : Exit::done;
}

} // namespace

LUMIVALE_COMMAND("read", "read [--json] [--lang TAG]... FILE...",
                 "reads and sorts each picture and shows its words, shelf, title and facts",
                 runRead);

} // namespace lumivale::cli
