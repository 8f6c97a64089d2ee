#pragma once

#include "Linux/Input/IdleSource.h"
#include "Loop/MainLoop.h"
#include "Platform/InputActivity.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <map>
#include <memory>

namespace velmorquit {

/// The last time the user touched keyboard or pointer, as far as the display server and the
/// compositor know.
///
/// An X server that runs the session sees all input, so its answer is enough. One that is a guest
/// in a Wayland session sees only the input for X windows; the compositor may know of more recent
/// input. Of all answers the most recent input counts.
///
/// Compositors are asked over the session bus: GNOME's idle monitor, and Plasma's screen locker.
/// The latter is called by a name that only Plasma's has, since other services answer the same call
/// in whole seconds, or in seconds since the session became idle. A zero from it is no answer:
/// that is what it says on Wayland, where it doesn't know.
class DesktopInput final : public InputActivity {
public:
    static constexpr Duration patience = 1s;

    enum class Server {
        whole, ///< all windows of the session are on that server
        guest, ///< only some of them are
    };

    /// `bus` is the session bus, connected or not. The loop must outlive it, and so must `idle`,
    /// the source of the display server, which may be null.
    DesktopInput(MainLoop& loop, QDBusConnection bus, IdleSource* idle, Server server);

    /// Asks the display server a short question, and the others without waiting. No service is
    /// started for this.
    [[nodiscard]] Handle sinceLastInput(std::function<void(std::optional<Duration>)> told) override;

    /// The display server's knowledge alone, by a short question.
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
