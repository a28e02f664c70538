// The main window driven as a person would: clicks, keys and typing, over a real model in a
// temporary home.
#include "WindowTestSupport.h"

#include "ui/Header.h"
#include "ui/Inspector.h"
#include "ui/Sidebar.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::Window;
using test::World;

struct MainWindowTest : ::testing::Test {
    MainWindowTest() { test::ensureWidgetsApp(); }
};

// Clicks the sidebar's row for a place.
void choose(Window& w, const Place& place) {
    auto* places = static_cast<SidebarModel*>(w.window.sidebar()->model());
    const QModelIndex index = places->index(places->rowOf(place));
    ASSERT_TRUE(index.isValid());
    QTest::mouseClick(w.window.sidebar()->viewport(), Qt::LeftButton, {},
                      w.window.sidebar()->visualRect(index).center());
}

// Clicks the grid's cell of a shot.
void click(Window& w, const std::string& path, Qt::KeyboardModifiers keys = {}) {
    const int row = w.window.grid()->listModel()->rowOf(path);
    ASSERT_GE(row, 0) << path;
    const QModelIndex index = w.window.grid()->listModel()->index(row);
    w.grid()->scrollTo(index);
    QTest::mouseClick(w.grid()->viewport(), Qt::LeftButton, keys, w.grid()->visualRect(index).center());
}

TEST_F(MainWindowTest, placesAndQueriesChangeTheGridAndKeepTheSelection) {
    World world;
    world.open({"Grand Total invoice.png", "Total fare ticket.png", "Chat with Mia.png"});
    world.model->setShelf(world.shot("Chat with Mia.png"), Shelf::chats);
    Window w(*world.model);

    choose(w, Place::of(Place::Kind::all));
    EXPECT_EQ(w.gridRows(), 3);
    choose(w, Place::ofShelf(Shelf::chats));
    EXPECT_EQ(w.gridNames(), std::vector<std::string>{"Chat with Mia.png"});
    EXPECT_EQ(world.model->place(), Place::ofShelf(Shelf::chats));

    choose(w, Place::of(Place::Kind::all));
    click(w, world.shot("Total fare ticket.png"));
    EXPECT_EQ(world.model->selection(), world.shot("Total fare ticket.png"));
    QTest::keyClicks(w.window.header()->search(), "total");
    EXPECT_EQ(world.model->query(), "total");
    EXPECT_EQ(w.gridRows(), 2);
    QTest::keyClicks(w.window.header()->search(), " fare");
    EXPECT_EQ(w.gridNames(), std::vector<std::string>{"Total fare ticket.png"});
    // The selected shot stayed selected through both narrowings.
    EXPECT_TRUE(w.grid()->selectionModel()->isSelected(w.grid()->currentIndex()));
    EXPECT_EQ(w.grid()->currentIndex().data(ShotListModel::PathRole).toString().toStdString(),
              world.shot("Total fare ticket.png"));

    w.window.header()->search()->clear();
    EXPECT_EQ(w.gridRows(), 3);
    EXPECT_EQ(w.grid()->currentIndex().data(ShotListModel::PathRole).toString().toStdString(),
              world.shot("Total fare ticket.png"));
}

TEST_F(MainWindowTest, theShelfPickerShelvesTheShotAndTheChoiceIsSaved) {
    World world;
    world.open({"a.png"});
    Window w(*world.model);
    choose(w, Place::of(Place::Kind::all));
    click(w, world.shot("a.png"));
    auto* picker = w.window.inspector()->findChild<QComboBox*>("shelfPicker");
    ASSERT_TRUE(picker);
    picker->setFocus();
    QTest::keyClicks(picker, "T"); // the first shelf that begins with T
    EXPECT_EQ(world.model->library().find(world.shot("a.png"))->manual, Shelf::tickets);
    EXPECT_EQ(picker->currentText(), "Tickets & bookings");
    QTest::qWait(QApplication::keyboardInputInterval() + 50); // a new word, not "TB"
    QTest::keyClicks(picker, "B"); // the sorter's own shelf: back to automatic
    EXPECT_EQ(world.model->library().find(world.shot("a.png"))->manual, std::nullopt);
    EXPECT_EQ(picker->currentIndex(), 0);
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    QTest::keyClicks(picker, "T");
    world.model->waitForSaves();
    const auto saved = Library::load(world.tmp.file("data/library.plist"));
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->find(world.shot("a.png"))->manual, Shelf::tickets);
}

TEST_F(MainWindowTest, privateShotsAreBlurredUntilRevealedAndAsTheSettingSays) {
    World world;
    world.open({"passport.png", "menu.png"});
    world.model->setShelf(world.shot("passport.png"), Shelf::ids);
    Window w(*world.model);
    choose(w, Place::of(Place::Kind::all));
    click(w, world.shot("passport.png"));
    const Shot& shot = *world.model->selected();

    QTRY_VERIFY(!w.thumbnails.thumbnail(shot, false).isNull());
    const auto cell = [&] {
        w.grid()->setFocus();
        const QModelIndex index = w.window.grid()->listModel()->index(w.window.grid()->listModel()->rowOf(shot.path));
        return w.grid()->viewport()->grab(w.grid()->visualRect(index)).toImage();
    };
    auto* reveal = w.window.inspector()->findChild<QPushButton*>("revealButton");
    auto* text = w.window.inspector()->findChild<QWidget*>("recognisedText");
    const QImage blurred = cell();
    EXPECT_TRUE(world.model->isHidden(shot));
    EXPECT_TRUE(reveal->isVisible());

    QTest::mouseClick(reveal, Qt::LeftButton);
    EXPECT_FALSE(world.model->isHidden(shot));
    EXPECT_FALSE(reveal->isVisible());
    EXPECT_TRUE(text->isVisible());
    const QImage shown = cell();
    EXPECT_NE(blurred, shown);

    world.scheduler->advance(30s); // the reveal ends by itself
    EXPECT_TRUE(reveal->isVisible());
    EXPECT_EQ(cell(), blurred);

    world.model->setBlurPrivate(false);
    EXPECT_FALSE(reveal->isVisible());
    EXPECT_EQ(cell(), shown);
}

TEST_F(MainWindowTest, deleteAsksThenTrashesTheSelectionAndTheBannersUndoPutsItBack) {
    World world;
    world.open({"a.png", "b.png", "c.png"});
    Window w(*world.model);
    choose(w, Place::of(Place::Kind::all));
    click(w, world.shot("a.png"));
    click(w, world.shot("c.png"), Qt::ControlModifier);
    w.grid()->setFocus();

    world.agree = false;
    QTest::keyClick(w.grid(), Qt::Key_Delete);
    ASSERT_EQ(world.questions.size(), 1u);
    EXPECT_EQ(std::get<0>(world.questions[0]), "Put 2 screenshots in the Trash?");
    EXPECT_TRUE(fs::exists(world.shot("a.png")));

    world.agree = true;
    QTest::keyClick(w.grid(), Qt::Key_Delete);
    EXPECT_FALSE(fs::exists(world.shot("a.png")));
    EXPECT_FALSE(fs::exists(world.shot("c.png")));
    EXPECT_TRUE(fs::exists(world.shot("b.png")));
    QTRY_COMPARE(w.gridRows(), 1);
    auto* banner = w.window.findChild<QWidget*>("banner");
    auto* undo = w.window.findChild<QPushButton*>("bannerUndo");
    EXPECT_TRUE(banner->isVisible());
    EXPECT_EQ(w.window.findChild<QLabel*>("bannerText")->text(), "Put in the Trash: 2 screenshots");

    QTest::mouseClick(undo, Qt::LeftButton);
    EXPECT_TRUE(fs::exists(world.shot("a.png")));
    EXPECT_TRUE(fs::exists(world.shot("c.png")));
    world.model->waitUntilIdle();
    QTRY_COMPARE(w.gridRows(), 3);
}

TEST_F(MainWindowTest, aScreenshotDroppedIntoTheWatchedFolderAppearsInTheGrid) {
    World world;
    world.settings.setValue("welcomeDone", true);
    world.open({"a.png"});
    Window w(*world.model);
    world.model->start();
    world.model->setWatch(true);
    world.model->waitUntilIdle();
    choose(w, Place::of(Place::Kind::all));
    ASSERT_EQ(w.gridRows(), 1);

    test::drawPicture(world.tmp.file("new.png"), {"Boarding Pass", "Gate 22  Seat 14C"});
    fs::rename(world.tmp.file("new.png"), world.shot("new.png"));
    // The watcher asks for a rescan after a quiet moment, which the test's clock lets pass.
    QTRY_VERIFY(!world.scheduler->pending().empty());
    world.scheduler->advance(1200ms);
    world.model->waitUntilIdle();
    QTRY_COMPARE(w.gridRows(), 2);
    EXPECT_EQ(world.model->library().find(world.shot("new.png"))->category(), Shelf::tickets);
}

TEST_F(MainWindowTest, everyControlHasANameAndTabReachesEachPane) {
    World world;
    world.open({"a.png"});
    world.model->setShelf(world.shot("a.png"), Shelf::ids);
    Window w(*world.model);
    choose(w, Place::of(Place::Kind::all));
    click(w, world.shot("a.png"));
    for (QWidget* widget : w.window.findChildren<QWidget*>()) {
        const bool control = qobject_cast<QAbstractButton*>(widget) || qobject_cast<QLineEdit*>(widget) ||
                             qobject_cast<QAbstractItemView*>(widget) || qobject_cast<QComboBox*>(widget);
        if (!control || !widget->isVisible())
            continue;
        QAccessibleInterface* node = QAccessible::queryAccessibleInterface(widget);
        ASSERT_TRUE(node);
        EXPECT_FALSE(node->text(QAccessible::Name).trimmed().isEmpty())
            << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    }

    w.window.sidebar()->setFocus();
    std::set<QString> reached;
    for (int i = 0; i < 40; ++i) {
        for (QWidget* at = QApplication::focusWidget(); at; at = at->parentWidget())
            reached.insert(at->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    for (const char* pane : {"sidebar", "searchField", "shotGrid", "inspector", "tidyButton"})
        EXPECT_TRUE(reached.count(pane)) << pane;
}

} // namespace
} // namespace lumivale
