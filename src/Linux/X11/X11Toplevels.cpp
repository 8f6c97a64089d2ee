#include "Linux/X11/X11Toplevels.h"

#include "Linux/Text.h"

#include <algorithm>
#include <array>

#include <unistd.h>

namespace velmorquit {

namespace {

/// Changes come in bursts, with half-way states in between: a window manager that starts lists its
/// windows one by one, and between two windows none is active.
constexpr Duration burst = 30ms;

std::string hostName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

bool holds(const std::vector<std::uint32_t>& atoms, xcb_atom_t atom) {
    return std::ranges::find(atoms, atom) != atoms.end();
}

} // namespace

X11Toplevels::X11Toplevels(MainLoop& loop, X11Connection connection)
    : loop_(loop), connection_(std::move(connection)), ownMachine_(hostName()) {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_.get(), connection_.root(), XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection_.get());
    notifier_.emplace(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read);
    QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_,
                     [this] { readEvents(); });
    readActiveWindow();
    changed();
}

// Has to be called after every answer that was waited for as well: events that came with it are in
// xcb's memory then, and the socket stays silent about them.
void X11Toplevels::readEvents() {
    const auto listAtom = connection_.atom("_NET_CLIENT_LIST");
    const auto checkAtom = connection_.atom("_NET_SUPPORTING_WM_CHECK");
    const auto activeAtom = connection_.atom("_NET_ACTIVE_WINDOW");
    while (const auto event = owned(xcb_poll_for_event(connection_.get()))) {
        if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
            continue;
        const auto atom = reinterpret_cast<xcb_property_notify_event_t*>(event.get())->atom;
        if (atom == listAtom || atom == checkAtom || atom == activeAtom)
            changed();
        isOutdated_ |= atom == listAtom || atom == checkAtom;
    }
    // A server that has gone would make the notifier fire for ever.
    if (xcb_connection_has_error(connection_.get()))
        notifier_->setEnabled(false);
}

void X11Toplevels::changed() {
    if (gathering_.isSet())
        return;
    gathering_ = loop_.after(burst, [this] {
        gathering_.reset();
        scan();
        readActiveWindow();
        readEvents();
        observers_.tell();
    });
}

const std::vector<Toplevel>& X11Toplevels::toplevels() {
    // What the server has already announced counts, whether or not the loop came round to it.
    readEvents();
    scan();
    readEvents();
    return toplevels_;
}

// Without a window manager nobody keeps the list. What was open is still open: the windows live on,
// and whether a program has ended is told by its process alone.
void X11Toplevels::scan() {
    if (!isOutdated_ || !hasWindowManager())
        return;
    isOutdated_ = false;
    const std::vector<xcb_window_t> all =
        connection_.numbers(connection_.request(connection_.root(), "_NET_CLIENT_LIST"));
    std::vector<Inquiry> inquiries;
    inquiries.reserve(all.size());
    for (const xcb_window_t window : all)
        inquiries.push_back(inquire(window));
    toplevels_.clear();
    for (const Inquiry& inquiry : inquiries) {
        if (auto toplevel = read(inquiry, all))
            toplevels_.push_back(std::move(*toplevel));
    }
}

/// A window manager that died may have left its name behind: its own window tells whether it lives.
bool X11Toplevels::hasWindowManager() {
    const auto window = connection_.number(connection_.root(), "_NET_SUPPORTING_WM_CHECK");
    return window && connection_.number(*window, "_NET_SUPPORTING_WM_CHECK") == window;
}

void X11Toplevels::readActiveWindow() {
    const auto window = connection_.number(connection_.root(), "_NET_ACTIVE_WINDOW").value_or(0);
    if (window != 0)
        active_ = window;
}

X11Toplevels::Inquiry X11Toplevels::inquire(xcb_window_t window) {
    return {.window = window,
            .type = connection_.request(window, "_NET_WM_WINDOW_TYPE"),
            .state = connection_.request(window, "_NET_WM_STATE"),
            .protocols = connection_.request(window, "WM_PROTOCOLS"),
            .transientFor = connection_.request(window, "WM_TRANSIENT_FOR"),
            .wmClass = connection_.request(window, "WM_CLASS"),
            .machine = connection_.request(window, "WM_CLIENT_MACHINE"),
            .applicationId = connection_.request(window, "_GTK_APPLICATION_ID"),
            .processId = connection_.request(window, "_NET_WM_PID"),
            .client = requestProcess(window)};
}

// Every answer is fetched, whatever the others say: one that is left would stay in memory.
std::optional<Toplevel> X11Toplevels::read(const Inquiry& inquiry,
                                           const std::vector<xcb_window_t>& all) {
    const auto types = connection_.numbers(inquiry.type);
    const auto states = connection_.numbers(inquiry.state);
    const auto protocols = connection_.numbers(inquiry.protocols);
    const auto transientFor = connection_.numbers(inquiry.transientFor);
    const std::string wmClass = connection_.bytes(inquiry.wmClass);
    std::string machine = connection_.bytes(inquiry.machine);
    const std::string applicationId = connection_.bytes(inquiry.applicationId);
    const auto statedProcess = connection_.numbers(inquiry.processId);
    const ProcessId serverProcess = process(inquiry.client);

    machine.erase(std::min(machine.find('\0'), machine.size()));
    const bool isElsewhere = !machine.empty() && machine != ownMachine_;
    if (!isOrdinary(types, states) || isElsewhere)
        return std::nullopt;

    Toplevel toplevel;
    toplevel.window = inquiry.window;
    // The server knows by its socket who is at the other end; what a window states of itself may be
    // a number inside a sandbox.
    toplevel.process = serverProcess;
    if (toplevel.process <= 0 && !statedProcess.empty())
        toplevel.process = static_cast<ProcessId>(statedProcess.front());
    if (toplevel.process <= 0)
        return std::nullopt;
    const std::size_t split = std::min(wmClass.find('\0'), wmClass.size());
    const std::string_view rest =
        std::string_view(wmClass).substr(std::min(split + 1, wmClass.size()));
    toplevel.identity = {.instance = utf8(std::string_view(wmClass).substr(0, split)),
                         .className = utf8(rest.substr(0, rest.find('\0'))),
                         .applicationId = utf8(applicationId.substr(0, applicationId.find('\0')))};
    const bool hasOwner = !transientFor.empty() && transientFor.front() != inquiry.window &&
                          std::ranges::find(all, transientFor.front()) != all.end();
    toplevel.isDialogOfAnother = hasOwner || holds(states, connection_.atom("_NET_WM_STATE_MODAL"));
    toplevel.canBeAskedToClose = holds(protocols, connection_.atom("WM_DELETE_WINDOW"));
    return toplevel;
}

/// A window without a type is an ordinary one: programs older than the types have none.
bool X11Toplevels::isOrdinary(const std::vector<std::uint32_t>& types,
                              const std::vector<std::uint32_t>& states) {
    const bool isWorkedWith = types.empty() ||
                              holds(types, connection_.atom("_NET_WM_WINDOW_TYPE_NORMAL")) ||
                              holds(types, connection_.atom("_NET_WM_WINDOW_TYPE_DIALOG"));
    return isWorkedWith && !holds(states, connection_.atom("_NET_WM_STATE_SKIP_TASKBAR"));
}

xcb_res_query_client_ids_cookie_t X11Toplevels::requestProcess(xcb_window_t window) {
    const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return xcb_res_query_client_ids(connection_.get(), 1, &wanted);
}

ProcessId X11Toplevels::process(xcb_res_query_client_ids_cookie_t cookie) {
    const auto reply = owned(xcb_res_query_client_ids_reply(connection_.get(), cookie, nullptr));
    if (!reply)
        return 0;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply.get()); ids.rem > 0;
         xcb_res_client_id_value_next(&ids)) {
        const bool isProcess = ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID;
        if (isProcess && xcb_res_client_id_value_value_length(ids.data) >= 1)
            return static_cast<ProcessId>(*xcb_res_client_id_value_value(ids.data));
    }
    return 0;
}

bool X11Toplevels::belongsTo(std::uint64_t window, ProcessId id) {
    const auto asked = static_cast<xcb_window_t>(window);
    const ProcessId known = process(requestProcess(asked));
    const bool isSame =
        known > 0 ? known == id
                  : connection_.number(asked, "_NET_WM_PID") == static_cast<std::uint32_t>(id);
    readEvents();
    return isSame;
}

// Sent to the window itself: the detour by the window manager would let some of them kill a program
// that doesn't understand the message.
void X11Toplevels::askToClose(std::uint64_t window) {
    const auto receiver = static_cast<xcb_window_t>(window);
    connection_.sendMessage(receiver, receiver, "WM_PROTOCOLS",
                            {connection_.atom("WM_DELETE_WINDOW"), XCB_CURRENT_TIME});
}

void X11Toplevels::bringToFront(std::uint64_t window) {
    const auto target = static_cast<xcb_window_t>(window);
    const xcb_window_t root = connection_.root();
    constexpr std::uint32_t onAllDesktops = 0xFFFFFFFF;
    const auto desktop = connection_.number(target, "_NET_WM_DESKTOP");
    if (desktop && *desktop != onAllDesktops)
        connection_.sendMessage(root, root, "_NET_CURRENT_DESKTOP", {*desktop, XCB_CURRENT_TIME});
    constexpr std::uint32_t onBehalfOfTheUser = 2;
    connection_.sendMessage(root, target, "_NET_ACTIVE_WINDOW",
                            {onBehalfOfTheUser, XCB_CURRENT_TIME, 0});
    readEvents();
}

} // namespace velmorquit
