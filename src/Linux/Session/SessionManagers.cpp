#include "Linux/Session/SessionManagers.h"

namespace velmorquit {

namespace {

const SessionManager gnome{
    .ownedName = "org.gnome.SessionManager",
    // Its other requests open a dialog.
    .direct = {.service = "org.gnome.SessionManager",
               .path = "/org/gnome/SessionManager",
               .interface = "org.gnome.SessionManager",
               .logOut = {"Logout", {1U}}},
    .asking = {.service = "org.gnome.SessionManager",
               .path = "/org/gnome/SessionManager",
               .interface = "org.gnome.SessionManager",
               .logOut = {"Logout", {0U}},
               .shutDown = {"Shutdown"},
               .restart = {"Reboot"}},
};

// The arguments of its log-out: whether to show a dialog, and whether it may save the session. The
// dialog has a button for each of the three.
const ManagerMethod xfceDialog{"Logout", {true, true}};
const SessionManager xfce{
    .ownedName = "org.xfce.SessionManager",
    .direct = {.service = "org.xfce.SessionManager",
               .path = "/org/xfce/SessionManager",
               .interface = "org.xfce.Session.Manager",
               .logOut = {"Logout", {false, true}},
               .shutDown = {"Shutdown", {false}},
               .restart = {"Restart", {false}}},
    .asking = {.service = "org.xfce.SessionManager",
               .path = "/org/xfce/SessionManager",
               .interface = "org.xfce.Session.Manager",
               .logOut = xfceDialog,
               .shutDown = xfceDialog,
               .restart = xfceDialog},
};

const SessionManager plasma{
    .ownedName = "org.kde.ksmserver",
    .direct = {.service = "org.kde.Shutdown",
               .path = "/Shutdown",
               .interface = "org.kde.Shutdown",
               .logOut = {"logout"},
               .shutDown = {"logoutAndShutdown"},
               .restart = {"logoutAndReboot"}},
    .asking = {.service = "org.kde.LogoutPrompt",
               .path = "/LogoutPrompt",
               .interface = "org.kde.LogoutPrompt",
               .logOut = {"promptLogout"},
               .shutDown = {"promptShutDown"},
               .restart = {"promptReboot"}},
};

const SessionManager lxqt{
    .ownedName = "org.lxqt.session",
    .direct = {.service = "org.lxqt.session",
               .path = "/LXQtSession",
               .interface = "org.lxqt.session",
               .logOut = {"logout"}},
    .askingProgram = "lxqt-leave",
};

} // namespace

const ManagerMethod& ManagerCalls::method(LoginRequest request) const {
    switch (request) {
    case LoginRequest::shutDown:
        return shutDown;
    case LoginRequest::restart:
        return restart;
    case LoginRequest::logOut:
        break;
    }
    return logOut;
}

const std::array<SessionManager, 4>& sessionManagers() {
    static const std::array managers{gnome, xfce, plasma, lxqt};
    return managers;
}

} // namespace velmorquit
