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

struct ShotSpec {
    std::string name;
    std::vector<std::string> lines;
    double created = 0; // seconds since 1970
};

ShotPtr makeShot(const ShotSpec& spec) {
    Shot shot("/home/u/Pictures/" + spec.name, 1000, dateFromSeconds(spec.created),
              dateFromSeconds(spec.created));
    std::vector<TextLine> lines;
    for (const std::string& text : spec.lines)
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
        makeShot({"IMG_0042.png", {"Café Rouge", "Invoice 2024", "Total 1,250.00"}});
    const ShotPtr split = makeShot({"split.png", {"late", "fee"}});
    const ShotPtr spaced = makeShot({"spaced.png", {"Amount", "Total 1 250"}});
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

// Listed in the order expected, with each score for "fee" in the comments; the dates are chosen
// so that a wrong score changes the order.
TEST(SearchQueryTest, RanksByScoreThenNewestFirst) {
    const std::vector<ShotSpec> specs = {
        {"five.png", {"x fee fee fee fee fee"}, 200},                 // 5
        {"nine.png", {"x fee fee fee fee fee fee fee fee fee"}, 100}, // 5: occurrences up to five
        {"four.png", {"x fee fee fee fee"}, 300},                     // 4
        {"FEE-list.png", {"x"}, 50},            // 1 + 2 starting its name's line + 1 in the name
        {"later.png", {"x", "fee later"}, 150}, // 1 + 2 starting a line
        {"first.png", {"fee first", "x"}, 100}, // 1 + 2
        {"my-fee.png", {"x fee"}, 100},         // 1 + 1
        {"two.png", {"x fee fee"}, 50},         // 2
        {"r.png", {"x fee"}, 10},               // 1, and equal dates keep their order
        {"q.png", {"x fee"}, 10},
    };
    std::vector<ShotPtr> shots;
    std::vector<std::string> expected;
    for (const ShotSpec& spec : specs) {
        shots.push_back(makeShot(spec));
        expected.push_back(spec.name);
    }
    // Handed over in another order, but for the last two, whose tie keeps theirs.
    std::rotate(shots.begin(), shots.begin() + 3, shots.end() - 2);
    std::vector<std::string> names;
    for (const ShotPtr& shot : SearchQuery("fee").rank(shots))
        names.emplace_back(shot->name());
    EXPECT_EQ(names, expected);
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
// not of this program's making (as a library file may hold), the order must be the rule's.
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
    for (const std::string typed : {" ", "fee", "fee total", "a", ",", "125", "1 25", "\", 5\"",
                                    "\"a\nf\"", "٣", "total 1"}) {
        SCOPED_TRACE(typed);
        const SearchQuery query(typed);
        std::vector<std::pair<int, ShotPtr>> expected;
        for (const ShotPtr& shot : shots)
            if (const int score = scoreByTheRule(*shot, query.terms); score >= 0)
                expected.emplace_back(score, shot);
        const auto date = [](const Shot& shot) { return std::min(shot.created, shot.modified); };
        std::stable_sort(expected.begin(), expected.end(), [&](const auto& a, const auto& b) {
            return a.first != b.first ? a.first > b.first : date(*a.second) > date(*b.second);
        });
        const std::vector<ShotPtr> ranked = query.rank(shots);
        ASSERT_EQ(ranked.size(), expected.size());
        for (size_t i = 0; i < ranked.size(); ++i)
            ASSERT_EQ(ranked[i], expected[i].second) << "at " << i << ": " << ranked[i]->folded;
    }
}

} // namespace
} // namespace lumivale
