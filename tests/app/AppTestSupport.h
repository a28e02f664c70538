#pragma once

// What the application-model tests share: a Qt application, a scheduler whose time the test
// moves, and pictures with words on them for the real reader.

#include "app/AppModel.h"
#include "app/Scheduler.h"

#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace lumivale::test {

inline void ensureQtApp() {
    static int argc = 1;
    static char name[] = "lumivale-test";
    static char* argv[] = {name, nullptr};
    static QGuiApplication* app = QGuiApplication::instance() ? nullptr : new QGuiApplication(argc, argv);
    (void)app;
}

// A scheduler whose clock only moves when the test says so.
class FakeScheduler : public Scheduler {
public:
    struct Entry : Timer {
        std::chrono::milliseconds due;
        std::function<void()> run;
        QPointer<QObject> context;
        bool cancelled = false;
        void cancel() override { cancelled = true; }
    };

    std::shared_ptr<Timer> after(std::chrono::milliseconds delay, QObject* context,
                                 std::function<void()> run) override {
        auto entry = std::make_shared<Entry>();
        entry->due = now_ + delay;
        entry->run = std::move(run);
        entry->context = context;
        entries_.push_back(entry);
        ++created_;
        return entry;
    }

    // How many calls were ever asked for.
    int created() const { return created_; }

    // Moves time on, running every call that falls due, in order.
    void advance(std::chrono::milliseconds by) {
        const auto until = now_ + by;
        for (;;) {
            auto next = std::min_element(entries_.begin(), entries_.end(), [](const auto& a, const auto& b) {
                return a->due < b->due;
            });
            if (next == entries_.end() || (*next)->due > until)
                break;
            auto entry = *next;
            entries_.erase(next);
            now_ = entry->due;
            if (!entry->cancelled && entry->context)
                entry->run();
        }
        now_ = until;
    }

    // The delays of the calls still waiting, from now.
    std::vector<std::chrono::milliseconds> pending() const {
        std::vector<std::chrono::milliseconds> out;
        for (const auto& e : entries_)
            if (!e->cancelled)
                out.push_back(e->due - now_);
        return out;
    }

    std::chrono::milliseconds now() const { return now_; }

private:
    std::chrono::milliseconds now_{0};
    int created_ = 0;
    std::vector<std::shared_ptr<Entry>> entries_;
};

// Draws dark lines of text on a light picture, big enough to read, and saves it.
inline void drawPicture(const std::string& path, const std::vector<std::string>& lines, int width = 900) {
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

} // namespace lumivale::test
