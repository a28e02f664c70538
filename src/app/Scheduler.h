#pragma once

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

namespace lumivale {

// A pending delayed call; cancelling it (or dropping the last handle to a cancelled one)
// keeps it from running.
class Timer {
public:
    virtual ~Timer() = default;
    virtual void cancel() = 0;
};

// Runs a function on the main thread after a delay. The model's timers (rescan debounce,
// reveal, banner, auto-lock) go through it, so tests can drive time themselves.
class Scheduler {
public:
    virtual ~Scheduler() = default;
    // Calls `run` once, `delay` from now, unless cancelled or `context` is gone by then.
    virtual std::shared_ptr<Timer> after(std::chrono::milliseconds delay, QObject* context,
                                         std::function<void()> run) = 0;
};

// The real scheduler, on Qt's timers.
class QtScheduler : public Scheduler {
public:
    std::shared_ptr<Timer> after(std::chrono::milliseconds delay, QObject* context,
                                 std::function<void()> run) override;
};

} // namespace lumivale
