#include "Linux/X11/XSettings.h"

#include <cstddef>
#include <utility>

namespace velmorquit {

namespace {

constexpr const char* propertyName = "_XSETTINGS_SETTINGS";

/// However often the settings or their manager change: every change of the look repaints
/// everything.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(200)};

/// Reads from the front of bytes that another program has written. Beyond their end, or after an
/// error, everything is 0 or empty.
class Reader {
public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    void setBigEndian(bool isBig) { isBig_ = isBig; }
    void fail() { isGood_ = false; }
    [[nodiscard]] bool isGood() const { return isGood_; }

    std::string_view take(std::size_t count) {
        if (!isGood_ || count > bytes_.size()) {
            fail();
            return {};
        }
        const std::string_view taken = bytes_.substr(0, count);
        bytes_.remove_prefix(count);
        return taken;
    }

    std::uint32_t number(std::size_t size) {
        const std::string_view digits = take(size);
        std::uint32_t value = 0;
        for (std::size_t index = 0; index < digits.size(); ++index) {
            const std::size_t shift = 8 * (isBig_ ? digits.size() - 1 - index : index);
            value |= std::uint32_t{static_cast<unsigned char>(digits[index])} << shift;
        }
        return value;
    }

    /// Everything of variable length is padded to a multiple of four bytes.
    std::string text(std::size_t length) {
        const std::string_view taken = take(length);
        take((4 - length % 4) % 4);
        return std::string(taken);
    }

private:
    std::string_view bytes_;
    bool isBig_ = false;
    bool isGood_ = true;
};

void readSetting(Reader& reader, DesktopSettings& settings) {
    enum Type : std::uint32_t { integer = 0, string = 1, colour = 2 };
    constexpr std::size_t colourSize = 8;
    const std::uint32_t type = reader.number(1);
    reader.take(1);
    std::string name = reader.text(reader.number(2));
    reader.number(4); // Serial number of its last change.
    if (type == integer)
        settings[std::move(name)] = static_cast<std::int32_t>(reader.number(4));
    else if (type == string)
        settings[std::move(name)] = reader.text(reader.number(4));
    else if (type == colour)
        reader.take(colourSize);
    else
        reader.fail(); // The length of an unknown type isn't known.
}

} // namespace

std::optional<DesktopSettings> parseXSettings(std::string_view bytes) {
    Reader reader(bytes);
    const std::uint32_t order = reader.number(1);
    if (order > 1)
        return std::nullopt;
    reader.setBigEndian(order == 1);
    reader.take(3);
    reader.number(4); // Serial number of all changes.
    DesktopSettings settings;
    for (std::uint32_t left = reader.number(4); left > 0 && reader.isGood(); --left)
        readSetting(reader, settings);
    return reader.isGood() ? std::optional(std::move(settings)) : std::nullopt;
}

XSettings::XSettings(X11Events& events)
    : Listener(events), property_(events.connection().atom(propertyName)),
      changes_(pace,
               [this] {
                   follow();
                   events_.read();
               }),
      manager_(events, "_XSETTINGS_S", [this] { changes_.ask(); }) {
    follow();
    events.read();
}

// If the manager has gone meanwhile, its selection is released as well, which is told.
void XSettings::follow() {
    if (manager_.owner() != XCB_WINDOW_NONE) {
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(events_.connection().get(), manager_.owner(),
                                     XCB_CW_EVENT_MASK, &mask);
    }
    read();
}

void XSettings::read() {
    X11Connection& connection = events_.connection();
    const xcb_window_t window = manager_.owner();
    auto values = window == XCB_WINDOW_NONE
                      ? DesktopSettings()
                      : parseXSettings(connection.bytes(connection.request(window, propertyName)));
    if (!values || *values == values_)
        return;
    values_ = *std::move(values);
    observers_.tell();
}

void XSettings::hear(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return;
    const auto& notification = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    if (notification.window == manager_.owner() && notification.atom == property_)
        changes_.ask();
}

} // namespace velmorquit
