#pragma once

#include "Linux/X11/X11Events.h"
#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"

#include <QLibrary>

#include <functional>
#include <map>
#include <memory>

namespace velmorquit {

/// Presses of pointer buttons, and touches, anywhere on the screen. The server reports them only
/// while somebody observes.
class X11Presses final : private X11Events::Listener {
public:
    /// The loop and the events must outlive it.
    X11Presses(MainLoop& loop, X11Events& events);

    /// Calls `pressed` in a later turn; once for all presses of a turn. The wheel isn't a button.
    [[nodiscard]] Handle observe(std::function<void()> pressed);

private:
    enum class Wanted { none, all };
    struct Observers final : Handle::Source {
        explicit Observers(X11Presses& whose) : presses(whose) {}
        void cancel(std::uint64_t id) noexcept override;

        X11Presses& presses;
        std::map<std::uint64_t, Handle> byId;
        std::uint64_t lastId = 0;
    };

    void hear(const xcb_generic_event_t& event) override;
    [[nodiscard]] bool begin();
    void select(Wanted wanted);

    MainLoop& loop_;
    Subscribers subscribers_;
    std::shared_ptr<Observers> observers_ = std::make_shared<Observers>(*this);
    /// Loaded on demand: most of the time nobody observes.
    QLibrary library_{QStringLiteral("xcb-xinput"), 0};
    QFunctionPointer selectEvents_ = nullptr;
    /// The number of the input extension; 0 until it is known.
    int extension_ = 0;
};

} // namespace velmorquit
