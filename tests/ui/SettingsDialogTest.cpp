// The settings over a real model: each control changes the model and the settings store at once,
// and the folder list adds, switches off and removes folders that the model then reads or skips.
#include "ui/SettingsDialog.h"

#include "WindowWorld.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>

namespace lumivale {
namespace {

using test::click;
using test::WindowWorld;

const Source* sourceAt(const AppModel& model, const std::string& path) {
    for (const Source& source : model.sources())
        if (source.path == path) return &source;
    return nullptr;
}

TEST(SettingsDialog, switchesReachTheModelAndTheStore) {
    const struct {
        const char* box;
        bool (AppModel::*value)() const;
        const char* key;
    } cases[] = {
        {"blurPrivateBox", &AppModel::blurPrivate, "blurPrivate"},
        {"watchBox", &AppModel::watch, "watchFolders"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.box);
        WindowWorld world;
        AppModel& model = world.open({"receipt.png"});
        SettingsDialog* dialog = world.window().showSettings();
        const bool before = (model.*c.value)();
        click(dialog, c.box);
        EXPECT_EQ((model.*c.value)(), !before);
        EXPECT_EQ(world.settings.value(c.key), !before);
        click(dialog, c.box);
        EXPECT_EQ((model.*c.value)(), before);
    }
    WindowWorld world;
    AppModel& model = world.open({"receipt.png"});
    model.setLockAfterMinutes(0);
    auto* minutes = test::child<QSpinBox>(world.window().showSettings(), "lockAfterBox");
    EXPECT_EQ(world.settings.value("lockAfterMinutes"), 0) << "showing a setting changes nothing";
    minutes->setFocus();
    minutes->selectAll();
    QTest::keyClicks(minutes, "12");
    EXPECT_EQ(model.lockAfterMinutes(), 12);
    EXPECT_EQ(world.settings.value("lockAfterMinutes"), 12);
}

TEST(SettingsDialog, foldersAreAddedSwitchedOffAndRemoved) {
    WindowWorld world;
    AppModel& model = world.open({"receipt.png"});
    const std::string extra = world.tmp.file("Phone");
    std::filesystem::create_directories(extra);
    test::drawPicture(extra + "/Screenshot 2026-01-01 at 10.00.00.png", {"Boarding pass"});
    SettingsDialog* dialog = world.window().showSettings();
    auto* list = test::child<QListWidget>(dialog, "folderList");

    test::nextFolderChosen(extra);
    click(dialog, "addFolderButton");
    ASSERT_TRUE(sourceAt(model, extra));
    EXPECT_EQ(sourceAt(model, extra)->kind, Source::Kind::added);
    model.waitUntilIdle();
    EXPECT_TRUE(model.library().find(extra + "/Screenshot 2026-01-01 at 10.00.00.png"))
        << "the added folder was read";
    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(list->item(0)->text(),
              QString::fromStdString(world.shots()) + " (screenshot folder)");

    // Space switches the chosen folder off, as in any list of check boxes.
    list->setFocus();
    list->setCurrentRow(0);
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_FALSE(sourceAt(model, world.shots())->enabled);
    EXPECT_EQ(model.library().skippedFolders, std::vector<std::string>{world.shots()});

    auto* remove = test::child<QPushButton>(dialog, "removeFolderButton");
    EXPECT_FALSE(remove->isEnabled()) << "the screenshot folder can only be switched off";
    list->setCurrentRow(1);
    ASSERT_TRUE(remove->isEnabled());
    click(dialog, "removeFolderButton");
    EXPECT_FALSE(sourceAt(model, extra));
    EXPECT_EQ(list->count(), 2);
    model.waitUntilIdle();
}

TEST(SettingsDialog, aFolderThatCannotBeOpenedIsMarked) {
    WindowWorld world;
    AppModel& model = world.open({"receipt.png"});
    const std::string notAFolder = test::writeFile(world.tmp.file("notes.txt"), "not a folder");
    model.addFolder(notAFolder);
    model.waitUntilIdle();
    auto* list = test::child<QListWidget>(world.window().showSettings(), "folderList");
    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(list->item(1)->text().toStdString(), notAFolder + " \u2014 can't be opened");
    EXPECT_EQ(list->item(0)->text().toStdString(), world.shots() + " (screenshot folder)");
}

TEST(SettingsDialog, theArchiveCanBeMoved) {
    WindowWorld world;
    AppModel& model = world.open({"receipt.png"});
    const std::string archive = world.tmp.file("Filed");
    std::filesystem::create_directories(archive);
    SettingsDialog* dialog = world.window().showSettings();
    test::nextFolderChosen(archive);
    click(dialog, "changeArchiveButton");
    EXPECT_EQ(model.paths().archive, archive);
    EXPECT_EQ(world.settings.value("archiveFolder").toString().toStdString(), archive);
    ASSERT_TRUE(sourceAt(model, archive));
    EXPECT_EQ(sourceAt(model, archive)->kind, Source::Kind::archive);
    EXPECT_FALSE(sourceAt(model, world.archive())) << "the old archive is no longer read";
    EXPECT_EQ(test::child<QLabel>(dialog, "archiveFolder")->toolTip().toStdString(), archive);
    model.waitUntilIdle();
}

} // namespace
} // namespace lumivale
