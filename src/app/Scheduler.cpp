#include "app/Scheduler.h"

#include <QPointer>
#include <QTimer>

namespace lumivale {
namespace {

class QtTimer : public Timer {
public:
    QtTimer(std::chrono::milliseconds delay, QObject* context, std::function<void()> run)
        : timer_(new QTimer(context)) {
        timer_->setSingleShot(true);
        timer_->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer_, &QTimer::timeout, timer_, [t = timer_.data(), run = std::move(run)] {
            t->deleteLater();
            run();
        });
        timer_->start(delay);
    }
    ~QtTimer() override = default;
    void cancel() override {
        if (timer_) {
            timer_->stop();
            timer_->deleteLater();
        }
    }

private:
    QPointer<QTimer> timer_;
};

} // namespace

std::shared_ptr<Timer> QtScheduler::after(std::chrono::milliseconds delay, QObject* context,
                                          std::function<void()> run) {
    return std::make_shared<QtTimer>(delay, context, std::move(run));
}

} // namespace lumivale
