// Starts a command and waits until a window of the class "velmorquit" is visible inside another
// one: that is its tray icon. Prints the id of the process, which keeps running, and the
// milliseconds.

#include "Linux/X11/X11Connection.h"

#include <xcb/xcb.h>

#include <chrono>
#include <cstdio>
#include <memory>

#include <spawn.h>
#include <unistd.h>

namespace velmorquit {
namespace {

bool isIcon(X11Connection& x11, xcb_window_t window) {
    const std::string wmClass = x11.bytes(x11.request(window, "WM_CLASS"));
    const auto attributes = owned(xcb_get_window_attributes_reply(
        x11.get(), xcb_get_window_attributes(x11.get(), window), nullptr));
    return wmClass.starts_with("velmorquit") && attributes &&
           attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool holdsIcon(X11Connection& x11, xcb_window_t window, int depth) {
    const auto tree =
        owned(xcb_query_tree_reply(x11.get(), xcb_query_tree(x11.get(), window), nullptr));
    const int count = tree ? xcb_query_tree_children_length(tree.get()) : 0;
    for (int index = 0; index < count; ++index) {
        const xcb_window_t child = xcb_query_tree_children(tree.get())[index];
        if ((depth > 0 && isIcon(x11, child)) || (depth < 3 && holdsIcon(x11, child, depth + 1)))
            return true;
    }
    return false;
}

int run(char** command) {
    using Clock = std::chrono::steady_clock;
    auto x11 = X11Connection::open();
    if (!x11 || !*command)
        return 2;
    const auto start = Clock::now();
    pid_t process = 0;
    if (::posix_spawnp(&process, *command, nullptr, nullptr, command, environ) != 0)
        return 2;
    while (!holdsIcon(*x11, x11->root(), 0)) {
        if (Clock::now() - start > std::chrono::seconds(20))
            return 1;
        ::usleep(500);
    }
    const std::chrono::duration<double, std::milli> time = Clock::now() - start;
    std::printf("%d %.1f\n", process, time.count());
    return 0;
}

} // namespace
} // namespace velmorquit

int main(int /*argc*/, char** argv) { return velmorquit::run(argv + 1); }
