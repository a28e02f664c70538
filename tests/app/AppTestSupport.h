#pragma once

// What the application-model tests share: a Qt application, a scheduler whose time the test
// moves, and pictures with words on them for the real reader.

#include "app/AppModel.h"
#include "app/Scheduler.h"
#include "core/Reading.h"
#include "support/TempDir.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPointer>
#include <QSettings>
#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
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
        std::chrono::milliseconds due;
        std::function<void()> run;
        QPointer<QObject> context;
        bool cancelled = false;
        void cancel() override { cancelled = true; }
    };
    std::chrono::milliseconds now{0};
    int created = 0; // how many calls were ever asked for
    std::vector<std::shared_ptr<Entry>> entries;

    std::shared_ptr<Timer> after(std::chrono::milliseconds delay, QObject* context,
                                 std::function<void()> run) override {
        auto entry = std::make_shared<Entry>();
        entry->due = now + delay;
        entry->run = std::move(run);
        entry->context = context;
        ++created;
        return entries.emplace_back(entry);
    }

    // Moves time on, running every call that falls due, in order.
    void advance(std::chrono::milliseconds by) {
        const auto until = now + by;
        for (;;) {
            auto next =
                std::min_element(entries.begin(), entries.end(),
                                 [](const auto& a, const auto& b) { return a->due < b->due; });
            if (next == entries.end() || (*next)->due > until) break;
            const auto entry = *next;
            entries.erase(next);
            now = entry->due;
            if (!entry->cancelled && entry->context) entry->run();
        }
        now = until;
    }

    // The delays of the calls still waiting, from now.
    std::vector<std::chrono::milliseconds> pending() const {
        std::vector<std::chrono::milliseconds> out;
        for (const auto& e : entries)
            if (!e->cancelled) out.push_back(e->due - now);
        return out;
    }
};

// Draws dark lines of text on a light picture, big enough to read, and saves it.
inline void drawPicture(const std::string& path, const std::vector<std::string>& lines,
                        int width = 900) {
    QImage image(width, 80 + 70 * static_cast<int>(lines.size()), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font("Liberation Sans");
    font.setPixelSize(36);
    painter.setFont(font);
    painter.setPen(Qt::black);
    int y = 70;
    for (const std::string& line : lines) {
        painter.drawText(40, y, QString::fromStdString(line));
        y += 70;
    }
    painter.end();
    image.save(QString::fromStdString(path));
}

// The record of a picture on disk as a scan would have stored it after reading it: same size
// and dates, so a later scan leaves it alone.
inline Shot readShotOf(const std::string& path, Shelf guess, std::vector<std::string> words,
                       Date readAt) {
    struct stat st {};
    ::stat(path.c_str(), &st);
    const Date modified(std::chrono::seconds(st.st_mtim.tv_sec) +
                        std::chrono::nanoseconds(st.st_mtim.tv_nsec));
    Shot shot(path, static_cast<int64_t>(st.st_size), modified, modified);
    std::vector<TextLine> lines;
    for (std::string& text : words)
        lines.push_back({std::move(text), 0.1f, 0.5f, 0.5f, 0.05f});
    shot.setLines(std::move(lines));
    shot.guess = guess;
    shot.guessScore = 3;
    shot.readAt = readAt;
    shot.reader = readerVersion;
    return shot;
}

// A Trash of the test's own: files are moved into `folder` (numbered when the name is taken)
// and the new place is reported; paths in `refused` are turned away with `reason`.
struct FolderTrash {
    const std::string folder;
    std::set<std::string> refused;

    // How many files the folder holds.
    size_t size() const {
        std::error_code ec;
        return size_t(std::distance(std::filesystem::directory_iterator(folder, ec), {}));
    }

    Trasher trasher() {
        return [this](const std::string& path) {
            if (refused.count(path)) return TrashOutcome::failure("The Trash is not available");
            namespace fs = std::filesystem;
            fs::create_directories(folder);
            const std::string name = fs::path(path).filename().string();
            std::string target = folder + "/" + name;
            for (int n = 2; fs::exists(target); ++n)
                target = folder + "/" + std::to_string(n) + " " + name;
            std::error_code ec;
            fs::rename(path, target, ec);
            return ec ? TrashOutcome::failure(ec.message()) : TrashOutcome::landedAt(target);
        };
    }
};

// A keyring that refuses with this code.
struct RefusingKey : VaultKeySource {
    explicit RefusingKey(int32_t code) : code(code) {}
    VaultResult<VaultKey> key() override { return VaultError::keychain(code); }
    const int32_t code;
};

// A question the model put to the user: message, detail, button.
using Question = std::tuple<std::string, std::string, std::string>;

// A model over a temporary tree whose questions, owner check, key, Trash, clock, timers and
// reader the test holds. Folder watching is off unless a test turns it on.
class World {
  public:
    World() {
        ensureQtApp();
        std::filesystem::create_directories(shots());
        settings.setValue("watchFolders", false);
    }

    // The model's source at this path, if it has one.
    const Source* source(const std::string& path) const {
        for (const Source& s : model->sources())
            if (s.path == path) return &s;
        return nullptr;
    }
    std::string shots() const { return tmp.file("Screenshots"); }
    std::string shot(const std::string& name) const { return shots() + "/" + name; }
    std::string archive() const { return tmp.file("Archive"); }
    std::string vaultDir() const { return tmp.file("data/Locked"); }

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
        s.trasher = trash.trasher();
        s.read = read;
        model = std::make_unique<AppModel>(Paths::at(tmp.file("data"), shots(), archive()),
                                           settings, s);
        return *model;
    }

    // A loaded model whose library holds read records of these pictures, drawn into the
    // screenshot folder as name → words.
    AppModel& open(const std::vector<std::pair<std::string, Shelf>>& pictures) {
        Library library;
        for (const auto& [name, shelf] : pictures) {
            drawPicture(shot(name), {name, "words of " + name}, 400);
            library.put(readShotOf(shot(name), shelf, {name}, clock - std::chrono::hours(24)));
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
    FolderTrash trash{tmp.file("Trash")};
    std::atomic<int> reads{0};
    // Counts what is read and finds no words; empty for the real reader.
    AppModel::ReadFn read = [this](const std::string&, const std::vector<std::string>&) {
        ++reads;
        return Reading{};
    };
    std::unique_ptr<AppModel> model;
};

} // namespace lumivale::test
