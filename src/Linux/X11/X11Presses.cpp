#include "Linux/X11/X11Presses.h"

#include <xcb/xinput.h>

#include <string_view>

namespace velmorquit {

namespace {

/// The server's number for the input extension; 0 where it has none.
int inputExtension(xcb_connection_t* connection) {
    constexpr std::string_view name = "XInputExtension";
    const auto cookie = xcb_query_extension(connection, name.size(), name.data());
    const auto reply = owned(xcb_query_extension_reply(connection, cookie, nullptr));
    return reply && reply->present ? reply->major_opcode : 0;
}

} // namespace

X11Presses::X11Presses(MainLoop& loop, X11Events& events) : Listener(events), loop_(loop) {}

Handle X11Presses::observe(std::function<void()> pressed) {
    Observers& observers = *observers_;
    if (observers.byId.empty())
        select(Wanted::all);
    observers.byId.emplace(++observers.lastId, subscribers_.add(std::move(pressed)));
    return {observers_, observers.lastId};
}

void X11Presses::Observers::cancel(std::uint64_t id) noexcept {
    if (byId.erase(id) > 0 && byId.empty())
        presses.select(Wanted::none);
}

// Only clients that have asked for the version hear of presses while another client has grabbed the
// pointer, as every open menu has.
bool X11Presses::begin() {
    if (extension_ != 0)
        return true;
    const auto queryVersion = reinterpret_cast<decltype(&xcb_input_xi_query_version)>(
        library_.resolve("xcb_input_xi_query_version"));
    selectEvents_ = library_.resolve("xcb_input_xi_select_events");
    if (!queryVersion || !selectEvents_)
        return false;
    xcb_connection_t* connection = events_.connection().get();
    extension_ = inputExtension(connection);
    if (extension_ != 0)
        xcb_discard_reply(connection, queryVersion(connection, 2, 2).sequence);
    return extension_ != 0;
}

// Raw events come from the whole screen and don't intercept the press.
void X11Presses::select(Wanted wanted) {
    if (!begin())
        return;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t bits;
    } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, 0};
    if (wanted == Wanted::all)
        mask.bits =
            XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN;
    xcb_connection_t* connection = events_.connection().get();
    const auto selectEvents =
        reinterpret_cast<decltype(&xcb_input_xi_select_events)>(selectEvents_);
    selectEvents(connection, events_.connection().root(), 1, &mask.head);
    xcb_flush(connection);
    events_.read();
}

void X11Presses::hear(const xcb_generic_event_t& event) {
    if (extension_ == 0 || (event.response_type & 0x7f) != XCB_GE_GENERIC)
        return;
    const auto& raw = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
    if (raw.extension != extension_)
        return;
    const bool isWheel = raw.detail >= 4 && raw.detail <= 7;
    const bool isPress = raw.event_type == XCB_INPUT_RAW_BUTTON_PRESS && !isWheel;
    if (isPress || raw.event_type == XCB_INPUT_RAW_TOUCH_BEGIN)
        subscribers_.tellLater(loop_);
}

} // namespace velmorquit
