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

    /// Selects the events of the root window for this connection, instead of any selected before.
    void selectRootEvents(std::uint32_t mask);

    /// The atom of that name; asks the server the first time.
    [[nodiscard]] xcb_atom_t atom(const std::string& name);

    /// How much of a property is read, in units of four bytes: of a text for people, and of a list
    /// of atoms or numbers. Programs may store any amount.
    static constexpr std::uint32_t longestText = 1024;
    static constexpr std::uint32_t longestList = 65536;

    /// Sends the request for a property without waiting for the answer, which is cut off after
    /// `most` units of four bytes.
    [[nodiscard]] xcb_get_property_cookie_t request(xcb_window_t window, const std::string& name,
                                                    std::uint32_t most = longestList);

    /// Wait for the answers; empty without such a property. A text that is cut off ends with a
    /// whole UTF-8 character, if it is UTF-8.
    [[nodiscard]] std::string bytes(xcb_get_property_cookie_t cookie);
    [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_get_property_cookie_t cookie);

    /// Like `numbers`; none when there is no such window.
    [[nodiscard]] std::optional<std::vector<std::uint32_t>>
    numbersOfWindow(xcb_get_property_cookie_t cookie);

    /// Waits for part of a property, which may be large: `count` numbers beginning at `offset`,
    /// fewer if it ends before.
    [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& name,
                                                     std::uint32_t offset, std::uint32_t count);

    [[nodiscard]] std::optional<std::uint32_t> number(xcb_window_t window, const std::string& name);

    /// Sends a client message about `window` to `receiver`, which is the window itself or the root.
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
