#pragma once

#include "Linux/Loop/Paced.h"
#include "Linux/Windows/ToplevelSource.h"
#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11EventReader.h"
#include "Linux/X11/X11Pings.h"
#include "Linux/X11/X11Windows.h"
#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"
#include "Platform/SystemLog.h"

#include <set>
#include <vector>

namespace velmorquit {

/// The windows of an X server, as listed by its window manager.
class X11Toplevels final : public ToplevelSource {
public:
    /// The most windows looked at; if there are more, it reports incomplete sight.
    static constexpr std::size_t mostWindows = 4096;

    X11Toplevels(MainLoop& loop, SystemLog& log, X11Connection connection);

    [[nodiscard]] const std::vector<Toplevel>& toplevels() override;
    [[nodiscard]] Sight sight() override;
    [[nodiscard]] std::string title(std::uint64_t window) override;
    [[nodiscard]] const std::set<ProcessId>& shellProcesses() const override {
        return shellProcesses_;
    }
    [[nodiscard]] std::uint64_t activeWindow() const override { return active_; }
    [[nodiscard]] std::uint64_t focusedWindow() const override { return focused_; }
    void askToClose(std::uint64_t window) override;
    void bringToFront(std::uint64_t window) override;
    void ping(std::uint64_t window) override;
    [[nodiscard]] bool isDeaf(std::uint64_t window) const override {
        return pings_.isDeaf(static_cast<xcb_window_t>(window));
    }
    [[nodiscard]] Image icon(std::uint64_t window) override;
    [[nodiscard]] bool belongsTo(std::uint64_t window, ProcessId process) override;
    [[nodiscard]] Handle observe(std::function<void()> told) override {
        return observers_.add(std::move(told));
    }

private:
    void hear(const xcb_generic_event_t& event);
    void changed();
    void look();
    void scan();
    void readActiveWindow();
    void tell();
    [[nodiscard]] std::vector<xcb_window_t> listed();
    void add(const X11Windows::Facts& facts, const std::vector<xcb_window_t>& sorted);
    [[nodiscard]] std::set<xcb_window_t> shellWindows();

    MainLoop& loop_;
    SystemLog& log_;
    X11Connection connection_;
    X11Windows windows_{connection_};
    X11Pings pings_;
    std::vector<Toplevel> toplevels_;
    std::set<ProcessId> shellProcesses_;
    std::uint64_t active_ = 0;
    std::uint64_t focused_ = 0;
    bool isOutdated_ = true;
    bool isBehind_ = false; ///< windows change faster than they can be looked at
    bool isCut_ = false;    ///< there are more windows than can be looked at
    Uptime scannedAt_;
    Duration scanTook_{};
    bool isTelling_ = false;
    Paced changes_;
    X11EventReader events_;
    Subscribers observers_;
};

} // namespace velmorquit
