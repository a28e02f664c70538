// The tidy sheet over a real model and real files: what its preview and buttons say for each
// choice, and what running it does to the files, up to the banner's Undo.
#include "ui/TidySheet.h"

#include "WindowWorld.h"
#include "core/PathName.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

namespace fs = std::filesystem;

namespace lumivale {
namespace {

using test::click;
using test::WindowWorld;

// The sheet opened from the window's Tidy command.
TidySheet& openSheet(WindowWorld& world) {
    world.window().findChild<QAction*>("tidyAction")->trigger();
    TidySheet* sheet = world.window().tidySheet();
    EXPECT_TRUE(sheet && sheet->isVisible());
    return *sheet;
}

QString summary(const TidySheet& sheet) {
    return test::child<QLabel>(&sheet, "previewSummary")->text();
}

QPushButton& runButton(const TidySheet& sheet) {
    return *test::child<QPushButton>(&sheet, "runButton");
}

// What the preview's rows say, one string each.
std::vector<std::string> rows(const TidySheet& sheet) {
    std::vector<std::string> out;
    for (const QWidget* row : sheet.findChildren<QWidget*>("previewRow"))
        out.push_back(row->accessibleName().toStdString());
    return out;
}

TEST(TidySheet, withEverythingFiledThereIsNothingToMove) {
    WindowWorld world;
    std::vector<Shot> shots;
    for (const char* name : {"receipt.png", "bill.png"}) {
        Shot probe(world.archive() + "/x/" + name, 0, {}, {});
        probe.guess = Shelf::bills;
        shots.push_back(world.drawn(
            tidyLayoutFolder(TidyLayout::byCategory, probe, world.archive()) + "/" + name,
            Shelf::bills, 3));
    }
    world.holding(shots);
    TidySheet& sheet = openSheet(world);

    EXPECT_EQ(summary(sheet), "No loose screenshots: they're all filed already.");
    EXPECT_FALSE(runButton(sheet).isEnabled());
    EXPECT_EQ(runButton(sheet).text(), "Move 0 Screenshots");
    click(&sheet, "scopeEverything");
    EXPECT_EQ(summary(sheet), "Everything here is already in place.");
    EXPECT_FALSE(runButton(sheet).isEnabled());
    click(&sheet, "clearMode");
    EXPECT_EQ(summary(sheet), "Nothing that old. Nice.");
    EXPECT_FALSE(runButton(sheet).isEnabled());
}

// Clearing out puts exactly the read screenshots older than the chosen age in the Trash.
TEST(TidySheet, clearingOutTakesTheReadOnesOlderThanTheAge) {
    const struct {
        const char* age;
        std::set<std::string> trashed;
    } cases[] = {
        {"age30", {"d40.png", "d100.png", "d181.png", "d183.png", "d400.png"}},
        {"age90", {"d100.png", "d181.png", "d183.png", "d400.png"}},
        {"age182", {"d183.png", "d400.png"}},
        {"age365", {"d400.png"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.age);
        WindowWorld world;
        std::vector<Shot> shots;
        const std::pair<const char*, double> ages[] = {{"d10.png", 10},     {"d40.png", 40},
                                                       {"d100.png", 100},   {"d181.png", 181.9},
                                                       {"d183.png", 182.1}, {"d400.png", 400}};
        for (const auto& [name, days] : ages)
            shots.push_back(world.drawn(world.shot(name), Shelf::chats, days));
        Shot unread = world.drawn(world.shot("unread.png"), Shelf::chats, 500);
        unread.readAt.reset();
        shots.push_back(unread);
        world.holding(shots);
        TidySheet& sheet = openSheet(world);
        click(&sheet, "clearMode");
        click(&sheet, c.age);

        EXPECT_EQ(runButton(sheet).text().toStdString(),
                  "Move " + std::to_string(c.trashed.size()) + " to Trash");
        EXPECT_EQ(summary(sheet), "By shelf");
        EXPECT_EQ(rows(sheet),
                  std::vector<std::string>{"Chats: " + std::to_string(c.trashed.size())});
        click(&sheet, "runButton");
        std::set<std::string> gone;
        for (const Shot& shot : shots)
            if (!fs::exists(shot.path)) gone.insert(std::string(lastComponent(shot.path)));
        EXPECT_EQ(gone, c.trashed);
        EXPECT_EQ(world.questions.size(), 1u);
        QApplication::processEvents();
        EXPECT_FALSE(world.window().tidySheet()) << "a run closes the sheet";
    }
}

// With private ones left alone, the ID card is neither filed nor trashed; without, it is.
TEST(TidySheet, leavingPrivateOnesAloneKeepsTheIdCardOut) {
    const struct {
        const char* mode;
        bool keepPrivate;
        const char* button;
        bool idMoves;
    } cases[] = {
        {"fileMode", true, "Move 1 Screenshot", false},
        {"fileMode", false, "Move 2 Screenshots", true},
        {"clearMode", true, "Move 1 to Trash", false},
        {"clearMode", false, "Move 2 to Trash", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.mode) +
                     (c.keepPrivate ? " keeping private ones" : " with private ones"));
        WindowWorld world;
        const Shot id = world.drawn(world.shot("passport.png"), Shelf::ids, 200);
        const Shot bill = world.drawn(world.shot("receipt.png"), Shelf::bills, 200);
        world.holding({id, bill});
        TidySheet& sheet = openSheet(world);
        click(&sheet, c.mode);
        EXPECT_TRUE(test::child<QCheckBox>(&sheet, "keepPrivate")->isChecked())
            << "on from the start";
        if (!c.keepPrivate) click(&sheet, "keepPrivate");
        EXPECT_EQ(runButton(sheet).text().toStdString(), c.button);
        click(&sheet, "runButton");
        EXPECT_FALSE(fs::exists(bill.path));
        EXPECT_EQ(fs::exists(id.path), !c.idMoves);
    }
}

// Filed from the sheet with new names, then put back from the banner.
TEST(TidySheet, filingFromTheSheetCanBeUndoneFromTheBanner) {
    WindowWorld world;
    std::vector<Shot> shots;
    for (const char* name : {"a.png", "b.png", "c.png"})
        shots.push_back(world.drawn(world.shot(name), Shelf::bills, 2));
    world.holding(shots);
    TidySheet& sheet = openSheet(world);
    EXPECT_EQ(summary(sheet), "3 to move");
    click(&sheet, "renameBox");
    const auto previewed = rows(sheet);
    ASSERT_EQ(previewed.size(), 3u);
    for (const Shot& shot : shots) {
        const std::string row = std::string(lastComponent(shot.path)) + " to ";
        const auto found = std::find_if(previewed.begin(), previewed.end(),
                                        [&](const std::string& r) { return r.starts_with(row); });
        ASSERT_NE(found, previewed.end()) << row;
        EXPECT_TRUE(found->ends_with(Tidy::suggestedName(shot))) << *found;
    }
    EXPECT_EQ(runButton(sheet).text(), "Move 3 Screenshots");
    click(&sheet, "runButton");
    QApplication::processEvents();
    EXPECT_FALSE(world.window().tidySheet());
    for (const Shot& shot : shots)
        EXPECT_FALSE(fs::exists(shot.path));
    EXPECT_EQ(test::bannerOf(*world.model), "Moved 3 screenshots [undo]");
    click(&world.window(), "bannerUndo");
    for (const Shot& shot : shots)
        EXPECT_TRUE(fs::exists(shot.path)) << shot.path;
    EXPECT_EQ(test::bannerOf(*world.model), "Put 3 screenshots back");
    world.model->waitUntilIdle();
}

} // namespace
} // namespace lumivale
