#pragma once

#include "Loop/MainLoop.h"
#include "Loop/TimerQueue.h"

#include "Linux/Loop/ClockWatch.h"

#include <QObject>
#include <QTimer>

#include <map>

namespace velmorquit {

/// Qt's event loop as the main loop; created and used on the application object's thread.
class QtMainLoop final : public QObject, public MainLoop {
public:
    QtMainLoop();
    ~QtMainLoop() override;

    [[nodiscard]] WallTime now() const override;
    /// Doesn't count time that the computer spends asleep.
    [[nodiscard]] Uptime uptime() const override;
    void post(std::function<void()> work) override;
    [[nodiscard]] Handle after(Duration delay, std::function<void()> work) override;
    [[nodiscard]] Handle every(Duration interval, std::function<void()> work) override;
    [[nodiscard]] Handle background(std::function<void()> work,
                                    std::function<void()> done) override;
    [[nodiscard]] Handle observe(ClockEvent event, std::function<void()> told) override {
        return clock_.observe(event, std::move(told));
    }

private:
    /// Called when work on another thread is done.
    struct Pending final : Handle::Source {
        void cancel(std::uint64_t id) noexcept override { done.erase(id); }
        std::map<std::uint64_t, std::function<void()>> done;
        std::uint64_t lastId = 0;
    };

    void armTimer();
    void runDueTimers();

    ClockWatch clock_;
    TimerQueue timers_;
    QTimer timer_;
    std::shared_ptr<Pending> pending_ = std::make_shared<Pending>();
};

} // namespace velmorquit
