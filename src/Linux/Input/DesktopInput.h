#pragma once

#include "Linux/Input/IdleSource.h"
#include "Loop/MainLoop.h"
#include "Platform/InputActivity.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <map>
#include <memory>

namespace velmorquit {

/// When the user touched the keyboard or the pointer last, by what the display server and the
/// compositor know.
///
/// A whole X server knows of all input, so its word is enough. One that is a guest on a Wayland
/// session hears only of what was meant for X windows: somebody may have been there since, which a
/// compositor knows. Of those that answer the most recent input counts.
///
/// Compositors are asked over the session bus: GNOME's idle monitor, and the screen locker of
/// Plasma. The latter is asked by a name that only Plasma's has, since what others answer to the
/// same call are whole seconds, or seconds since the session counted as idle. Its zero is no
/// answer: it is what it says on Wayland, where it doesn't know.
class DesktopInput final : public InputActivity {
public:
    static constexpr Duration patience = 1s;

    enum class Server {
        whole, ///< all windows of the session are that server's
        guest, ///< a part of them
    };

    /// `bus` is the session bus, connected or not. The loop outlives it, and so does what asks the
    /// display server, which may be null.
    DesktopInput(MainLoop& loop, QDBusConnection bus, IdleSource* idle, Server server);

    /// Asks the display server a short question, and the others without waiting. Nobody is started
    /// in order to be asked.
    [[nodiscard]] Handle sinceLastInput(std::function<void(std::optional<Duration>)> told) override;

    /// What the display server alone knows, by a short question.
    [[nodiscard]] std::optional<Duration> askServer();

private:
    struct Question;
    struct Questions final : Handle::Source {
        void cancel(std::uint64_t id) noexcept override;

        std::map<std::uint64_t, std::unique_ptr<Question>> byId;
        std::uint64_t lastId = 0;
    };

    void askCompositor(std::uint64_t id, const QDBusMessage& message);
    void hear(std::uint64_t id, const QDBusMessage& answer);
    void finishIn(Duration wait, std::uint64_t id);

    MainLoop& loop_;
    QDBusConnection bus_;
    IdleSource* idle_;
    Server server_;
    std::shared_ptr<Questions> questions_;
};

} // namespace velmorquit
