#include "Linux/X11/X11Windows.h"

#include "Linux/Text/Utf8.h"
#include "Linux/X11/X11Properties.h"

#include <algorithm>
#include <array>
#include <utility>

#include <unistd.h>

namespace velmorquit {

namespace {

/// In units of four bytes: a window has a handful of types, states and protocols, and names of a
/// few words. All of them are requested for all windows at every look.
constexpr std::uint32_t mostAtoms = 1024;
constexpr std::uint32_t longestName = 256;

std::string hostName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

bool holds(const std::vector<std::uint32_t>& atoms, xcb_atom_t atom) {
    return std::ranges::find(atoms, atom) != atoms.end();
}

} // namespace

X11Windows::Inquiry X11Windows::inquire(xcb_window_t window) {
    return {.window = window,
            .type = connection_.request(window, "_NET_WM_WINDOW_TYPE", mostAtoms),
            .state = connection_.request(window, "_NET_WM_STATE", mostAtoms),
            .protocols = connection_.request(window, "WM_PROTOCOLS", mostAtoms),
            .transientFor = connection_.request(window, "WM_TRANSIENT_FOR"),
            .wmClass = connection_.request(window, "WM_CLASS", longestName),
            .machine = connection_.request(window, "WM_CLIENT_MACHINE", longestName),
            .applicationId = connection_.request(window, "_GTK_APPLICATION_ID", longestName),
            .processId = connection_.request(window, "_NET_WM_PID"),
            .client = requestProcess(window),
            .managed = connection_.request(window, "WM_STATE")};
}

// Every answer is fetched, whatever the others say: otherwise it would stay in memory.
std::optional<X11Windows::Facts> X11Windows::read(const Inquiry& inquiry) {
    const auto types = connection_.numbers(inquiry.type);
    const auto states = connection_.numbers(inquiry.state);
    const auto protocols = connection_.numbers(inquiry.protocols);
    const auto transientFor = connection_.numbers(inquiry.transientFor);
    const std::string wmClass = connection_.bytes(inquiry.wmClass);
    const std::string machine = X11Properties::firstText(connection_.bytes(inquiry.machine));
    const std::string applicationId = connection_.bytes(inquiry.applicationId);
    const auto statedProcess = connection_.numbers(inquiry.processId);
    const ProcessId serverProcess = process(inquiry.client);
    const auto managed = connection_.numbersOfWindow(inquiry.managed);
    if (!managed)
        return std::nullopt;

    constexpr std::uint32_t withdrawn = 0;
    Facts facts;
    facts.isManaged = !managed->empty() && managed->front() != withdrawn;
    ownMachines_.insert(hostName());
    const bool isHere = ownMachines_.contains(machine);

    Toplevel& toplevel = facts.toplevel;
    toplevel.window = inquiry.window;
    // The server knows the process at the other end of its socket, which for windows of another
    // computer is the forwarding one. The window's own statement may be an id inside a sandbox, or
    // on another computer if it doesn't say on which one it is.
    if (!machine.empty() && !isHere)
        toplevel.machine = utf8(machine);
    else if (serverProcess > 0)
        toplevel.process = serverProcess;
    else if (isHere && !statedProcess.empty())
        toplevel.process = std::max(0, static_cast<ProcessId>(statedProcess.front()));
    facts.kind = kindOf(types);
    toplevel.identity = X11Properties::identity(wmClass, applicationId);
    toplevel.isModal = holds(states, connection_.atom("_NET_WM_STATE_MODAL"));
    if (!transientFor.empty() && transientFor.front() != inquiry.window)
        facts.owner = transientFor.front();
    toplevel.isOrdinary = !holds(states, connection_.atom("_NET_WM_STATE_SKIP_TASKBAR"));
    toplevel.canBeAskedToClose = holds(protocols, connection_.atom("WM_DELETE_WINDOW"));
    toplevel.canBePinged = holds(protocols, connection_.atom("_NET_WM_PING"));
    return facts;
}

/// A window states its types in order of preference. Without any known type it is an ordinary one:
/// programs older than the types state none.
X11Windows::Kind X11Windows::kindOf(const std::vector<std::uint32_t>& types) {
    static constexpr std::array<std::pair<const char*, Kind>, 14> kinds{
        {{"NORMAL", Kind::toplevel},
         {"DIALOG", Kind::toplevel},
         {"DESKTOP", Kind::shell},
         {"DOCK", Kind::shell},
         {"TOOLBAR", Kind::other},
         {"MENU", Kind::other},
         {"UTILITY", Kind::other},
         {"SPLASH", Kind::other},
         {"DROPDOWN_MENU", Kind::other},
         {"POPUP_MENU", Kind::other},
         {"TOOLTIP", Kind::other},
         {"NOTIFICATION", Kind::other},
         {"COMBO", Kind::other},
         {"DND", Kind::other}}};
    for (const std::uint32_t type : types) {
        for (const auto& [name, kind] : kinds) {
            if (type == connection_.atom(std::string("_NET_WM_WINDOW_TYPE_") + name))
                return kind;
        }
    }
    return Kind::toplevel;
}

X11Windows::ClientCookie X11Windows::requestProcess(xcb_window_t window) {
    // A request of an extension that the server lacks would end the connection.
    const auto* extension = xcb_get_extension_data(connection_.get(), &xcb_res_id);
    if (!extension || !extension->present)
        return std::nullopt;
    const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return xcb_res_query_client_ids(connection_.get(), 1, &wanted);
}

ProcessId X11Windows::process(const ClientCookie& cookie) {
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

ProcessId X11Windows::process(xcb_window_t window) { return process(requestProcess(window)); }

std::set<ProcessId> X11Windows::processes(const std::set<xcb_window_t>& windows) {
    std::vector<ClientCookie> cookies;
    for (const xcb_window_t window : windows)
        cookies.push_back(requestProcess(window));
    std::set<ProcessId> processes;
    for (const ClientCookie& cookie : cookies)
        processes.insert(process(cookie));
    processes.erase(0);
    return processes;
}

Image X11Windows::icon(xcb_window_t window) {
    return X11Properties::icon([&](std::uint32_t offset, std::uint32_t count) {
        return connection_.numbers(window, "_NET_WM_ICON", offset, count);
    });
}

} // namespace velmorquit
