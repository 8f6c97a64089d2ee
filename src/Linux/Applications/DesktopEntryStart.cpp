#include "Linux/Applications/DesktopEntryStart.h"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include <unistd.h>

namespace velmorquit {

namespace {

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
};
template <class T> using Owned = std::unique_ptr<T, Unref>;

constexpr std::string_view suffix = ".desktop";

/// For an entry without a command. The answer comes when the program has handled the call.
bool activateOverBus(const std::string& path) {
    constexpr int milliseconds = 25000;
    std::string name = path.substr(path.rfind('/') + 1);
    name.resize(name.size() - suffix.size());
    const Owned<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (!bus || g_dbus_is_name(name.c_str()) == 0)
        return false;
    std::string object = '/' + name;
    std::ranges::replace(object, '.', '/');
    std::ranges::replace(object, '-', '_');
    GVariant* answer = g_dbus_connection_call_sync(
        bus.get(), name.c_str(), object.c_str(), "org.freedesktop.Application", "Activate",
        g_variant_new("(a{sv})", nullptr), nullptr, G_DBUS_CALL_FLAGS_NONE, milliseconds, nullptr,
        nullptr);
    if (!answer)
        return false;
    g_variant_unref(answer);
    return true;
}

} // namespace

bool startDesktopEntry(const std::string& path) {
    // Entries are remembered by their whole paths; no other file is read as one.
    if (!path.starts_with('/') || !path.ends_with(suffix))
        return false;
    // Ends an attempt that hangs, for instance on a file of a server that has gone. Alarms are
    // not inherited.
    ::alarm(60);
    // Otherwise it would keep the present folder busy.
    [[maybe_unused]] const int unchanged = ::chdir(g_get_home_dir());
    const Owned<GDesktopAppInfo> entry(g_desktop_app_info_new_from_filename(path.c_str()));
    if (!entry)
        return false;
    GAppInfo* program = G_APP_INFO(entry.get());
    if (!g_app_info_get_commandline(program))
        return activateOverBus(path);
    const Owned<GAppLaunchContext> context(g_app_launch_context_new());
    for (const char* token : {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"})
        g_app_launch_context_unsetenv(context.get(), token);
    // The context has its copy of the environment by now. A program activated over the bus would
    // come to the front, so its command is started without the bus, which then can't hold up the
    // start either.
    g_setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null", 1);
    return g_app_info_launch(program, nullptr, context.get(), nullptr) != 0;
}

} // namespace velmorquit
