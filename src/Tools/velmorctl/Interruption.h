#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <functional>

namespace velmorquit {

/// Reports Ctrl+C in the event loop, instead of ending the process. There is one at a time.
class Interruption final : public QObject {
public:
    /// If Ctrl+C was ignored when the process started, it stays ignored.
    explicit Interruption(std::function<void()> heard);
    ~Interruption() override;

private:
    QSocketNotifier notifier_;
};

} // namespace velmorquit
