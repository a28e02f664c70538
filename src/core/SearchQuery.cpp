#include "core/SearchQuery.h"

#include "core/Characters.h"
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
// How much of a search text is asked for ahead of reading it: a text lies in one piece, but the
// processor's own prefetching only starts once it sees the text read in order.
constexpr size_t prefetchLimit = 2048;

bool isQuote(UChar32 c) {
    return c == 0x0022 || c == 0x201C || c == 0x201D;
}

// The part of the shot's search text that a term must be looked for in: the plain text alone,
// or all of it.
std::string_view searchedText(const Shot& shot, bool plainOnly) {
    const std::string_view text = shot.folded;
    return plainOnly && shot.squashedAt ? text.substr(0, shot.squashedAt - 1) : text;
}

// The shot's folded file name, which ends the plain part of its search text (a text read from a
// file is taken at its word); folded afresh into `scratch` when the text holds too few lines.
std::string_view foldedName(const Shot& shot, std::string& scratch) {
    if (shot.nameAt) return searchedText(shot, true).substr(shot.nameAt);
    scratch = foldText(shot.name());
    return scratch;
}

// A term with no numbers in it (and no line feed, and more than a lone comma) is in the squashed
// copy of a search text exactly where it is in the plain text, and starts a line there as often:
// only the plain text need be read, and each occurrence counts twice.
bool plainTextSuffices(std::string_view term) {
    return term != "," && term.find('\n') == none && !hasNumeric(term);
}

struct Term {
    std::string_view text;
    std::string afterFeed; // the term starting a line
    bool plainOnly;
    PairSketch pairs;
    uint64_t lineStart;

    explicit Term(std::string_view term)
        : text(term), afterFeed("\n" + std::string(term)), plainOnly(plainTextSuffices(term)),
          pairs(sketchPairs(term)), lineStart(lineStartBit(term)) {}
};

// What one term adds to the score of a shot whose searched text holds it first at `first`,
// each occurrence standing for `copies`.
int termScore(const Shot& shot, std::string_view text, std::string_view name, const Term& term,
              size_t first, int copies) {
    int occurrences = 0;
    for (size_t at = first; at != none && occurrences < occurrenceCap;
         at = findText(text, term.text, at + term.text.size()))
        occurrences = std::min(occurrences + copies, occurrenceCap);
    const bool mayStartLine = term.lineStart == 0 || (shot.lineStarts & term.lineStart) != 0;
    const bool startsLine =
        mayStartLine && (text.starts_with(term.text) || findText(text, term.afterFeed) != none);
    return occurrences + (startsLine ? 2 : 0) + (findText(name, term.text) != none ? 1 : 0);
}

// Below this many shots a second thread costs more than it saves.
constexpr size_t parallelFrom = 20000;

struct Ranked {
    int score;
    uint32_t at; // the shot's place in the list searched, which settles ties
    Date date;

    bool operator<(const Ranked& o) const {
        if (score != o.score) return score > o.score;
        if (date != o.date) return date > o.date;
        return at < o.at;
    }
};

// The matching shots, scored. `order` lists the terms longest first: a longer term is likelier
// to rule a shot out, so it is looked for first.
std::vector<Ranked> scoreMatches(std::span<const ShotPtr> shots, size_t offset,
                                 const std::vector<Term>& terms, const std::vector<size_t>& order) {
    std::vector<Ranked> ranked;
    std::vector<size_t> firsts(terms.size());
    std::string nameScratch;
    // The part of the search texts that every term is looked for in.
    const bool plainOnly =
        std::all_of(terms.begin(), terms.end(), [](const Term& term) { return term.plainOnly; });
    // A shot whose sketch lacks a pair of some term's cannot match: its text is never read.
    const auto mayMatch = [&](const Shot& shot) {
        return std::all_of(terms.begin(), terms.end(),
                           [&](const Term& term) { return mayHold(shot.pairs, term.pairs); });
    };
    for (size_t i = 0; i < shots.size(); ++i) {
        // Every shot and its texts lie somewhere else in memory: asking for those a few steps
        // ahead lets the loads overlap instead of each one waiting for the last.
        if (i + 2 * prefetchDistance < shots.size()) {
            // The three cache lines that open a shot.
            const char* later =
                reinterpret_cast<const char*>(shots[i + 2 * prefetchDistance].get());
            __builtin_prefetch(later);
            __builtin_prefetch(later + 64);
            __builtin_prefetch(later + 128);
        }
        if (i + prefetchDistance < shots.size() && mayMatch(*shots[i + prefetchDistance])) {
            const std::string_view text = searchedText(*shots[i + prefetchDistance], plainOnly);
            for (size_t at = 0; at < std::min(text.size(), prefetchLimit); at += 64)
                __builtin_prefetch(text.data() + at);
        }
        const Shot& shot = *shots[i];
        if (!mayMatch(shot)) continue;
        const bool all = std::all_of(order.begin(), order.end(), [&](size_t t) {
            firsts[t] = findText(searchedText(shot, terms[t].plainOnly), terms[t].text);
            return firsts[t] != none;
        });
        if (!all) continue;
        int score = 0;
        if (!terms.empty()) {
            const std::string_view name = foldedName(shot, nameScratch);
            for (size_t t = 0; t < terms.size(); ++t) {
                // Read in the plain half alone, each occurrence stands for its squashed twin too.
                const bool twinned = terms[t].plainOnly && shot.squashedAt;
                score += termScore(shot, searchedText(shot, twinned), name, terms[t], firsts[t],
                                   twinned ? 2 : 1);
            }
        }
        ranked.push_back({score, static_cast<uint32_t>(offset + i), shot.date()});
    }
    return ranked;
}

} // namespace

SearchQuery::SearchQuery(std::string_view typed) {
    std::string current;
    const auto endTerm = [&] {
        const std::string folded = foldText(trimmedSpaces(current));
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
        return findText(searchedText(shot, plainTextSuffices(term)), term) != none;
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
    const std::vector<Term> looked(terms.begin(), terms.end());
    std::vector<size_t> order(terms.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return terms[a].size() > terms[b].size(); });
    // A large library is split between two threads, which read, score and sort a half each.
    const auto rankPart = [&](std::span<const ShotPtr> part, size_t offset) {
        std::vector<Ranked> ranked = scoreMatches(part, offset, looked, order);
        std::sort(ranked.begin(), ranked.end());
        return ranked;
    };
    const auto inParallel = [](const auto& one, const auto& other) {
        std::thread helper(other);
        one();
        helper.join();
    };
    std::vector<Ranked> ranked;
    const std::span<const ShotPtr> all(shots);
    if (shots.size() < parallelFrom) {
        ranked = rankPart(all, 0);
    } else {
        const size_t half = shots.size() / 2;
        std::vector<Ranked> first, second;
        inParallel([&] { first = rankPart(all.first(half), 0); },
                   [&] { second = rankPart(all.subspan(half), half); });
        ranked.resize(first.size() + second.size());
        std::merge(first.begin(), first.end(), second.begin(), second.end(), ranked.begin());
    }
    // Copying the shared pointers touches every matching shot once more: the threads share that
    // too.
    std::vector<ShotPtr> out(ranked.size());
    const auto copy = [&](size_t from, size_t to) {
        for (size_t k = from; k < to; ++k)
            out[k] = shots[ranked[k].at];
    };
    const size_t half = out.size() / 2;
    if (out.size() < parallelFrom)
        copy(0, out.size());
    else
        inParallel([&] { copy(0, half); }, [&] { copy(half, out.size()); });
    return out;
}

} // namespace lumivale
