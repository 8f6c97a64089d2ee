#include "Linux/X11/X11Toplevels.h"

#include "Linux/X11/X11Properties.h"
#include "Linux/X11/X11WindowManager.h"

#include <algorithm>
#include <string>

namespace velmorquit {

namespace {

/// Changes come in bursts with intermediate states: a starting window manager lists its windows one
/// by one, and between two windows none is active.
constexpr Duration burst = 30ms;

/// A run asks all windows at once: they share one look.
constexpr Duration freshness = 100ms;

bool holds(const std::vector<xcb_window_t>& sorted, xcb_window_t window) {
    return std::ranges::binary_search(sorted, window);
}

} // namespace

X11Toplevels::X11Toplevels(MainLoop& loop, SystemLog& log, X11Connection connection)
    : loop_(loop), log_(log), connection_(std::move(connection)), pings_(loop, connection_),
      changes_({.gathering = std::chrono::duration_cast<Paced::Duration>(burst)},
               [this] { tell(); }),
      events_(
          connection_, [this](const auto& event) { hear(event); },
          [this] { log_.write("Velmor Quit: il server X11 non risponde più"); }) {
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    readActiveWindow();
    changed();
}

void X11Toplevels::hear(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7f;
    if (type == XCB_CLIENT_MESSAGE)
        pings_.hear(reinterpret_cast<const xcb_client_message_event_t&>(event));
    if (type != XCB_PROPERTY_NOTIFY)
        return;
    const auto atom = reinterpret_cast<const xcb_property_notify_event_t&>(event).atom;
    const bool isList = atom == connection_.atom("_NET_CLIENT_LIST") ||
                        atom == connection_.atom("_NET_SUPPORTING_WM_CHECK");
    if (isList || atom == connection_.atom("_NET_ACTIVE_WINDOW"))
        changed();
    isOutdated_ |= isList;
}

void X11Toplevels::changed() { changes_.ask(); }

// All observers see the same windows; changes in between are told next.
void X11Toplevels::tell() {
    scan();
    readActiveWindow();
    events_.read();
    isTelling_ = true;
    observers_.tell();
    isTelling_ = false;
}

const std::vector<Toplevel>& X11Toplevels::toplevels() {
    look();
    return toplevels_;
}

void X11Toplevels::look() {
    // Changes that the server has announced count even if the loop hasn't come to them. Unannounced
    // ones, of a window's own properties, are never older than a moment.
    const Duration age = loop_.uptime() - scannedAt_;
    if (isTelling_ && age <= freshness)
        return;
    events_.read();
    isOutdated_ |= age > freshness;
    // If windows come faster than they can be looked at, looking would never end.
    const bool isDue = scanTook_ < burst || age >= scanTook_;
    if (isDue)
        scan();
    isBehind_ = isOutdated_ && !isDue;
    events_.read();
}

// Without a window manager nobody maintains the list. The windows remain, and only a process tells
// whether its program has ended. A window manager that has just started lists the windows one by
// one; those it hasn't come to yet are known by the state that the former one gave
// them.
void X11Toplevels::scan() {
    if (!isOutdated_ || !hasWindowManager(connection_))
        return;
    isOutdated_ = false;
    const Uptime begun = loop_.uptime();
    std::vector<xcb_window_t> all = listed();
    const std::size_t listed = all.size();
    std::vector<xcb_window_t> sorted = all;
    std::ranges::sort(sorted);
    for (const Toplevel& toplevel : toplevels_) {
        const auto window = static_cast<xcb_window_t>(toplevel.window);
        if (!holds(sorted, window))
            all.push_back(window);
    }
    if (all.size() > 2 * mostWindows) {
        isCut_ = true;
        all.resize(2 * mostWindows);
    }
    sorted = all;
    std::ranges::sort(sorted);
    std::vector<X11Windows::Inquiry> inquiries;
    inquiries.reserve(all.size());
    for (const xcb_window_t window : all)
        inquiries.push_back(windows_.inquire(window));
    toplevels_.clear();
    shellProcesses_ = windows_.processes(shellWindows());
    for (std::size_t index = 0; index < inquiries.size(); ++index) {
        const auto facts = windows_.read(inquiries[index]);
        if (facts && (index < listed || facts->isManaged))
            add(*facts, sorted);
    }
    pings_.keep({all.begin(), all.end()});
    scannedAt_ = loop_.uptime();
    scanTook_ = scannedAt_ - begun;
}

/// The window manager's list, up to the limit.
std::vector<xcb_window_t> X11Toplevels::listed() {
    std::vector<xcb_window_t> windows = connection_.numbers(
        connection_.request(connection_.root(), "_NET_CLIENT_LIST", mostWindows + 1));
    isCut_ = windows.size() > mostWindows;
    windows.resize(std::min(windows.size(), mostWindows));
    return windows;
}

void X11Toplevels::add(const X11Windows::Facts& facts, const std::vector<xcb_window_t>& sorted) {
    if (facts.kind == X11Windows::Kind::shell && facts.toplevel.process > 0)
        shellProcesses_.insert(facts.toplevel.process);
    if (facts.kind != X11Windows::Kind::toplevel)
        return;
    Toplevel toplevel = facts.toplevel;
    // Belonging to the root window means belonging to all windows of the program. A window that no
    // list shows is a dialog even if its owner isn't on the screen.
    const bool hasOwner = facts.owner == connection_.root() || holds(sorted, facts.owner) ||
                          (facts.owner != XCB_WINDOW_NONE && !toplevel.isOrdinary);
    toplevel.isDialogOfAnother = hasOwner || toplevel.isModal;
    if (toplevel.isOrdinary || toplevel.isDialogOfAnother)
        toplevels_.push_back(std::move(toplevel));
}

Sight X11Toplevels::sight() {
    const bool isListed = windowManagerKnows(connection_, "_NET_CLIENT_LIST");
    look();
    if (!isListed)
        return Sight::noWindowList;
    return isCut_ || isBehind_ ? Sight::incomplete : Sight::all;
}

std::string X11Toplevels::title(std::uint64_t window) {
    const auto asked = static_cast<xcb_window_t>(window);
    const auto most = X11Connection::longestText;
    const auto modern = connection_.request(asked, "_NET_WM_NAME", most);
    const auto old = connection_.request(asked, "WM_NAME", most);
    const std::string title = connection_.bytes(modern);
    const std::string oldTitle = connection_.bytes(old);
    events_.read();
    return X11Properties::title(title, oldTitle);
}

/// Windows that identify parts of the desktop without other windows: the window manager's own, and
/// the owners of the selections of the compositor and the tray.
std::set<xcb_window_t> X11Toplevels::shellWindows() {
    std::set<xcb_window_t> windows;
    std::vector<xcb_get_selection_owner_cookie_t> cookies;
    for (const char* selection : {"_NET_WM_CM_S", "_NET_SYSTEM_TRAY_S"}) {
        const std::string name = selection + std::to_string(connection_.screenNumber());
        cookies.push_back(xcb_get_selection_owner(connection_.get(), connection_.atom(name)));
    }
    for (const auto cookie : cookies) {
        if (const auto reply =
                owned(xcb_get_selection_owner_reply(connection_.get(), cookie, nullptr)))
            windows.insert(reply->owner);
    }
    windows.insert(connection_.number(connection_.root(), "_NET_SUPPORTING_WM_CHECK").value_or(0));
    windows.erase(XCB_WINDOW_NONE);
    return windows;
}

void X11Toplevels::readActiveWindow() {
    focused_ = connection_.number(connection_.root(), "_NET_ACTIVE_WINDOW").value_or(0);
    if (focused_ != 0)
        active_ = focused_;
}

bool X11Toplevels::belongsTo(std::uint64_t window, ProcessId id) {
    const auto asked = static_cast<xcb_window_t>(window);
    const ProcessId known = windows_.process(asked);
    const bool isSame =
        known > 0 ? known == id
                  : connection_.number(asked, "_NET_WM_PID") == static_cast<std::uint32_t>(id);
    events_.read();
    return isSame;
}

// Sent to the window itself: some window managers would kill a program that doesn't understand the
// message.
void X11Toplevels::askToClose(std::uint64_t window) {
    const auto receiver = static_cast<xcb_window_t>(window);
    connection_.sendMessage(receiver, receiver, "WM_PROTOCOLS",
                            {connection_.atom("WM_DELETE_WINDOW"), XCB_CURRENT_TIME});
    events_.read();
}

void X11Toplevels::ping(std::uint64_t window) {
    pings_.ping(static_cast<xcb_window_t>(window));
    events_.read();
}

Image X11Toplevels::icon(std::uint64_t window) {
    Image image = windows_.icon(static_cast<xcb_window_t>(window));
    events_.read();
    return image;
}

void X11Toplevels::bringToFront(std::uint64_t window) {
    const auto target = static_cast<xcb_window_t>(window);
    const xcb_window_t root = connection_.root();
    if (const auto desktop = desktopOf(connection_, target))
        connection_.sendMessage(root, root, "_NET_CURRENT_DESKTOP", {*desktop, XCB_CURRENT_TIME});
    askToActivate(connection_, target);
    events_.read();
}

} // namespace velmorquit
