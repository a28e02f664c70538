// The first-run welcome over a real model: nothing is read until Start, Start remembers it and
// reads the screenshot folder, and the next start goes straight to work.
#include "ui/WelcomeSheet.h"

#include "WindowWorld.h"

#include <QCheckBox>
#include <QLabel>

namespace lumivale {
namespace {

using test::click;
using test::WindowWorld;

TEST(WelcomeSheet, startRemembersTheWelcomeAndReadsTheFolders) {
    WindowWorld world;
    test::drawPicture(world.shot("receipt.png"), {"Total 12.50"});
    AppModel& model = world.make();
    world.window();
    model.start();
    WelcomeSheet* sheet = world.window().welcomeSheet();
    ASSERT_TRUE(sheet && sheet->isVisible());
    EXPECT_TRUE(test::child<QLabel>(sheet, "welcomeFolders")->text().contains("Screenshots"));
    EXPECT_FALSE(model.scanning()) << "nothing is read before Start";
    EXPECT_TRUE(model.watchedFolders().isEmpty());

    click(sheet, "blurPrivateBox");
    EXPECT_FALSE(model.blurPrivate());
    EXPECT_EQ(world.settings.value("blurPrivate"), false);
    click(sheet, "startButton");
    EXPECT_EQ(world.settings.value("welcomeDone"), true);
    EXPECT_FALSE(model.showWelcome());
    QApplication::processEvents();
    EXPECT_FALSE(world.window().welcomeSheet());
    model.waitUntilIdle();
    ASSERT_EQ(model.all().size(), 1u);
    EXPECT_TRUE(model.all().front()->isRead());

    world.window_.reset();
    AppModel& again = world.make();
    world.window();
    again.start();
    EXPECT_FALSE(again.showWelcome());
    EXPECT_FALSE(world.window().welcomeSheet()) << "the welcome shows once";
    again.waitUntilIdle();
}

} // namespace
} // namespace lumivale
