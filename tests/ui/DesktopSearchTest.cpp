// The desktop's search as GNOME Shell and KRunner use it: each test starts a private session bus,
// puts the providers on it over a real model, and calls them with gdbus, as the shell would.
#include "ui/DesktopSearch.h"

#include "app/AppTestSupport.h"
#include "app/ThumbnailCache.h"

#include <QEventLoop>
#include <QProcess>
#include <QRegularExpression>
#include <QTimer>
#include <sys/time.h>

namespace fs = std::filesystem;

namespace lumivale {
namespace {

using Meta = std::map<std::string, std::string>;

// A session bus of the test's own, gone with it.
struct PrivateBus {
    PrivateBus() {
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        if (daemon.waitForReadyRead(10000)) address = daemon.readLine().trimmed().toStdString();
        connection = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(QString::fromStdString(address), "desktop-search-test"));
    }
    ~PrivateBus() {
        QDBusConnection::disconnectFromBus("desktop-search-test");
        daemon.kill();
        daemon.waitForFinished();
    }

    QProcess daemon;
    std::string address;
    std::unique_ptr<QDBusConnection> connection;
};

// A model with four screenshots drawn and read and one waiting to be read, on a bus that answers
// for the application.
struct Desktop : test::World {
    Desktop() {
        bill = put("bill.png", Shelf::bills, {}, 1, {"Electricity bill", "Total due 1,250.00"});
        card = put("card.png", Shelf::bills, {SensitiveKind::cardNumber}, 2,
                   {"Payment card", "4111 1111 1111 1111", "Total due 99"});
        chat = put("chat.png", Shelf::chats, {}, 3, {"Asha", "See you at the cafe"});
        passport = put("passport.png", Shelf::ids, {}, 4, {"Travel document", "zebra crossing"});
        Shot waiting(shot("Screenshot waiting.png"), 1, clock, clock);
        test::drawPicture(waiting.path, {"plain"});
        library.put(waiting);
        EXPECT_TRUE(library.save(tmp.file("data/library.plist")));
        loaded();
        EXPECT_TRUE(bus.connection->isConnected()) << "no private bus at " << bus.address;
        const Status registered = DesktopSearch::registerOn(
            *bus.connection, *model,
            {[this](const std::string& path) { shown.push_back(path); },
             [this](const std::string& query) { searched.push_back(query); }});
        EXPECT_TRUE(registered) << registered.message();
        EXPECT_TRUE(bus.connection->registerService("app.orvane.lumivale"));
    }

    // A read record of a picture drawn with these lines, dated `daysAgo` before the clock.
    std::string put(const std::string& name, Shelf shelf, SensitiveKinds flags, int daysAgo,
                    const std::vector<std::string>& lines) {
        const std::string path = shot(name);
        test::drawPicture(path, lines);
        const time_t when = std::chrono::system_clock::to_time_t(clock) - daysAgo * 86400;
        const timeval times[2] = {{when, 0}, {when, 0}};
        ::utimes(path.c_str(), times);
        Shot read = test::readShotOf(path, shelf, clock);
        std::vector<TextLine> placed;
        for (size_t i = 0; i < lines.size(); ++i)
            placed.push_back({lines[i], 0.1f, 0.9f - 0.1f * static_cast<float>(i), 0.6f, 0.05f});
        read.setLines(placed);
        read.flags = flags;
        library.put(read);
        return path;
    }

    // What gdbus prints for a call of `method` on `object`, the event loop turning meanwhile.
    std::string call(const char* object, const std::string& method, const QStringList& args) {
        QProcess gdbus;
        gdbus.start("gdbus", QStringList{"call", "--address", QString::fromStdString(bus.address),
                                         "--dest", "app.orvane.lumivale", "--object-path", object,
                                         "--method", QString::fromStdString(method)} +
                                 args);
        QEventLoop loop;
        QObject::connect(&gdbus, &QProcess::finished, &loop, &QEventLoop::quit);
        QTimer::singleShot(30000, &loop, &QEventLoop::quit);
        if (gdbus.state() != QProcess::NotRunning) loop.exec();
        EXPECT_EQ(gdbus.exitCode(), 0) << gdbus.readAllStandardError().toStdString();
        return gdbus.readAllStandardOutput().toStdString();
    }
    std::string gnome(const std::string& method, const QStringList& args) {
        return call(DesktopSearch::gnomeShellPath, "org.gnome.Shell.SearchProvider2." + method,
                    args);
    }
    std::string krunner(const std::string& method, const QStringList& args) {
        return call(DesktopSearch::krunnerPath, "org.kde.krunner1." + method, args);
    }

    // The ids GNOME Shell gets for its terms.
    std::vector<std::string> gnomeFinds(const QStringList& terms) {
        return quoted(gnome("GetInitialResultSet", {list(terms)}));
    }
    // The metas GNOME Shell gets for these ids, by id.
    std::map<std::string, Meta> gnomeMetas(const std::vector<std::string>& ids) {
        QStringList asked;
        for (const std::string& id : ids)
            asked << QString::fromStdString(id);
        std::map<std::string, Meta> metas;
        const QString printed = QString::fromStdString(gnome("GetResultMetas", {list(asked)}));
        for (const auto& dict : QRegularExpression(R"(\{('[^{}]*)\})").globalMatch(printed)) {
            Meta meta;
            for (const auto& entry :
                 QRegularExpression(R"('([\w-]+)': <'([^']*)'>)").globalMatch(dict.captured(1)))
                meta[entry.captured(1).toStdString()] = entry.captured(2).toStdString();
            metas[meta["id"]] = meta;
        }
        return metas;
    }
    // KRunner's matches for a query, by id: text, icon, subtext and the icon's pixel size.
    std::map<std::string, Meta> krunnerMatches(const std::string& query,
                                               std::vector<std::string>* order = nullptr) {
        const QString printed =
            QString::fromStdString(krunner("Match", {QString::fromStdString("'" + query + "'")}));
        std::map<std::string, Meta> matches;
        static const QRegularExpression match(
            R"(\('([^']*)', '([^']*)', '([^']*)', (\d+), ([\d.e-]+), \{(.*?)\}\))");
        for (const auto& m : match.globalMatch(printed)) {
            Meta meta{{"text", m.captured(2).toStdString()}, {"icon", m.captured(3).toStdString()}};
            const QString properties = m.captured(6);
            if (const auto sub = QRegularExpression(R"('subtext': <'([^']*)'>)").match(properties);
                sub.hasMatch())
                meta["subtext"] = sub.captured(1).toStdString();
            const auto icon =
                QRegularExpression(R"('icon-data': <\((\d+), (\d+), (\d+), true, 8, 4, )")
                    .match(properties);
            if (icon.hasMatch() && icon.captured(3).toInt() == 4 * icon.captured(1).toInt())
                meta["icon-data"] = (icon.captured(1) + "x" + icon.captured(2)).toStdString();
            if (order) order->push_back(m.captured(1).toStdString());
            matches[m.captured(1).toStdString()] = meta;
        }
        return matches;
    }

    static QString list(const QStringList& items) {
        QStringList quotedItems;
        for (const QString& item : items)
            quotedItems << "'" + item + "'";
        return "[" + quotedItems.join(", ") + "]";
    }
    static std::vector<std::string> quoted(const std::string& printed) {
        std::vector<std::string> out;
        for (const auto& m :
             QRegularExpression("'([^']*)'").globalMatch(QString::fromStdString(printed)))
            out.push_back(m.captured(1).toStdString());
        return out;
    }

    PrivateBus bus;
    Library library;
    std::string bill, card, chat, passport;
    std::vector<std::string> shown, searched;
};

TEST(DesktopSearch, bothProvidersFindTheShotsByTheirWordsBestFirst) {
    Desktop desktop;
    const struct {
        std::string typed;
        std::vector<std::string> found;
    } cases[] = {
        {"total", {desktop.bill, desktop.card}}, // equal scores: newest first
        {"TOTAL DUE 1250", {desktop.bill}},      // case and digit grouping do not count
        {"café asha", {desktop.chat}},
        {"\"due 99\"", {desktop.card}},
        {"screenshot waiting", {desktop.shot("Screenshot waiting.png")}}, // by its file name
        {"nowhere", {}},
        {"", {}},
        {"   ", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        std::vector<std::string> ranked;
        desktop.krunnerMatches(c.typed, &ranked);
        EXPECT_EQ(ranked, c.found);
        const QStringList terms = QString::fromStdString(c.typed).split(' ', Qt::SkipEmptyParts);
        EXPECT_EQ(desktop.gnomeFinds(terms), c.found);
    }
    // Refining searches afresh.
    EXPECT_EQ(Desktop::quoted(desktop.gnome("GetSubsearchResultSet",
                                            {Desktop::list({QString::fromStdString(desktop.bill),
                                                            QString::fromStdString(desktop.card)}),
                                             "['total', '99']"})),
              std::vector<std::string>{desktop.card});
}

TEST(DesktopSearch, resultsCarryTheTitleTheShelfWithTheHitLineAndAThumbnail) {
    Desktop desktop;
    const std::string waiting = desktop.shot("Screenshot waiting.png");
    const struct {
        std::string typed, id, name, description;
    } cases[] = {
        {"1250", desktop.bill, "Electricity bill", "Bills & receipts \u2014 Total due 1,250.00"},
        {"cafe", desktop.chat, "Asha", "Chats \u2014 See you at the cafe"},
        {"waiting", waiting, "Screenshot waiting.png", "Waiting to be read"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        ASSERT_EQ(desktop.gnomeFinds({QString::fromStdString(c.typed)}),
                  std::vector<std::string>{c.id});
        Meta meta = desktop.gnomeMetas({c.id})[c.id];
        EXPECT_EQ(meta["name"], c.name);
        EXPECT_EQ(meta["description"], c.description);
        EXPECT_FALSE(QImage(QString::fromStdString(meta["gicon"])).isNull()) << meta["gicon"];

        Meta match = desktop.krunnerMatches(c.typed)[c.id];
        EXPECT_EQ(match["text"], c.name);
        EXPECT_EQ(match["subtext"], c.description);
        EXPECT_TRUE(match["icon-data"].starts_with("96x")) << match["icon-data"];
    }
    // A read shot's thumbnail is the shared cache's, written there for other programs too; a shot
    // not yet read, which may turn out private, is shown from its picture and never cached.
    const Meta bill = desktop.gnomeMetas({desktop.bill})[desktop.bill];
    EXPECT_EQ(bill.at("gicon"), ThumbnailCache::pathOf(desktop.bill, ThumbnailCache::Size::normal));
    EXPECT_EQ(desktop.gnomeMetas({waiting})[waiting]["gicon"], waiting);
    EXPECT_FALSE(fs::exists(ThumbnailCache::pathOf(waiting, ThumbnailCache::Size::normal)));
}

TEST(DesktopSearch, aPrivateShotShowsOnlyItsShelfWhileBlurringIsOn) {
    Desktop desktop;
    for (const bool blur : {true, false}) {
        SCOPED_TRACE(blur ? "blurring" : "not blurring");
        desktop.model->setBlurPrivate(blur);
        desktop.gnomeFinds({"total"}); // the shell always searches before it asks for metas
        const std::string printed =
            desktop.gnome("GetResultMetas",
                          {Desktop::list({QString::fromStdString(desktop.card)})}) +
            desktop.krunner("Match", {"'4111'"});
        for (const char* word : {"Payment", "4111", "due 99"})
            EXPECT_EQ(printed.find(word) == std::string::npos, blur) << word;

        Meta meta = desktop.gnomeMetas({desktop.card})[desktop.card];
        Meta match = desktop.krunnerMatches("total")[desktop.card];
        if (blur) {
            EXPECT_EQ(meta, (Meta{{"id", desktop.card},
                                  {"name", "Bills & receipts"},
                                  {"description", "Private"},
                                  {"gicon", "security-high"}}));
            EXPECT_EQ(match, (Meta{{"text", "Bills & receipts"},
                                   {"icon", "security-high"},
                                   {"subtext", "Private"}}));
        } else {
            EXPECT_EQ(meta["name"], "Payment card");
            EXPECT_EQ(meta["description"], "Bills & receipts \u2014 Total due 99");
            EXPECT_EQ(meta["gicon"], desktop.card); // the picture itself: private, so never cached
            EXPECT_EQ(match["subtext"], "Bills & receipts \u2014 Total due 99");
            EXPECT_FALSE(match["icon-data"].empty());
        }
        EXPECT_FALSE(
            fs::exists(ThumbnailCache::pathOf(desktop.card, ThumbnailCache::Size::normal)));
    }
}

TEST(DesktopSearch, aLockedShotNeverShows) {
    Desktop desktop;
    ASSERT_EQ(desktop.gnomeFinds({"zebra"}), std::vector<std::string>{desktop.passport});
    desktop.model->setBlurPrivate(false); // even with nothing blurred
    desktop.model->lock({desktop.passport});
    ASSERT_FALSE(desktop.model->library().find(desktop.passport));
    ASSERT_EQ(desktop.model->vaultCount(), 1);

    EXPECT_TRUE(desktop.gnomeFinds({"zebra"}).empty());
    EXPECT_TRUE(desktop.krunnerMatches("zebra").empty());
    // Nor through an id the shell still holds from before.
    const std::string printed = desktop.gnome(
        "GetResultMetas", {Desktop::list({QString::fromStdString(desktop.passport)})});
    EXPECT_EQ(printed.find("Travel"), std::string::npos) << printed;
    EXPECT_TRUE(desktop.gnomeMetas({desktop.passport}).empty());
    desktop.gnome("ActivateResult",
                  {"'" + QString::fromStdString(desktop.passport) + "'", "['zebra']", "0"});
    desktop.krunner("Run", {"'" + QString::fromStdString(desktop.passport) + "'", "''"});
    EXPECT_TRUE(desktop.shown.empty());
}

TEST(DesktopSearch, activatingOpensTheShotAndLaunchingOpensTheSearch) {
    Desktop desktop;
    const QString bill = "'" + QString::fromStdString(desktop.bill) + "'";
    desktop.gnome("ActivateResult", {bill, "['total']", "1234"});
    desktop.krunner("Run", {"'" + QString::fromStdString(desktop.card) + "'", "''"});
    desktop.gnome("ActivateResult", {"'/nowhere.png'", "['total']", "0"});
    EXPECT_EQ(desktop.shown, (std::vector<std::string>{desktop.bill, desktop.card}));

    desktop.gnome("LaunchSearch", {"['total', 'due']", "0"});
    EXPECT_EQ(desktop.searched, std::vector<std::string>{"total due"});
    EXPECT_EQ(desktop.krunner("Actions", {}), "(@a(sss) [],)\n");
}

TEST(DesktopSearch, aFailedRegistrationSaysWhyAndLeavesTheFirstAnswering) {
    Desktop desktop;
    QDBusConnection nowhere = QDBusConnection::connectToBus(
        QString("unix:path=") + desktop.tmp.file("no-bus").c_str(), "nowhere");
    const struct {
        QDBusConnection* connection;
        std::string reason;
    } cases[] = {
        {desktop.bus.connection.get(),
         "The object path /app/orvane/lumivale/SearchProvider is taken on the bus."},
        {&nowhere, "Not connected to the session bus: "},
    };
    for (const auto& c : cases) {
        const Status registered = DesktopSearch::registerOn(*c.connection, *desktop.model, {});
        EXPECT_FALSE(registered);
        EXPECT_TRUE(registered.message().starts_with(c.reason)) << registered.message();
    }
    QDBusConnection::disconnectFromBus("nowhere");
    EXPECT_EQ(desktop.gnomeFinds({"asha"}), std::vector<std::string>{desktop.chat});
}

} // namespace
} // namespace lumivale
