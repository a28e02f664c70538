#include "core/SearchQuery.h"

#include "core/Fold.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace lumivale {
namespace {

ShotPtr makeShot(const std::string& name, const std::vector<std::string>& texts) {
    Shot shot("/home/u/Pictures/" + name, 1000, Date{}, Date{});
    std::vector<TextLine> lines;
    for (const std::string& text : texts)
        lines.push_back({text});
    shot.setLines(std::move(lines));
    return std::make_shared<const Shot>(std::move(shot));
}

TEST(SearchQueryTest, ParsesTypedText) {
    const struct {
        const char* what;
        std::string typed;
        std::vector<std::string> terms;
    } cases[] = {
        {"white space of all kinds", " \t\u00A0invoice\u3000 2024\n", {"invoice", "2024"}},
        {"folded", "CAFÉ ＡＢＣ Straße", {"cafe", "abc", "strasse"}},
        {"squashed", "1,250", {"1250"}},
        {"a space splits a number", "1 250", {"1", "250"}},
        {"a quoted number is squashed", "\"1 250\"", {"1250"}},
        {"quoted phrase", "\"boarding pass\" del", {"boarding pass", "del"}},
        {"curly quotes split words", "“Boarding Pass”DEL", {"boarding pass", "del"}},
        {"unclosed quote runs to the end", "x \"\u00A0late  fee  ", {"x", "late  fee"}},
        {"nothing left", "\"\" \"  \" \u0301", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(SearchQuery(c.typed).terms, c.terms);
    }
}

// A shot matches when it holds every term; its hit lines are those that hold any term.
TEST(SearchQueryTest, MatchesEveryTermAndMarksLinesWithAny) {
    const ShotPtr receipt =
        makeShot("IMG_0042.png", {"Café Rouge", "Invoice 2024", "Total 1,250.00"});
    const ShotPtr split = makeShot("split.png", {"late", "fee"});
    const ShotPtr spaced = makeShot("spaced.png", {"Amount", "Total 1 250"});
    const ShotPtr unread = std::make_shared<const Shot>("/p/Shot 7.png", 1, Date{}, Date{});
    const struct {
        const char* what;
        std::string typed;
        ShotPtr shot;
        bool matches;
        std::vector<size_t> hits;
    } cases[] = {
        {"folded", "CAFÉ", receipt, true, {0}},
        {"ungrouped number finds a grouped one", "1250", receipt, true, {2}},
        {"quoted spaced number", "\"1 250\"", spaced, true, {1}},
        {"part of a word", "voic", receipt, true, {1}},
        {"one term missing", "invoice zzz", receipt, false, {1}},
        {"a term in the file name", "img_0042", receipt, true, {}},
        {"separate words on separate lines", "late fee", split, true, {0, 1}},
        {"a quoted phrase does not reach across lines", "\"late fee\"", split, false, {}},
        {"a quoted line feed does", "\"late\nfee\"", split, true, {}},
        {"a shot not read yet, by its name", "shot 7", unread, true, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(SearchQuery(c.typed).matches(*c.shot), c.matches);
        EXPECT_EQ(SearchQuery(c.typed).hitLines(*c.shot), c.hits);
    }
}

// The score of one shot as the ranking rule states it, read off the whole search text.
int scoreByTheRule(const Shot& shot, const std::vector<std::string>& terms) {
    const std::string& text = shot.folded;
    const std::string name = foldText(shot.name());
    int score = 0;
    for (const std::string& term : terms) {
        int occurrences = 0;
        for (size_t at = text.find(term); at != std::string::npos;
             at = text.find(term, at + term.size()))
            ++occurrences;
        if (occurrences == 0) return -1;
        score += std::min(occurrences, 5);
        score += text.starts_with(term) || text.find("\n" + term) != std::string::npos ? 2 : 0;
        score += name.find(term) != std::string::npos ? 1 : 0;
    }
    return score;
}

// Words without numbers are looked for in the plain half of a search text only, and large
// libraries are split between threads: on many made-up shots, some with search texts that are
// not of this program's making (as a library file may hold), the order must be the rule's, with
// equal scores newest first and equal dates in the order given.
TEST(SearchQueryTest, RanksManyShotsAsTheRuleSays) {
    const std::string pieces[] = {"1",     "25", ",", " ",  "\u00A0", "fee", "Fée",
                                  "total", "٣",  "a", "\n", ", 5",    "½"};
    std::mt19937 random(11);
    const auto text = [&](size_t count) {
        std::string out;
        for (size_t i = 0; i < count; ++i)
            out += pieces[random() % std::size(pieces)];
        return out;
    };
    std::vector<ShotPtr> shots;
    for (int i = 0; i < 24000; ++i) {
        Shot shot("/p/" + text(2) + ".png", 1, dateFromSeconds(random() % 50),
                  dateFromSeconds(random() % 50));
        shot.setLines({{text(6)}, {text(6)}});
        if (i % 10 == 0) { // written by another program: a text that is not the lines', with
                           // its copy squashed in whole, in part, or missing
            const std::string plain = text(8) + "\n" + foldText(shot.name());
            const size_t feed = plain.find('\n');
            const std::string copies[] = {"\n" + squash(plain),
                                          "\n" + squash(plain.substr(0, feed)) + plain.substr(feed),
                                          ""};
            shot.folded = plain + copies[i / 10 % 3];
            shot.indexSearchText();
        }
        shots.push_back(std::make_shared<const Shot>(std::move(shot)));
    }
    // A short list is ranked on one thread, a long one on two.
    std::vector<ShotPtr> few(shots.begin(), shots.begin() + 500);
    for (const std::vector<ShotPtr>* list : {&few, &shots})
        for (const std::string typed : {" ", "fee", "fee total", "a", ",", "125", "1 25", "\", 5\"",
                                        "\"a\nf\"", "٣", "total 1"}) {
            SCOPED_TRACE(typed);
            const SearchQuery query(typed);
            std::vector<std::pair<int, ShotPtr>> expected;
            for (const ShotPtr& shot : *list)
                if (const int score = scoreByTheRule(*shot, query.terms); score >= 0)
                    expected.emplace_back(score, shot);
            const auto date = [](const Shot& shot) {
                return std::min(shot.created, shot.modified);
            };
            std::stable_sort(expected.begin(), expected.end(), [&](const auto& a, const auto& b) {
                return a.first != b.first ? a.first > b.first : date(*a.second) > date(*b.second);
            });
            const std::vector<ShotPtr> ranked = query.rank(*list);
            ASSERT_EQ(ranked.size(), expected.size());
            for (size_t i = 0; i < ranked.size(); ++i)
                ASSERT_EQ(ranked[i], expected[i].second) << "at " << i << ": " << ranked[i]->folded;
        }
}

} // namespace
} // namespace lumivale
