#pragma once

// What the application-model tests share: a Qt application, a scheduler whose time the test
// moves, and pictures with words on them for the real reader.

#include "app/AppModel.h"
#include "app/Scheduler.h"
#include "platform/Trash.h"
#include "reading/Reader.h"
#include "support/TempDir.h"

#include <QGuiApplication>
#include <QPainter>
#include <QSettings>
#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sys/stat.h>
#include <tuple>

namespace lumivale::test {

inline void ensureQtApp() {
    static int argc = 1;
    static char name[] = "lumivale-test", *argv[] = {name, nullptr};
    if (!QGuiApplication::instance()) new QGuiApplication(argc, argv);
}

// A scheduler whose clock only moves when the test says so.
struct FakeScheduler : Scheduler {
    struct Entry : Timer {
        explicit Entry(std::function<void()> run) : run(std::move(run)) {}
        void cancel() override { cancelled = true; }
        std::function<void()> run;
        bool cancelled = false;
    };
    std::chrono::milliseconds now{0};
    std::multimap<std::chrono::milliseconds, std::shared_ptr<Entry>> entries; // by when due

    std::shared_ptr<Timer> after(std::chrono::milliseconds delay, QObject*,
                                 std::function<void()> run) override {
        return entries.emplace(now + delay, std::make_shared<Entry>(std::move(run)))->second;
    }

    // Moves time on, running every call that falls due, in order.
    void advance(std::chrono::milliseconds by) {
        const auto until = now + by;
        while (!entries.empty() && entries.begin()->first <= until) {
            const auto [due, entry] = *entries.begin();
            entries.erase(entries.begin());
            now = due;
            if (!entry->cancelled) entry->run();
        }
        now = until;
    }

    // The delays of the calls still waiting, from now.
    std::vector<std::chrono::milliseconds> pending() const {
        std::vector<std::chrono::milliseconds> out;
        for (const auto& [due, entry] : entries)
            if (!entry->cancelled) out.push_back(due - now);
        return out;
    }
};

// Draws dark lines of text on a light picture, big enough to read, and saves it.
inline void drawPicture(const std::string& path, const std::vector<std::string>& lines) {
    QImage image(800, 80 + 70 * static_cast<int>(lines.size()), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font("Liberation Sans");
    font.setPixelSize(36);
    painter.setFont(font);
    for (size_t i = 0; i < lines.size(); ++i)
        painter.drawText(40, 70 + 70 * static_cast<int>(i), QString::fromStdString(lines[i]));
    painter.end();
    image.save(QString::fromStdString(path));
}

// The record of a picture on disk as a scan would have stored it after reading its name on it:
// same size and dates, so a later scan leaves it alone.
inline Shot readShotOf(const std::string& path, Shelf guess, Date readAt) {
    struct stat st {};
    ::stat(path.c_str(), &st);
    const Date modified(std::chrono::seconds(st.st_mtim.tv_sec) +
                        std::chrono::nanoseconds(st.st_mtim.tv_nsec));
    Shot shot(path, static_cast<int64_t>(st.st_size), modified, modified);
    shot.setLines({{std::string(shot.name()), 0.1f, 0.5f, 0.5f, 0.05f}});
    shot.guess = guess;
    shot.readAt = readAt;
    shot.reader = readerVersion;
    return shot;
}

// What the model's banner says, marked " [error]" and " [undo]" when it is so; "" when none shows.
inline std::string bannerOf(const AppModel& model) {
    if (!model.banner()) return "";
    return model.banner()->text + (model.banner()->isError ? " [error]" : "") +
           (model.banner()->undo ? " [undo]" : "");
}

// A keyring that refuses with this code.
struct RefusingKey : VaultKeySource {
    explicit RefusingKey(int32_t code) : code(code) {}
    VaultResult<VaultKey> key() override { return VaultError::keychain(code); }
    const int32_t code;
};

// A question the model put to the user: message, detail, button.
using Question = std::tuple<std::string, std::string, std::string>;

// A model over a temporary tree whose questions, owner check, key, Trash (the real one, in the
// tree), clock, timers and reader (the real one, counted) the test holds. Folder watching is off
// unless a test turns it on.
class World {
  public:
    World() {
        ensureQtApp();
        std::filesystem::create_directories(shots());
        settings.setValue("watchFolders", false);
        ::setenv("XDG_DATA_HOME", tmp.file("share").c_str(), 1); // a Trash of its own
    }

    std::string shots() const { return tmp.file("Screenshots"); }
    std::string shot(const std::string& name) const { return shots() + "/" + name; }
    std::string archive() const { return tmp.file("Archive"); }
    std::string trashFolder() const { return tmp.file("share/Trash/files"); }

    // A model, not yet loaded.
    AppModel& make() {
        AppModel::Services s;
        s.clock = [this] { return clock; };
        s.scheduler = scheduler;
        s.confirm = [this](const std::string& m, const std::string& d, const std::string& b) {
            questions.push_back({m, d, b});
            return agree;
        };
        s.authenticate = [this](const std::string& reason) {
            reasons.push_back(reason);
            return owner;
        };
        s.keySource = keys;
        s.trasher = [this](const std::string& path) {
            return refused.count(path) ? TrashOutcome::failure("The Trash is not available")
                                       : Trash::systemTrash(path);
        };
        s.read = read;
        model = std::make_unique<AppModel>(Paths::at(tmp.file("data"), shots(), archive()),
                                           settings, s);
        return *model;
    }

    // A loaded model whose library holds read records, guessed onto `shelf`, of pictures of
    // these names drawn into the screenshot folder with their names on them.
    AppModel& open(const std::vector<std::string>& names, Shelf shelf = Shelf::bills) {
        Library library;
        for (const std::string& name : names) {
            drawPicture(shot(name), {name});
            library.put(readShotOf(shot(name), shelf, clock - std::chrono::hours(24)));
        }
        EXPECT_TRUE(library.save(tmp.file("data/library.plist")));
        return loaded();
    }

    // A model that has loaded what the data folder holds.
    AppModel& loaded() {
        make().load();
        return *model;
    }

    TempDir tmp;
    QSettings settings{QString::fromStdString(tmp.file("settings.ini")), QSettings::IniFormat};
    std::shared_ptr<FakeScheduler> scheduler = std::make_shared<FakeScheduler>();
    Date clock = now();
    std::vector<Question> questions;
    bool agree = true;
    std::vector<std::string> reasons;
    bool owner = true;
    VaultKey key = VaultKey::random();
    std::shared_ptr<VaultKeySource> keys = std::make_shared<MemoryKey>(key);
    std::set<std::string> refused; // paths the Trash turns away
    std::atomic<int> reads{0};
    AppModel::ReadFn read = [this](const std::string& path, const std::vector<std::string>& langs) {
        ++reads;
        return Reader::read(path, langs);
    };
    std::unique_ptr<AppModel> model;
};

} // namespace lumivale::test
