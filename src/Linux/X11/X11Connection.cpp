#include "Linux/X11/X11Connection.h"

#include <algorithm>
#include <cstring>

namespace velmorquit {

namespace {

/// The length without an incomplete UTF-8 character at the end.
std::size_t lengthOfWholeCharacters(std::string_view text) {
    constexpr std::size_t longest = 4;
    for (std::size_t back = 1; back <= std::min(longest, text.size()); ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        if ((byte & 0xC0) == 0x80)
            continue;
        const std::size_t length = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        return length > back ? text.size() - back : text.size();
    }
    return text.size();
}

} // namespace

std::optional<X11Connection> X11Connection::open() {
    int number = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &number);
    // Even a failed connection has to be closed.
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return std::nullopt;
    }
    return X11Connection(connection, number);
}

X11Connection::X11Connection(xcb_connection_t* connection, int screenNumber)
    : connection_(connection), screenNumber_(screenNumber) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int number = screenNumber; number > 0 && screens.rem > 1; --number)
        xcb_screen_next(&screens);
    screen_ = screens.data;
}

void X11Connection::selectRootEvents(std::uint32_t mask) {
    xcb_change_window_attributes(get(), root(), XCB_CW_EVENT_MASK, &mask);
    xcb_flush(get());
}

xcb_atom_t X11Connection::atom(const std::string& name) {
    const auto known = atoms_.find(name);
    if (known != atoms_.end())
        return known->second;
    const auto cookie =
        xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(get(), cookie, nullptr));
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    atoms_.emplace(name, atom);
    return atom;
}

xcb_get_property_cookie_t X11Connection::request(xcb_window_t window, const std::string& name,
                                                 std::uint32_t most) {
    return xcb_get_property(get(), 0, window, atom(name), XCB_ATOM_ANY, 0, most);
}

std::string X11Connection::bytes(xcb_get_property_cookie_t cookie) {
    const auto reply = owned(xcb_get_property_reply(get(), cookie, nullptr));
    if (!reply || reply->format != 8)
        return {};
    const std::string_view text(
        static_cast<const char*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    return std::string(
        text.substr(0, reply->bytes_after > 0 ? lengthOfWholeCharacters(text) : text.size()));
}

std::vector<std::uint32_t> X11Connection::numbers(xcb_get_property_cookie_t cookie) {
    return numbersOfWindow(cookie).value_or(std::vector<std::uint32_t>());
}

std::optional<std::vector<std::uint32_t>>
X11Connection::numbersOfWindow(xcb_get_property_cookie_t cookie) {
    const auto reply = owned(xcb_get_property_reply(get(), cookie, nullptr));
    if (!reply)
        return std::nullopt;
    if (reply->format != 32)
        return std::vector<std::uint32_t>();
    std::vector<std::uint32_t> values(reply->value_len);
    if (!values.empty())
        std::memcpy(values.data(), xcb_get_property_value(reply.get()), 4 * values.size());
    return values;
}

std::vector<std::uint32_t> X11Connection::numbers(xcb_window_t window, const std::string& name,
                                                  std::uint32_t offset, std::uint32_t count) {
    return numbers(xcb_get_property(get(), 0, window, atom(name), XCB_ATOM_ANY, offset, count));
}

std::optional<std::uint32_t> X11Connection::number(xcb_window_t window, const std::string& name) {
    const auto values = numbers(request(window, name));
    return values.empty() ? std::nullopt : std::optional(values.front());
}

void X11Connection::sendMessage(xcb_window_t receiver, xcb_window_t window, const std::string& type,
                                const std::vector<std::uint32_t>& data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    std::ranges::copy_n(data.begin(), std::min<std::ptrdiff_t>(5, std::ssize(data)),
                        std::begin(message.data.data32));
    const std::uint32_t mask = receiver == root() ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                                                        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT
                                                  : XCB_EVENT_MASK_NO_EVENT;
    xcb_send_event(get(), 0, receiver, mask, reinterpret_cast<const char*>(&message));
    xcb_flush(get());
}

} // namespace velmorquit
