#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <functional>

namespace velmorquit {

/// Hears of Ctrl+C, in the event loop, in place of ending by it. There is one at a time.
class Interruption final : public QObject {
public:
    /// Where whoever started the process has it ignore that, it goes on doing so.
    explicit Interruption(std::function<void()> heard);
    ~Interruption() override;

private:
    QSocketNotifier notifier_;
};

} // namespace velmorquit
