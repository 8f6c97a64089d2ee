#pragma once

#include "Linux/X11/XcbReply.h"

#include <xcb/xcb.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// A connection to the X server of `$DISPLAY`, with its atoms.
class X11Connection {
public:
    /// None when the server can't be reached.
    static std::optional<X11Connection> open();

    [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
    [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    [[nodiscard]] int screenNumber() const { return screenNumber_; }

    /// Of the root window, the server tells this connection these events and no others.
    void selectRootEvents(std::uint32_t mask);

    /// The atom of that name; asks the server the first time.
    [[nodiscard]] xcb_atom_t atom(const std::string& name);

    /// In units of four bytes, how much is read of a property: a text that a person reads, and a
    /// list of atoms or numbers. What programs put there has no bounds.
    static constexpr std::uint32_t longestText = 1024;
    static constexpr std::uint32_t longestList = 65536;

    /// Sends the request for a property without waiting for the answer, which is cut off after so
    /// many units of four bytes.
    [[nodiscard]] xcb_get_property_cookie_t request(xcb_window_t window, const std::string& name,
                                                    std::uint32_t most = longestList);

    /// Waits for the answers; empty where there is no such property. A text that is cut off ends
    /// with a whole UTF-8 character, if it is UTF-8.
    [[nodiscard]] std::string bytes(xcb_get_property_cookie_t cookie);
    [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_get_property_cookie_t cookie);

    /// Like `numbers`; none when there is no such window.
    [[nodiscard]] std::optional<std::vector<std::uint32_t>>
    numbersOfWindow(xcb_get_property_cookie_t cookie);

    /// Waits for a part of a property, which may be large: `count` numbers from the one at `offset`
    /// on, fewer where it ends before.
    [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& name,
                                                     std::uint32_t offset, std::uint32_t count);

    [[nodiscard]] std::optional<std::uint32_t> number(xcb_window_t window, const std::string& name);

    /// Sends a client message about `window` to `receiver`, which is it itself or the root window.
    void sendMessage(xcb_window_t receiver, xcb_window_t window, const std::string& type,
                     const std::vector<std::uint32_t>& data);

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    X11Connection(xcb_connection_t* connection, int screenNumber);

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    int screenNumber_;
    xcb_screen_t* screen_;
    std::map<std::string, xcb_atom_t, std::less<>> atoms_;
};

} // namespace velmorquit
