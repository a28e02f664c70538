// The owner check as the window makes it: the confirmation in a dialog, then polkit (a mock
// authority, python3-dbusmock, on a private bus), and where polkit cannot ask the user, our own
// password dialog, whose password real PAM checks (pam_wrapper with pam_matrix).
#include "ui/PasswordDialog.h"

#include "WindowWorld.h"
#include "support/ChildRun.h"
#include "ui/ShotGrid.h"
#include "ui/VaultView.h"
#include "ui/WindowApp.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <pwd.h>

using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::click;
using test::WindowWorld;

// Tells the mock authority what to answer, through its Mock interface.
void polkitAnswers(const std::string& call) {
    ASSERT_TRUE(
        test::runShell("gdbus call --system --dest org.freedesktop.PolicyKit1 --object-path "
                       "/org/freedesktop/PolicyKit1/Authority --method org.freedesktop.DBus.Mock." +
                       call));
}

TEST(PasswordDialog, theWindowAsksPolkitFirstThenForThePasswordItself) {
    const test::TempDir dir;
    const std::string module =
        test::runShell("ls /usr/lib/*/pam_wrapper/pam_matrix.so | head -n 1 | tr -d '\\n'")
            .value_or("pam_matrix.so");
    test::writeFile(dir.file("services/lumivale"),
                    "auth required " + module + "\naccount required " + module + "\n");
    if (!test::runsInChild({"window-auth",
                            {"bash", LUMIVALE_TEST_SOURCE_DIR "/tests/support/with-polkit-mock.sh",
                             "env", "LD_PRELOAD=libpam_wrapper.so", "PAM_WRAPPER=1",
                             "PAM_WRAPPER_SERVICE_DIR=" + dir.file("services")},
                            {},
                            120s}))
        return;
    const std::string password = "correct horse";
    setenv("PAM_MATRIX_PASSWD",
           test::writeFile(dir.file("passdb"), std::string(getpwuid(getuid())->pw_name) + ":" +
                                                   password + ":lumivale\n")
               .c_str(),
           1);

    WindowWorld world;
    test::drawPicture(world.shot("passport.png"), {"PASSPORT"});
    Library library;
    library.put(test::readShotOf(world.shot("passport.png"), Shelf::ids, world.clock));
    ASSERT_TRUE(library.save(world.tmp.file("data/library.plist")));
    AppModel::Services services;
    services.scheduler = world.scheduler;
    services.keySource = world.keys;
    services.read = world.read;
    world.model = std::make_unique<AppModel>(
        Paths::at(world.tmp.file("data"), world.shots(), world.archive()), world.settings,
        WindowApp::windowServices(services));
    AppModel& model = *world.model;
    model.load();
    MainWindow& window = world.window();

    // Locking from the grid: the question in a dialog whose default is Cancel, then polkit.
    polkitAnswers("SetAllowed \"['app.orvane.lumivale.unlock']\"");
    model.setPlace(Place::of(Place::Kind::all));
    model.setSelection(world.shot("passport.png"));
    QString question;
    QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        question = box->text();
        EXPECT_EQ(box->defaultButton()->objectName(), "cancelButton");
        QTest::mouseClick(box->findChild<QPushButton*>("confirmButton"), Qt::LeftButton);
    });
    window.grid()->view()->setFocus();
    window.findChild<QAction*>("lockAwayAction")->trigger();
    EXPECT_EQ(question, "Lock away 1 screenshot?");
    EXPECT_EQ(test::bannerOf(model), "Locked 1 screenshot. The originals are in the Trash.");
    ASSERT_EQ(model.vaultCount(), 1);

    const std::string noAgent =
        "AddMethod '' CheckAuthorization '(sa{sv})sa{ss}us' '(bba{ss})' 'ret = (False, True, {})'";
    const struct {
        const char* name;
        std::string polkit;
        bool asks;                        // our password dialog shows
        std::optional<std::string> typed; // typed into it, else Cancel
        bool opens;
    } cases[] = {
        {"polkit allows", "SetAllowed \"['app.orvane.lumivale.unlock']\"", false, std::nullopt,
         true},
        {"polkit refuses", "SetAllowed \"[]\"", false, std::nullopt, false},
        {"no agent: right password", noAgent, true, password, true},
        {"no agent: wrong password", noAgent, true, password + "!", false},
        {"no agent: cancelled", noAgent, true, std::nullopt, false},
    };
    model.setPlace(Place::of(Place::Kind::locked));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        model.lockVault();
        polkitAnswers(c.polkit);
        bool asked = false;
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<PasswordDialog*>(QApplication::activeModalWidget());
            if (!(asked = dialog)) return;
            EXPECT_EQ(test::child<QLabel>(dialog, "passwordReason")->text(),
                      "Lumivale needs your account password to open your locked screenshots.");
            if (!c.typed) {
                click(dialog, "cancelButton");
                return;
            }
            QTest::keyClicks(dialog->field(), QString::fromStdString(*c.typed));
            EXPECT_EQ(dialog->field()->length(), static_cast<int>(c.typed->size()));
            QTest::keyClick(dialog->field(), Qt::Key_Return);
        });
        click(window.vaultView(), "unlockButton");
        QApplication::processEvents();
        EXPECT_EQ(asked, c.asks);
        EXPECT_EQ(model.vaultOpen(), c.opens);
        EXPECT_EQ(test::child<QWidget>(window.vaultView(), "vaultOpen")->isVisible(), c.opens);
    }
}

} // namespace
} // namespace lumivale
