// A small X client with the manners that its arguments give it. Prints "ready PID WINDOW..." when
// its windows are on the screen, then a line for each time that a window is asked to close, and
// lives until its last window has closed.
//
//   --class NAME          WM_CLASS: the class as given, the instance in lower case (Rude)
//   --next-class NAME     opens one more window, of that class
//   --title TEXT          the title of its windows, which otherwise is the class
//   --title-length N      fills the title up to so many bytes
//   --windows N           opens N windows (1)
//   --machine HOST        says that it runs on that host
//   --type TYPE           _NET_WM_WINDOW_TYPE_TYPE; several in order of preference
//   --modal               its last window is a modal dialog of its first one
//   --ignore              takes no notice of being asked to close
//   --no-protocol         doesn't understand being asked to close
//   --stay                lives on without windows
//   --asks                opens a modal dialog that no list shows when it is asked to close
//   --asks-plainly        opens a window like any other then, and asks nothing else
//   --ping                understands being asked whether it reacts, and answers
//   --pongs-as-qt         sends that answer with another event mask
//   --frozen              understands it, and doesn't answer
//   --dock                its first window is a panel of the desktop
//   --tray                its windows are icons that it asks the tray to take in
//   --tray-icon           has an icon in the tray beside its windows
//   --works SECONDS       without windows it writes files for so long, and then ends
//   --gapplication-service  nothing: so services are started by the bus
//   --deaf                takes no notice of SIGTERM either

#include "Linux/X11/X11Connection.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <map>
#include <set>

#include <unistd.h>

namespace velmorquit {
namespace {

/// The values of each argument, in their order.
using Manners = std::map<std::string, std::vector<std::string>>;

class Client {
public:
    Client(Manners manners, X11Connection& x11) : manners_(std::move(manners)), x11_(x11) {}

    int run() {
        for (int count = number("--windows", 1); count > 0; --count)
            open(text("--class", "Rude"));
        for (const std::string& name : manners_["--next-class"])
            open(name);
        if (has("--modal"))
            makeModal(windows_.back());
        for (const xcb_window_t window : windows_) {
            if (has("--tray"))
                askTray(window);
            else
                xcb_map_window(x11_.get(), window);
        }
        if (has("--tray-icon")) {
            open("Icon");
            askTray(windows_.back());
            windows_.pop_back();
        }
        xcb_flush(x11_.get());
        while (const auto event = owned(xcb_wait_for_event(x11_.get()))) {
            const int type = event->response_type & 0x7f;
            if (type == XCB_MAP_NOTIFY && ++mapped_ == windows_.size())
                announce();
            if (type == XCB_BUTTON_PRESS)
                std::puts("clicked");
            if (type != XCB_CLIENT_MESSAGE)
                continue;
            auto& message = *reinterpret_cast<xcb_client_message_event_t*>(event.get());
            if (message.type != x11_.atom("WM_PROTOCOLS"))
                continue;
            if (message.data.data32[0] == x11_.atom("_NET_WM_PING"))
                answer(message);
            else if (isEndOf(message.window))
                return 0;
        }
        return 1;
    }

private:
    [[nodiscard]] bool has(const char* manner) const { return manners_.contains(manner); }
    [[nodiscard]] std::string text(const char* manner, const std::string& usual = {}) const {
        return has(manner) ? manners_.at(manner).back() : usual;
    }
    [[nodiscard]] int number(const char* manner, int usual = 0) const {
        return has(manner) ? std::stoi(text(manner)) : usual;
    }

    void setText(xcb_window_t window, xcb_atom_t property, const std::string& text) {
        xcb_change_property(x11_.get(), XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    }
    void setNumbers(xcb_window_t window, const std::string& property, xcb_atom_t type,
                    const std::vector<std::uint32_t>& numbers) {
        if (!numbers.empty())
            xcb_change_property(x11_.get(), XCB_PROP_MODE_REPLACE, window, x11_.atom(property),
                                type, 32, static_cast<std::uint32_t>(numbers.size()),
                                numbers.data());
    }
    void setAtoms(xcb_window_t window, const std::string& property,
                  const std::vector<std::string>& names) {
        std::vector<xcb_atom_t> atoms;
        for (const std::string& name : names)
            atoms.push_back(x11_.atom(name));
        setNumbers(window, property, XCB_ATOM_ATOM, atoms);
    }

    void answer(xcb_client_message_event_t& message) {
        if (has("--frozen"))
            return;
        message.window = x11_.root();
        const std::uint32_t listeners = has("--pongs-as-qt") ? XCB_EVENT_MASK_STRUCTURE_NOTIFY
                                                             : XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_send_event(x11_.get(), 0, x11_.root(), listeners | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(x11_.get());
    }

    void open(const std::string& className) {
        const xcb_window_t window = xcb_generate_id(x11_.get());
        const auto offset = static_cast<std::int16_t>(40 * windows_.size() + 40);
        const std::uint32_t values[] = {x11_.screen().white_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                                                       XCB_EVENT_MASK_BUTTON_PRESS};
        xcb_create_window(x11_.get(), XCB_COPY_FROM_PARENT, window, x11_.root(), offset, offset,
                          240, 120, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, x11_.screen().root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        std::string instance = className;
        std::ranges::transform(instance, instance.begin(),
                               [](unsigned char letter) { return std::tolower(letter); });
        setText(window, XCB_ATOM_WM_CLASS, instance + '\0' + className + '\0');
        std::string title = text("--title", className);
        title.resize(std::max(title.size(), std::size_t(number("--title-length"))), 'x');
        setText(window, XCB_ATOM_WM_NAME, title);
        setNumbers(window, "_NET_WM_PID", XCB_ATOM_CARDINAL,
                   {static_cast<std::uint32_t>(getpid())});
        if (has("--machine"))
            setText(window, XCB_ATOM_WM_CLIENT_MACHINE, text("--machine"));
        std::vector<std::string> types = manners_["--type"];
        for (std::string& type : types)
            type.insert(0, "_NET_WM_WINDOW_TYPE_");
        if (has("--dock") && windows_.empty())
            types = {"_NET_WM_WINDOW_TYPE_DOCK"};
        setAtoms(window, "_NET_WM_WINDOW_TYPE", types);
        std::vector<std::string> protocols;
        if (!has("--no-protocol"))
            protocols.emplace_back("WM_DELETE_WINDOW");
        if (has("--ping") || has("--pongs-as-qt") || has("--frozen"))
            protocols.emplace_back("_NET_WM_PING");
        setAtoms(window, "WM_PROTOCOLS", protocols);
        windows_.push_back(window);
    }

    void makeModal(xcb_window_t window) {
        setNumbers(window, "WM_TRANSIENT_FOR", XCB_ATOM_WINDOW, {windows_.front()});
        std::vector<std::string> states{"_NET_WM_STATE_MODAL"};
        if (has("--asks"))
            states.emplace_back("_NET_WM_STATE_SKIP_TASKBAR");
        setAtoms(window, "_NET_WM_STATE", states);
    }

    /// The tray shows the window, inside one of its own.
    void askTray(xcb_window_t window) {
        const auto cookie = xcb_get_selection_owner(x11_.get(), x11_.atom("_NET_SYSTEM_TRAY_S0"));
        const auto tray = owned(xcb_get_selection_owner_reply(x11_.get(), cookie, nullptr));
        const std::uint32_t version = 0;
        const std::uint32_t isShown = 1;
        setNumbers(window, "_XEMBED_INFO", x11_.atom("_XEMBED_INFO"), {version, isShown});
        x11_.sendMessage(tray->owner, tray->owner, "_NET_SYSTEM_TRAY_OPCODE", {0, 0, window});
    }

    void announce() const {
        std::printf("ready %d", getpid());
        for (const xcb_window_t window : windows_)
            std::printf(" %u", window);
        std::puts("");
    }

    /// The window was asked to close; whether that is the end.
    bool isEndOf(xcb_window_t window) {
        std::printf("asked %u\n", window);
        const bool asks = has("--asks") || has("--asks-plainly");
        if (asks) {
            open("Question");
            if (has("--asks"))
                makeModal(windows_.back());
            xcb_map_window(x11_.get(), windows_.back());
            xcb_flush(x11_.get());
        }
        if (has("--ignore") || asks || has("--frozen"))
            return false;
        xcb_destroy_window(x11_.get(), window);
        xcb_flush(x11_.get());
        std::erase(windows_, window);
        if (windows_.empty() && has("--works"))
            work(std::chrono::seconds(number("--works")));
        return windows_.empty() && !has("--stay");
    }

    /// As the copy of a folder does it, into files that have no name.
    static void work(std::chrono::seconds time) {
        using Clock = std::chrono::steady_clock;
        const std::string part(256 << 10, 'x');
        const auto end = Clock::now() + time;
        while (Clock::now() < end) {
            std::FILE* file = std::tmpfile();
            std::fwrite(part.data(), 1, part.size(), file);
            std::fclose(file);
            // It compares what it has written, too.
            const auto compared = Clock::now() + std::chrono::milliseconds(10);
            while (Clock::now() < compared)
                continue;
            usleep(50'000);
        }
        std::puts("worked");
    }

    Manners manners_;
    X11Connection& x11_;
    std::vector<xcb_window_t> windows_;
    std::size_t mapped_ = 0;
};

} // namespace
} // namespace velmorquit

int main(int argc, char** argv) {
    using namespace velmorquit;
    const std::set<std::string> withValue{"--class",   "--next-class", "--title", "--title-length",
                                          "--windows", "--machine",    "--type",  "--works"};
    Manners manners;
    for (int index = 1; index < argc; ++index) {
        const std::string manner = argv[index];
        if (withValue.contains(manner) && index + 1 < argc)
            manners[manner].emplace_back(argv[++index]);
        else
            manners[manner];
    }
    if (manners.contains("--deaf"))
        std::signal(SIGTERM, SIG_IGN);
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    auto connection = X11Connection::open();
    return connection ? Client(std::move(manners), *connection).run() : 1;
}
