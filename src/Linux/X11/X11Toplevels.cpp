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

/// One run asks all windows at one go: they share one look at them.
constexpr Duration freshness = 100ms;

/// The text before the first NUL: a property may hold several.
std::string firstText(const std::string& bytes) { return bytes.substr(0, bytes.find('\0')); }

std::string hostName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

bool holds(const std::vector<std::uint32_t>& atoms, xcb_atom_t atom) {
    return std::ranges::find(atoms, atom) != atoms.end();
}

} // namespace

X11Toplevels::X11Toplevels(MainLoop& loop, SystemLog& log, X11Connection connection)
    : loop_(loop), log_(log), connection_(std::move(connection)) {
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
    if (xcb_connection_has_error(connection_.get()) && notifier_->isEnabled()) {
        notifier_->setEnabled(false);
        log_.write("Velmor Quit: il server X11 non risponde più");
    }
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
    // What the server has already announced counts, whether or not the loop came round to it. What
    // it doesn't announce, a window's own changes, is not older than a moment.
    readEvents();
    isOutdated_ |= loop_.uptime() - scannedAt_ > freshness;
    scan();
    readEvents();
    return toplevels_;
}

// Without a window manager nobody keeps the list. What was open is still open: the windows live on,
// and whether a program has ended is told by its process alone. One that has just started lists
// them one by one; those that it hasn't come to yet are known by the state that the former one gave
// them.
void X11Toplevels::scan() {
    if (!isOutdated_ || !hasWindowManager())
        return;
    isOutdated_ = false;
    scannedAt_ = loop_.uptime();
    ownMachines_.insert(hostName());
    std::vector<xcb_window_t> all =
        connection_.numbers(connection_.request(connection_.root(), "_NET_CLIENT_LIST"));
    const std::size_t listed = all.size();
    for (const Toplevel& toplevel : toplevels_) {
        const auto window = static_cast<xcb_window_t>(toplevel.window);
        if (!holds(all, window))
            all.push_back(window);
    }
    std::vector<Inquiry> inquiries;
    inquiries.reserve(all.size());
    for (const xcb_window_t window : all)
        inquiries.push_back(inquire(window));
    toplevels_.clear();
    for (std::size_t index = 0; index < inquiries.size(); ++index) {
        if (auto toplevel = read(inquiries[index], index < listed, all))
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
            .client = requestProcess(window),
            .managed = connection_.request(window, "WM_STATE")};
}

// Every answer is fetched, whatever the others say: one that is left would stay in memory.
std::optional<Toplevel> X11Toplevels::read(const Inquiry& inquiry, bool isListed,
                                           const std::vector<xcb_window_t>& all) {
    const auto types = connection_.numbers(inquiry.type);
    const auto states = connection_.numbers(inquiry.state);
    const auto protocols = connection_.numbers(inquiry.protocols);
    const auto transientFor = connection_.numbers(inquiry.transientFor);
    const std::string wmClass = connection_.bytes(inquiry.wmClass);
    const std::string machine = firstText(connection_.bytes(inquiry.machine));
    const std::string applicationId = firstText(connection_.bytes(inquiry.applicationId));
    const auto statedProcess = connection_.numbers(inquiry.processId);
    const ProcessId serverProcess = process(inquiry.client);
    const auto managed = connection_.numbersOfWindow(inquiry.managed);

    constexpr std::uint32_t withdrawn = 0;
    const bool isManaged = managed && !managed->empty() && managed->front() != withdrawn;
    const bool isThere = isListed ? managed.has_value() : isManaged;
    const bool isHere = ownMachines_.contains(machine);
    if (!isThere || !isOrdinary(types, states) || (!machine.empty() && !isHere))
        return std::nullopt;

    Toplevel toplevel;
    toplevel.window = inquiry.window;
    // The server knows by its socket who is at the other end. What a window states of itself may be
    // a number inside a sandbox, or of another computer where it doesn't say which one it is on.
    toplevel.process = serverProcess;
    if (toplevel.process <= 0 && isHere && !statedProcess.empty())
        toplevel.process = static_cast<ProcessId>(statedProcess.front());
    if (toplevel.process <= 0)
        return std::nullopt;
    const std::string instance = firstText(wmClass);
    toplevel.identity = {
        .instance = utf8(instance),
        .className = utf8(firstText(wmClass.substr(std::min(instance.size() + 1, wmClass.size())))),
        .applicationId = utf8(applicationId)};
    // To belong to the root window is to belong to all windows of the program.
    const bool hasOwner =
        !transientFor.empty() && transientFor.front() != inquiry.window &&
        (transientFor.front() == connection_.root() || holds(all, transientFor.front()));
    toplevel.isDialogOfAnother = hasOwner || holds(states, connection_.atom("_NET_WM_STATE_MODAL"));
    toplevel.canBeAskedToClose = holds(protocols, connection_.atom("WM_DELETE_WINDOW"));
    return toplevel;
}

/// A window states its types in order of preference; one without any that is known is an ordinary
/// one: programs older than the types have none.
bool X11Toplevels::isOrdinary(const std::vector<std::uint32_t>& types,
                              const std::vector<std::uint32_t>& states) {
    if (holds(states, connection_.atom("_NET_WM_STATE_SKIP_TASKBAR")))
        return false;
    for (const std::uint32_t type : types) {
        for (const char* name : {"NORMAL", "DIALOG"}) {
            if (type == connection_.atom(std::string("_NET_WM_WINDOW_TYPE_") + name))
                return true;
        }
        for (const char* name :
             {"DESKTOP", "DOCK", "TOOLBAR", "MENU", "UTILITY", "SPLASH", "DROPDOWN_MENU",
              "POPUP_MENU", "TOOLTIP", "NOTIFICATION", "COMBO", "DND"}) {
            if (type == connection_.atom(std::string("_NET_WM_WINDOW_TYPE_") + name))
                return false;
        }
    }
    return true;
}

std::optional<xcb_res_query_client_ids_cookie_t> X11Toplevels::requestProcess(xcb_window_t window) {
    // A request of an extension that the server lacks would end the connection.
    const auto* extension = xcb_get_extension_data(connection_.get(), &xcb_res_id);
    if (!extension || !extension->present)
        return std::nullopt;
    const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return xcb_res_query_client_ids(connection_.get(), 1, &wanted);
}

ProcessId X11Toplevels::process(const std::optional<xcb_res_query_client_ids_cookie_t>& cookie) {
    const auto reply =
        cookie ? owned(xcb_res_query_client_ids_reply(connection_.get(), *cookie, nullptr))
               : nullptr;
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
    readEvents();
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
