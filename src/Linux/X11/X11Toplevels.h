#pragma once

#include "Linux/Applications/ToplevelSource.h"
#include "Linux/X11/X11Connection.h"
#include "Platform/MainLoop.h"
#include "Platform/Subscribers.h"
#include "Platform/SystemLog.h"

#include <QSocketNotifier>

#include <xcb/res.h>

#include <optional>
#include <set>

namespace velmorquit {

/// The windows of an X server, as its window manager lists them.
class X11Toplevels final : public ToplevelSource {
public:
    X11Toplevels(MainLoop& loop, SystemLog& log, X11Connection connection);

    [[nodiscard]] const std::vector<Toplevel>& toplevels() override;
    [[nodiscard]] std::uint64_t activeWindow() const override { return active_; }
    void askToClose(std::uint64_t window) override;
    void bringToFront(std::uint64_t window) override;
    [[nodiscard]] bool belongsTo(std::uint64_t window, ProcessId process) override;
    [[nodiscard]] Handle observe(std::function<void()> told) override {
        return observers_.add(std::move(told));
    }

private:
    /// The requests about one window, sent before any answer is waited for. Asked for last, the
    /// state that the window manager keeps tells whether the window was there for all of them.
    struct Inquiry {
        xcb_window_t window;
        xcb_get_property_cookie_t type, state, protocols, transientFor, wmClass, machine,
            applicationId, processId;
        std::optional<xcb_res_query_client_ids_cookie_t> client;
        xcb_get_property_cookie_t managed;
    };

    void readEvents();
    void changed();
    void scan();
    void readActiveWindow();
    [[nodiscard]] bool hasWindowManager();
    [[nodiscard]] Inquiry inquire(xcb_window_t window);
    [[nodiscard]] std::optional<Toplevel> read(const Inquiry& inquiry, bool isListed,
                                               const std::vector<xcb_window_t>& all);
    [[nodiscard]] bool isOrdinary(const std::vector<std::uint32_t>& types,
                                  const std::vector<std::uint32_t>& states);
    [[nodiscard]] std::optional<xcb_res_query_client_ids_cookie_t>
    requestProcess(xcb_window_t window);
    [[nodiscard]] ProcessId process(const std::optional<xcb_res_query_client_ids_cookie_t>& cookie);

    MainLoop& loop_;
    SystemLog& log_;
    X11Connection connection_;
    std::optional<QSocketNotifier> notifier_;
    std::vector<Toplevel> toplevels_;
    std::uint64_t active_ = 0;
    /// All names that this computer has had since the start: windows keep the one of their time.
    std::set<std::string> ownMachines_;
    bool isOutdated_ = true;
    Uptime scannedAt_;
    Handle gathering_;
    Subscribers observers_;
};

} // namespace velmorquit
