// Times SearchQuery::rank over a library of 100,000 read shots of twenty lines each: prints,
// per query, how many shots match and its times over five runs, then the median and the 90th
// percentile over all queries. The floor, one plain pass over every search text, shows how
// busy the machine's memory is at the time.
#include "core/Library.h"
#include "core/SearchQuery.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <time.h>
#include <vector>

using namespace lumivale;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int shotCount = 100000;
constexpr int linesPerShot = 20;
constexpr int vocabularySize = 5000;
constexpr int runsPerQuery = 5;

// Words in order of how common they are: real words (some accented, some in other scripts)
// first, then made-up ones that become ever rarer.
std::vector<std::string> makeVocabulary() {
    std::vector<std::string> words = {
        "the",      "and",       "Total",    "order",    "paid",     "date",      "amount",
        "café",     "Invoice",   "delivery", "ticket",   "from",     "to",        "boarding",
        "pass",     "gate",      "seat",     "Straße",   "über",     "crème",     "naïve",
        "résumé",   "façade",    "São",      "Paulo",    "Zürich",   "København", "Αθήνα",
        "Москва",   "receipt",   "GST",      "tax",      "subtotal", "qty",       "price",
        "item",     "card",      "bank",     "account",  "message",  "reply",     "sent",
        "today",    "yesterday", "map",      "route",    "km",       "min",       "fee",
        "late",     "due",       "balance",  "transfer", "ref",      "booking",   "hotel",
        "check-in", "night"};
    const char* syllables[] = {"ka",  "lo", "mi", "ter", "van", "su", "ne",    "ri", "do", "ba",
                               "chi", "pé", "zu", "mor", "li",  "ga", "ström", "ve", "no", "ta"};
    std::mt19937 random(1);
    while (words.size() < vocabularySize) {
        std::string word;
        for (int i = 2 + static_cast<int>(random() % 3); i > 0; --i)
            word += syllables[random() % 20];
        words.push_back(word);
    }
    return words;
}

std::string amount(std::mt19937& random) {
    switch (random() % 4) {
    case 0:
        return std::to_string(1 + random() % 9) + "," + std::to_string(100 + random() % 900) +
               ".00";
    case 1:
        return std::to_string(10 + random() % 90) + " " + std::to_string(100 + random() % 900);
    case 2:
        return "2024-0" + std::to_string(1 + random() % 9) + "-1" + std::to_string(random() % 10);
    default:
        return std::to_string(random() % 1000);
    }
}

Library makeLibrary() {
    const std::vector<std::string> words = makeVocabulary();
    // Zipf's law: the word at rank r turns up in proportion to 1 / (r + 1).
    std::vector<double> weights(words.size());
    for (size_t r = 0; r < words.size(); ++r)
        weights[r] = 1.0 / static_cast<double>(r + 1);
    std::discrete_distribution<size_t> pickWord(weights.begin(), weights.end());
    const char* names[] = {"Screenshot %s at 10.%02d.%02d.png",
                           "Skärmavbild %s kl. 10.%02d.%02d.png",
                           "Снимок экрана от %s 10-%02d-%02d.png"};
    std::mt19937 random(2);
    Library library;
    const Date start = dateFromSeconds(1700000000);
    for (int i = 0; i < shotCount; ++i) {
        char name[160];
        const std::string day =
            "2024-0" + std::to_string(1 + i % 9) + "-" + std::to_string(10 + i % 19);
        std::snprintf(name, sizeof name, names[random() % 10 < 8 ? 0 : 1 + random() % 2],
                      day.c_str(), static_cast<int>(random() % 60), i % 60);
        const Date taken = start + std::chrono::seconds(random() % 30000000);
        Shot shot("/home/u/Pictures/Screenshots/" + std::to_string(i) + "/" + name,
                  200000 + static_cast<int64_t>(random() % 800000), taken, taken);
        std::vector<TextLine> lines;
        for (int l = 0; l < linesPerShot; ++l) {
            std::string text;
            while (text.size() < 36) {
                if (!text.empty()) text += ' ';
                text += random() % 7 == 0 ? amount(random) : words[pickWord(random)];
            }
            lines.push_back({text, 0.05f, 1.0f - 0.05f * static_cast<float>(l), 0.8f, 0.03f});
        }
        shot.setLines(std::move(lines));
        shot.readAt = taken + std::chrono::seconds(5);
        library.put(std::move(shot));
    }
    return library;
}

double milliseconds(Clock::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}

// The processor time the whole program has used, all threads together: on a machine shared
// with other work, wall-clock time also counts the time spent waiting for a processor.
double processorMilliseconds() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

double percentile(std::vector<double> values, double p) {
    std::sort(values.begin(), values.end());
    const size_t at = static_cast<size_t>(p * static_cast<double>(values.size() - 1) + 0.5);
    return values[at];
}

} // namespace

int main() {
    const Clock::time_point buildStart = Clock::now();
    const Library library = makeLibrary();
    const std::vector<ShotPtr> shots = library.all();
    size_t bytes = 0;
    for (const ShotPtr& shot : shots)
        bytes += shot->folded.size();
    std::printf("%zu shots, %.1f MB of search text, built in %.1f s\n\n", shots.size(),
                static_cast<double>(bytes) / 1e6, milliseconds(Clock::now() - buildStart) / 1000);

    // Times a piece of work five times: the best and the median wall-clock time, and the
    // median processor time.
    struct Times {
        double best, median, processor;
    };
    const auto timed = [](const auto& work) {
        std::vector<double> wall, processor;
        for (int run = 0; run < runsPerQuery; ++run) {
            const Clock::time_point t = Clock::now();
            const double p = processorMilliseconds();
            work();
            processor.push_back(processorMilliseconds() - p);
            wall.push_back(milliseconds(Clock::now() - t));
        }
        return Times{percentile(wall, 0), percentile(wall, 0.5), percentile(processor, 0.5)};
    };

    // The floor: one pass of memchr over every search text, in the order rank visits them.
    size_t found = 0;
    const Times floor = timed([&] {
        for (const ShotPtr& shot : shots)
            found += std::memchr(shot->folded.data(), '\x01', shot->folded.size()) != nullptr;
    });
    std::printf("reading every search text once with memchr: best %.2f ms, median %.2f ms%s\n\n",
                floor.best, floor.median, found ? "?" : "");

    const std::vector<std::string> words = makeVocabulary();
    const std::vector<std::string> queries = {"total",
                                              "invoice",
                                              "CAFÉ",
                                              "1,250",
                                              "strasse",
                                              words[3000],
                                              words[4500],
                                              "zebra",
                                              "voic",
                                              "screenshot",
                                              "2024",
                                              "total paid",
                                              "\"boarding pass\"",
                                              "café 2024",
                                              words[2500] + " total",
                                              "order delivery total",
                                              words[1500] + " " + words[1800] + " café",
                                              "снимок",
                                              "ÜBER",
                                              "\"12 500\" gst"};
    std::printf("%-28s %8s %10s %10s %13s\n", "query", "matches", "best ms", "median ms",
                "processor ms");
    std::vector<double> bests, medians;
    for (const std::string& typed : queries) {
        const SearchQuery query(typed);
        size_t matches = 0;
        const Times t = timed([&] { matches = query.rank(shots).size(); });
        bests.push_back(t.best);
        medians.push_back(t.median);
        std::printf("%-28s %8zu %10.2f %10.2f %13.2f\n", typed.c_str(), matches, t.best, t.median,
                    t.processor);
    }
    std::printf("\nper query, best of %d runs: median %.2f ms, p90 %.2f ms\n", runsPerQuery,
                percentile(bests, 0.5), percentile(bests, 0.9));
    std::printf("per query, median of %d runs: median %.2f ms, p90 %.2f ms\n", runsPerQuery,
                percentile(medians, 0.5), percentile(medians, 0.9));
}
