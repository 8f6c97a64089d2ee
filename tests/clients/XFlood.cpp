// Keeps an X server busy with the behaviour of ill-mannered programs, for so many seconds:
//
//   x_flood windows RATE SECONDS     opens so many windows a second, and closes each after 50 ms
//   x_flood programs RATE SECONDS    starts so many processes a second that show a window for 50 ms
//   x_flood titles RATE SECONDS      a window that changes its title, of 64 KB
//   x_flood messages RATE SECONDS    client messages to the windows of the class "velmorquit" and
//                                    to the root window
//   x_flood settings RATE SECONDS    the selection of the settings manager changes hands
//   x_flood setting RATE SECONDS     the settings manager changes its settings
//   x_flood tray RATE SECONDS        icons that come into the tray and go after 50 ms
//   x_flood list COUNT SECONDS       a list of so many windows that nobody has, written anew ten
//                                    times a second over the window manager's
//   x_flood icon SIDE SECONDS        windows with pictures: one of SIDE x SIDE, one whose size is a
//                                    lie, one with many sizes
//
// Prints "ready" when it begins.

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto life = std::chrono::milliseconds(50);

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T> std::unique_ptr<T, Free> owned(T* memory) {
    return std::unique_ptr<T, Free>(memory);
}

class Client {
public:
    Client() : connection_(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection_))
            std::exit(1);
        screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() { xcb_disconnect(connection_); }

    [[nodiscard]] xcb_window_t root() const { return screen_->root; }

    xcb_atom_t atom(const std::string& name) {
        xcb_atom_t& known = atoms_[name];
        if (known == XCB_ATOM_NONE) {
            const auto length = static_cast<std::uint16_t>(name.size());
            const auto cookie = xcb_intern_atom(connection_, 0, length, name.data());
            known = owned(xcb_intern_atom_reply(connection_, cookie, nullptr))->atom;
        }
        return known;
    }

    void setText(xcb_window_t window, xcb_atom_t property, std::string_view text) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_STRING,
                            8, static_cast<std::uint32_t>(text.size()), text.data());
    }

    void setNumbers(xcb_window_t window, const std::string& property, xcb_atom_t type,
                    const std::vector<std::uint32_t>& numbers,
                    xcb_prop_mode_t mode = XCB_PROP_MODE_REPLACE) {
        xcb_change_property(connection_, static_cast<std::uint8_t>(mode), window, atom(property),
                            type, 32, static_cast<std::uint32_t>(numbers.size()), numbers.data());
    }

    xcb_window_t open(const std::string& name, bool isShown = true) {
        const xcb_window_t window = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root(), 100, 100, 120, 80, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual, 0, nullptr);
        using namespace std::string_literals;
        setText(window, XCB_ATOM_WM_CLASS, name + "\0"s + name + "\0"s);
        setText(window, XCB_ATOM_WM_NAME, name);
        setNumbers(window, "_NET_WM_PID", XCB_ATOM_CARDINAL,
                   {static_cast<std::uint32_t>(::getpid())});
        setNumbers(window, "WM_PROTOCOLS", XCB_ATOM_ATOM, {atom("WM_DELETE_WINDOW")});
        if (isShown)
            show(window);
        return window;
    }

    void show(xcb_window_t window) { xcb_map_window(connection_, window); }

    void close(xcb_window_t window) { xcb_destroy_window(connection_, window); }

    void own(const std::string& selection, xcb_window_t window) {
        xcb_set_selection_owner(connection_, window, atom(selection), XCB_CURRENT_TIME);
    }

    void send(xcb_window_t receiver, const std::string& type,
              const std::vector<std::uint32_t>& data, std::uint32_t mask = 0) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = receiver;
        message.type = atom(type);
        std::ranges::copy(data, std::begin(message.data.data32));
        xcb_send_event(connection_, 0, receiver, mask, reinterpret_cast<const char*>(&message));
    }

    [[nodiscard]] xcb_window_t owner(const std::string& selection) {
        const auto cookie = xcb_get_selection_owner(connection_, atom(selection));
        const auto reply = owned(xcb_get_selection_owner_reply(connection_, cookie, nullptr));
        return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
    }

    /// All windows below that one whose class begins with this name.
    void find(xcb_window_t below, std::string_view name, std::vector<xcb_window_t>& found) {
        const auto tree =
            owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, below), nullptr));
        const int count = tree ? xcb_query_tree_children_length(tree.get()) : 0;
        for (int index = 0; index < count; ++index) {
            const xcb_window_t child = xcb_query_tree_children(tree.get())[index];
            const auto cookie =
                xcb_get_property(connection_, 0, child, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 64);
            const auto text = owned(xcb_get_property_reply(connection_, cookie, nullptr));
            if (text && std::string_view(
                            static_cast<char*>(xcb_get_property_value(text.get())),
                            static_cast<std::size_t>(xcb_get_property_value_length(text.get())))
                            .starts_with(name))
                found.push_back(child);
            find(child, name, found);
        }
    }

    void flush() {
        xcb_flush(connection_);
        while (owned(xcb_poll_for_event(connection_))) {
        }
    }

private:
    xcb_connection_t* connection_;
    xcb_screen_t* screen_ = nullptr;
    std::map<std::string, xcb_atom_t> atoms_;
};

/// Acts so many times a second for so many seconds, in batches of ten milliseconds.
void repeat(Client& client, double rate, int seconds, const std::function<void()>& act) {
    std::printf("ready\n");
    std::fflush(stdout);
    const auto start = Clock::now();
    double done = 0;
    for (;;) {
        const std::chrono::duration<double> past = Clock::now() - start;
        if (past.count() > seconds)
            return;
        for (; done < rate * past.count(); ++done)
            act();
        client.flush();
        ::usleep(10'000);
    }
}

/// Opens windows and closes each when its time is over.
class Passing {
public:
    explicit Passing(std::function<void(xcb_window_t)> close) : close_(std::move(close)) {}

    void add(xcb_window_t window) {
        open_.push_back({Clock::now(), window});
        for (; Clock::now() - open_.front().since > life; open_.pop_front())
            close_(open_.front().window);
    }

private:
    struct One {
        Clock::time_point since;
        xcb_window_t window;
    };
    std::function<void(xcb_window_t)> close_;
    std::deque<One> open_;
};

void flashWindow() {
    Client client;
    client.open("Flash");
    client.flush();
    ::usleep(50'000);
}

void startPrograms(Client& client, double rate, int seconds) {
    std::signal(SIGCHLD, SIG_IGN);
    repeat(client, rate, seconds, [] {
        if (::fork() == 0) {
            flashWindow();
            std::_Exit(0);
        }
    });
}

void changeTitle(Client& client, double rate, int seconds) {
    const xcb_window_t window = client.open("Title");
    std::string title(64 << 10, 'x');
    repeat(client, rate, seconds, [&] {
        title.front() = title.front() == 'x' ? 'y' : 'x';
        client.setText(window, XCB_ATOM_WM_NAME, title);
    });
}

void floodMessages(Client& client, double rate, int seconds) {
    std::vector<xcb_window_t> targets;
    client.find(client.root(), "velmorquit", targets);
    std::uint32_t number = 0;
    repeat(client, rate, seconds, [&] {
        constexpr std::uint32_t toAll =
            XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        client.send(client.root(), "WM_PROTOCOLS", {client.atom("_NET_WM_PING"), 0, ++number},
                    toAll);
        for (const xcb_window_t target : targets) {
            client.send(target, "_XEMBED", {0, number % 12, 0, 0, 0});
            client.send(target, "WM_PROTOCOLS", {client.atom("_NET_WM_PING"), 0, target});
        }
    });
}

/// One integer setting with that value.
std::string settings(std::uint32_t value) {
    std::string bytes(12, '\0');
    bytes[8] = 1;
    bytes += std::string("\0\0\x07\0Xft/DPI\0\0\0\0\0", 16);
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(value >> shift);
    return bytes;
}

void changeSettings(Client& client, double rate, int seconds, bool changesHands) {
    const xcb_window_t managers[] = {client.open("Manager", false), client.open("Manager", false)};
    const xcb_atom_t property = client.atom("_XSETTINGS_SETTINGS");
    client.own("_XSETTINGS_S0", managers[0]);
    std::uint32_t number = 0;
    repeat(client, rate, seconds, [&] {
        ++number;
        const xcb_window_t manager = managers[changesHands ? number % 2 : 0];
        client.setText(manager, property, settings(96 * 1024 + number % 2 * 1024));
        if (changesHands)
            client.own("_XSETTINGS_S0", manager);
    });
}

void floodTray(Client& client, double rate, int seconds) {
    Passing icons([&](xcb_window_t icon) { client.close(icon); });
    repeat(client, rate, seconds, [&] {
        const xcb_window_t icon = client.open("Icon", false);
        client.setNumbers(icon, "_XEMBED_INFO", client.atom("_XEMBED_INFO"), {0, 1});
        client.send(client.owner("_NET_SYSTEM_TRAY_S0"), "_NET_SYSTEM_TRAY_OPCODE", {0, 0, icon});
        icons.add(icon);
    });
}

void writeList(Client& client, double count, int seconds) {
    std::vector<std::uint32_t> windows(static_cast<std::size_t>(count));
    for (std::size_t index = 0; index < windows.size(); ++index)
        windows[index] = static_cast<std::uint32_t>(0x1F000000 + index);
    repeat(client, 10, seconds, [&] {
        windows.front() ^= 1;
        client.setNumbers(client.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, windows);
    });
}

void appendPicture(Client& client, xcb_window_t window, std::uint32_t width, std::uint32_t height,
                   std::size_t pixels) {
    constexpr std::size_t portion = 1U << 20;
    client.setNumbers(window, "_NET_WM_ICON", XCB_ATOM_CARDINAL, {width, height},
                      XCB_PROP_MODE_APPEND);
    const std::vector<std::uint32_t> part(std::min(portion, pixels), 0xFF336699);
    for (std::size_t left = pixels; left > 0; left -= std::min(left, part.size()))
        client.setNumbers(
            window, "_NET_WM_ICON", XCB_ATOM_CARDINAL,
            {part.begin(), part.begin() + std::ptrdiff_t(std::min(left, part.size()))},
            XCB_PROP_MODE_APPEND);
}

/// Each in a process of its own, since only a program's first window counts.
void showPictures(double side, int seconds) {
    const auto size = static_cast<std::uint32_t>(side);
    const std::vector<std::function<void(Client&, xcb_window_t)>> draw{
        [size](Client& client, xcb_window_t window) {
            appendPicture(client, window, size, size, std::size_t{size} * size);
            appendPicture(client, window, 48, 48, std::size_t{48} * 48);
        },
        [](Client& client, xcb_window_t window) { appendPicture(client, window, 1024, 1024, 100); },
        [](Client& client, xcb_window_t window) {
            appendPicture(client, window, 0x10000, 0x10000, 100);
        },
        [](Client& client, xcb_window_t window) {
            for (std::uint32_t one = 0; one < 1000; ++one)
                appendPicture(client, window, one % 64 + 1, 1, one % 64 + 1);
        },
    };
    for (std::size_t index = 0; index < draw.size(); ++index) {
        if (::fork() != 0)
            continue;
        Client client;
        const xcb_window_t window = client.open("Picture" + std::to_string(index), false);
        draw[index](client, window);
        client.show(window);
        client.flush();
        ::sleep(static_cast<unsigned>(seconds));
        std::_Exit(0);
    }
    while (::wait(nullptr) > 0) {
    }
}

int run(const std::string& kind, double rate, int seconds) {
    if (kind == "icon") {
        showPictures(rate, seconds);
        return 0;
    }
    Client client;
    Passing windows([&](xcb_window_t window) { client.close(window); });
    if (kind == "windows")
        repeat(client, rate, seconds, [&] { windows.add(client.open("Passing")); });
    else if (kind == "programs")
        startPrograms(client, rate, seconds);
    else if (kind == "titles")
        changeTitle(client, rate, seconds);
    else if (kind == "messages")
        floodMessages(client, rate, seconds);
    else if (kind == "settings" || kind == "setting")
        changeSettings(client, rate, seconds, kind == "settings");
    else if (kind == "tray")
        floodTray(client, rate, seconds);
    else if (kind == "list")
        writeList(client, rate, seconds);
    else
        return 2;
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return argc == 4 ? run(argv[1], std::atof(argv[2]), std::atoi(argv[3])) : 2;
}
