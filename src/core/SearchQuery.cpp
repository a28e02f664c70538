#include "core/SearchQuery.h"

#include "core/Fold.h"
#include "core/TextSearch.h"

#include <algorithm>
#include <numeric>
#include <span>
#include <thread>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace lumivale {
namespace {

constexpr size_t none = std::string_view::npos;
constexpr int occurrenceCap = 5;
constexpr size_t prefetchDistance = 8;

bool isQuote(UChar32 c) {
    return c == 0x0022 || c == 0x201C || c == 0x201D;
}

// What is trimmed from the ends of a term: spaces of any width, and tabs.
bool isSpaceOrTab(UChar32 c) {
    return c == '\t' || (c >= 0 && u_charType(c) == U_SPACE_SEPARATOR);
}

std::string_view trimmed(std::string_view s) {
    int32_t begin = 0;
    int32_t end = static_cast<int32_t>(s.size());
    while (begin < end) {
        int32_t next = begin;
        UChar32 c;
        U8_NEXT(s.data(), next, end, c);
        if (!isSpaceOrTab(c)) break;
        begin = next;
    }
    while (end > begin) {
        int32_t previous = end;
        UChar32 c;
        U8_PREV(s.data(), begin, previous, c);
        if (!isSpaceOrTab(c)) break;
        end = previous;
    }
    return s.substr(static_cast<size_t>(begin), static_cast<size_t>(end - begin));
}

bool isAscii(std::string_view s) {
    return std::all_of(s.begin(), s.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

size_t lineFeeds(std::string_view s) {
    return static_cast<size_t>(std::count(s.begin(), s.end(), '\n'));
}

// The position just after the `count`th line feed at or after `from`, or none.
size_t afterLineFeeds(std::string_view s, size_t from, size_t count) {
    for (; count > 0; --count) {
        const size_t feed = s.find('\n', from);
        if (feed == none) return none;
        from = feed + 1;
    }
    return from;
}

// The shot's folded file name, taken from its search text instead of folding the name again
// for every shot that a search visits. The search text is F (the folded lines, a line feed, the
// folded name) or F, a line feed and F squashed, which has as many line feeds as F: either way
// the name follows the line feeds that come before it in F. Folding plain ASCII only lowers
// capitals, which is cheaper still. `scratch` holds the name when it is not a part of the text.
std::string_view foldedName(const Shot& shot, std::string& scratch) {
    const std::string_view name = shot.name();
    if (isAscii(name)) {
        scratch.assign(name);
        for (char& c : scratch)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        return scratch;
    }
    const std::string_view text = shot.folded;
    const size_t inName = lineFeeds(name);
    // The line feeds between the lines and after them, if the lines hold none of their own.
    size_t before = std::max<size_t>(shot.lines.size(), 1);
    // The texts of the lines lie apart in memory: they are read only when the count of line
    // feeds in the search text shows that some line holds line feeds (a count that has both
    // readings is taken as the common one, with no line feeds in the lines).
    const size_t all = lineFeeds(text);
    if (all != before + inName && all != 2 * (before + inName) + 1)
        for (const TextLine& line : shot.lines)
            before += lineFeeds(line.text);
    const size_t start = afterLineFeeds(text, 0, before);
    if (start == none) { // a search text that does not fit the lines: fold the name after all
        scratch = foldText(name);
        return scratch;
    }
    const size_t stop = afterLineFeeds(text, start, inName + 1);
    return text.substr(start, stop == none ? none : stop - 1 - start);
}

// What one term adds to the score of a shot whose search text holds it first at `first`.
int termScore(std::string_view text, std::string_view name, std::string_view term, size_t first) {
    int occurrences = 0;
    bool startsLine = false;
    for (size_t at = first; at != none; at = findText(text, term, at + term.size())) {
        occurrences = std::min(occurrences + 1, occurrenceCap);
        startsLine = startsLine || at == 0 || text[at - 1] == '\n';
        if (occurrences == occurrenceCap && startsLine) break;
    }
    // Counting steps over whole occurrences, so it never sees one that overlaps the one before;
    // only a term that holds a line feed can start a line in such a place.
    if (!startsLine && term.find('\n') != none) {
        std::string afterFeed(1, '\n');
        afterFeed += term;
        startsLine = text.starts_with(term) || text.find(afterFeed) != none;
    }
    return occurrences + (startsLine ? 2 : 0) + (findText(name, term) != none ? 1 : 0);
}

// Below this many shots a second thread costs more than it saves.
constexpr size_t parallelFrom = 20000;

struct Ranked {
    int score;
    Date date;
    ShotPtr shot;
};

// The matching shots, scored. `order` lists the terms longest first: a longer term is likelier
// to rule a shot out, so it is looked for first.
std::vector<Ranked> scoreMatches(std::span<const ShotPtr> shots,
                                 const std::vector<std::string>& terms,
                                 const std::vector<size_t>& order) {
    std::vector<Ranked> ranked;
    std::vector<size_t> firsts(terms.size());
    std::string nameScratch;
    for (size_t i = 0; i < shots.size(); ++i) {
        // Every shot and its texts lie somewhere else in memory: asking for those a few steps
        // ahead lets the loads overlap instead of each one waiting for the last.
        if (i + 2 * prefetchDistance < shots.size()) {
            const Shot* later = shots[i + 2 * prefetchDistance].get(); // several cache lines
            __builtin_prefetch(later);
            __builtin_prefetch(&later->lines);
            __builtin_prefetch(&later->folded);
        }
        if (i + prefetchDistance < shots.size()) {
            const Shot& next = *shots[i + prefetchDistance];
            __builtin_prefetch(next.folded.data());
            __builtin_prefetch(next.path.data());
        }
        const ShotPtr& shot = shots[i];
        const std::string_view text = shot->folded;
        const bool all = std::all_of(order.begin(), order.end(), [&](size_t t) {
            firsts[t] = findText(text, terms[t]);
            return firsts[t] != none;
        });
        if (!all) continue;
        int score = 0;
        if (!terms.empty()) {
            const std::string_view name = foldedName(*shot, nameScratch);
            for (size_t t = 0; t < terms.size(); ++t)
                score += termScore(text, name, terms[t], firsts[t]);
        }
        ranked.push_back({score, shot->date(), shot});
    }
    return ranked;
}

} // namespace

SearchQuery::SearchQuery(std::string_view typed) {
    std::string current;
    const auto endTerm = [&] {
        const std::string folded = foldText(trimmed(current));
        if (!folded.empty()) terms.push_back(squash(folded));
        current.clear();
    };
    bool quoted = false;
    const int32_t size = static_cast<int32_t>(typed.size());
    for (int32_t i = 0; i < size;) {
        const int32_t start = i;
        UChar32 c;
        U8_NEXT(typed.data(), i, size, c);
        if (isQuote(c)) {
            endTerm();
            quoted = !quoted;
        } else if (!quoted && c >= 0 && u_isUWhiteSpace(c)) {
            endTerm();
        } else {
            current.append(
                typed.substr(static_cast<size_t>(start), static_cast<size_t>(i - start)));
        }
    }
    endTerm();
}

bool SearchQuery::matches(const Shot& shot) const {
    return std::all_of(terms.begin(), terms.end(), [&](const std::string& term) {
        return findText(shot.folded, term) != none;
    });
}

std::vector<size_t> SearchQuery::hitLines(const Shot& shot) const {
    std::vector<size_t> hits;
    if (terms.empty()) return hits;
    for (size_t i = 0; i < shot.lines.size(); ++i) {
        const std::string line = squash(foldText(shot.lines[i].text));
        if (std::any_of(terms.begin(), terms.end(),
                        [&](const std::string& term) { return findText(line, term) != none; }))
            hits.push_back(i);
    }
    return hits;
}

std::vector<ShotPtr> SearchQuery::rank(const std::vector<ShotPtr>& shots) const {
    std::vector<size_t> order(terms.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return terms[a].size() > terms[b].size(); });
    // The search reads every shot's text, so a large library is split between two threads; the
    // halves are joined in order, which keeps the sort below stable over the whole list.
    std::vector<Ranked> ranked;
    const std::span<const ShotPtr> all(shots);
    if (shots.size() < parallelFrom || terms.empty()) {
        ranked = scoreMatches(all, terms, order);
    } else {
        const size_t half = shots.size() / 2;
        std::vector<Ranked> second;
        std::thread helper([&] { second = scoreMatches(all.subspan(half), terms, order); });
        ranked = scoreMatches(all.first(half), terms, order);
        helper.join();
        ranked.insert(ranked.end(), std::make_move_iterator(second.begin()),
                      std::make_move_iterator(second.end()));
    }
    std::stable_sort(ranked.begin(), ranked.end(), [](const Ranked& a, const Ranked& b) {
        return a.score != b.score ? a.score > b.score : a.date > b.date;
    });
    std::vector<ShotPtr> out;
    out.reserve(ranked.size());
    for (Ranked& r : ranked)
        out.push_back(std::move(r.shot));
    return out;
}

} // namespace lumivale
