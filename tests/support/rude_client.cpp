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
//   --icon                its windows have pictures of 1100, 16, 128 and 64 pixels, each of one
//   colour
//   --deaf                takes no notice of SIGTERM either

#include <xcb/xcb.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

struct Manners {
    std::vector<std::string> classes{"Rude"};
    std::string title;
    std::size_t titleLength = 0;
    int windows = 1;
    std::string machine;
    std::vector<std::string> types;
    bool isModal = false;
    bool ignores = false;
    bool hasProtocol = true;
    bool stays = false;
    bool asks = false;
    bool asksPlainly = false;
    bool pongsAsQt = false;
    bool canBePinged = false;
    bool isFrozen = false;
    bool isDock = false;
    bool isInTray = false;
    bool hasTrayIcon = false;
    int secondsOfWork = 0;
    bool hasIcon = false;
};

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T> std::unique_ptr<T, Free> owned(T* memory) {
    return std::unique_ptr<T, Free>(memory);
}

class Client {
public:
    explicit Client(Manners manners)
        : manners_(std::move(manners)), connection_(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection_))
            std::exit(1);
        screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() { xcb_disconnect(connection_); }

    int run() {
        for (std::size_t index = 0; index < manners_.classes.size(); ++index) {
            const int count = index == 0 ? manners_.windows : 1;
            for (int number = 0; number < count; ++number)
                open(manners_.classes[index]);
        }
        if (manners_.isModal)
            makeModal(windows_.back());
        for (const xcb_window_t window : windows_) {
            if (manners_.isInTray)
                askTray(window);
            else
                xcb_map_window(connection_, window);
        }
        if (manners_.hasTrayIcon) {
            open("Icon");
            askTray(windows_.back());
            windows_.pop_back();
        }
        xcb_flush(connection_);
        while (const auto event = owned(xcb_wait_for_event(connection_))) {
            const int type = event->response_type & 0x7f;
            if (type == XCB_MAP_NOTIFY && ++mapped_ == windows_.size())
                announce();
            if (type == XCB_BUTTON_PRESS) {
                std::printf("clicked\n");
                std::fflush(stdout);
            }
            if (type != XCB_CLIENT_MESSAGE)
                continue;
            auto& message = *reinterpret_cast<xcb_client_message_event_t*>(event.get());
            if (message.type != atom("WM_PROTOCOLS"))
                continue;
            if (message.data.data32[0] == atom("_NET_WM_PING"))
                answer(message);
            else if (asked(message.window))
                return 0;
        }
        return 1;
    }

private:
    xcb_atom_t atom(const std::string& name) {
        const auto cookie =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        return owned(xcb_intern_atom_reply(connection_, cookie, nullptr))->atom;
    }

    void setText(xcb_window_t window, xcb_atom_t property, const std::string& text) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_STRING,
                            8, static_cast<std::uint32_t>(text.size()), text.data());
    }

    void setNumbers(xcb_window_t window, const std::string& property, xcb_atom_t type,
                    const std::vector<std::uint32_t>& numbers) {
        if (!numbers.empty())
            xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), type,
                                32, static_cast<std::uint32_t>(numbers.size()), numbers.data());
    }

    static std::vector<std::uint32_t> pictures() {
        std::vector<std::uint32_t> numbers;
        // One that is larger than anybody wants comes first.
        for (const std::uint32_t side : {1100, 16, 128, 64}) {
            numbers.insert(numbers.end(), 2, side);
            numbers.insert(numbers.end(), side * side, 0xFF000000 + side);
        }
        return numbers;
    }

    void answer(xcb_client_message_event_t& message) {
        if (manners_.isFrozen)
            return;
        message.window = screen_->root;
        const std::uint32_t listeners = manners_.pongsAsQt ? XCB_EVENT_MASK_STRUCTURE_NOTIFY
                                                           : XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_send_event(connection_, 0, screen_->root,
                       listeners | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(connection_);
    }

    void open(const std::string& className) {
        const xcb_window_t window = xcb_generate_id(connection_);
        const auto offset = static_cast<std::int16_t>(40 * windows_.size() + 40);
        const std::uint32_t values[] = {screen_->white_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                                                  XCB_EVENT_MASK_BUTTON_PRESS};
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen_->root, offset, offset,
                          240, 120, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        std::string instance = className;
        std::ranges::transform(instance, instance.begin(),
                               [](unsigned char letter) { return std::tolower(letter); });
        setText(window, XCB_ATOM_WM_CLASS,
                instance + std::string(1, '\0') + className + std::string(1, '\0'));
        std::string title = manners_.title.empty() ? className : manners_.title;
        title.resize(std::max(title.size(), manners_.titleLength), 'x');
        setText(window, XCB_ATOM_WM_NAME, title);
        setNumbers(window, "_NET_WM_PID", XCB_ATOM_CARDINAL,
                   {static_cast<std::uint32_t>(getpid())});
        if (!manners_.machine.empty())
            setText(window, XCB_ATOM_WM_CLIENT_MACHINE, manners_.machine);
        std::vector<xcb_atom_t> types;
        for (const std::string& type : manners_.types)
            types.push_back(atom("_NET_WM_WINDOW_TYPE_" + type));
        if (manners_.isDock && windows_.empty())
            types = {atom("_NET_WM_WINDOW_TYPE_DOCK")};
        setNumbers(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, types);
        std::vector<std::uint32_t> protocols;
        if (manners_.hasProtocol)
            protocols.push_back(atom("WM_DELETE_WINDOW"));
        if (manners_.canBePinged)
            protocols.push_back(atom("_NET_WM_PING"));
        setNumbers(window, "WM_PROTOCOLS", XCB_ATOM_ATOM, protocols);
        if (manners_.hasIcon)
            setNumbers(window, "_NET_WM_ICON", XCB_ATOM_CARDINAL, pictures());
        windows_.push_back(window);
    }

    void makeModal(xcb_window_t window) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_TRANSIENT_FOR,
                            XCB_ATOM_WINDOW, 32, 1, &windows_.front());
        std::vector<std::uint32_t> states{atom("_NET_WM_STATE_MODAL")};
        if (manners_.asks)
            states.push_back(atom("_NET_WM_STATE_SKIP_TASKBAR"));
        setNumbers(window, "_NET_WM_STATE", XCB_ATOM_ATOM, states);
    }

    /// The tray shows the window, inside one of its own.
    void askTray(xcb_window_t window) {
        const auto cookie = xcb_get_selection_owner(connection_, atom("_NET_SYSTEM_TRAY_S0"));
        const auto tray = owned(xcb_get_selection_owner_reply(connection_, cookie, nullptr));
        const std::uint32_t version = 0;
        const std::uint32_t isShown = 1;
        setNumbers(window, "_XEMBED_INFO", atom("_XEMBED_INFO"), {version, isShown});
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = tray->owner;
        message.type = atom("_NET_SYSTEM_TRAY_OPCODE");
        message.data.data32[2] = window;
        xcb_send_event(connection_, 0, tray->owner, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&message));
    }

    void announce() const {
        std::printf("ready %d", getpid());
        for (const xcb_window_t window : windows_)
            std::printf(" %u", window);
        std::printf("\n");
        std::fflush(stdout);
    }

    /// Whether that was the end.
    bool asked(xcb_window_t window) {
        std::printf("asked %u\n", window);
        std::fflush(stdout);
        if (manners_.asks) {
            open("Question");
            if (!manners_.asksPlainly)
                makeModal(windows_.back());
            xcb_map_window(connection_, windows_.back());
            xcb_flush(connection_);
        }
        if (manners_.ignores || manners_.asks || manners_.isFrozen)
            return false;
        xcb_destroy_window(connection_, window);
        xcb_flush(connection_);
        std::erase(windows_, window);
        if (windows_.empty() && manners_.secondsOfWork > 0)
            work();
        return windows_.empty() && !manners_.stays;
    }

    /// As the copy of a folder does it, into files that have no name.
    void work() const {
        const std::string part(256 << 10, 'x');
        const auto end =
            std::chrono::steady_clock::now() + std::chrono::seconds(manners_.secondsOfWork);
        while (std::chrono::steady_clock::now() < end) {
            std::FILE* file = std::tmpfile();
            std::fwrite(part.data(), 1, part.size(), file);
            std::fclose(file);
            // It compares what it has written, too.
            const auto compared = std::chrono::steady_clock::now() + std::chrono::milliseconds(10);
            while (std::chrono::steady_clock::now() < compared)
                continue;
            usleep(50'000);
        }
        std::printf("worked\n");
        std::fflush(stdout);
    }

    Manners manners_;
    xcb_connection_t* connection_;
    xcb_screen_t* screen_ = nullptr;
    std::vector<xcb_window_t> windows_;
    std::size_t mapped_ = 0;
};

} // namespace

int main(int argc, char** argv) {
    Manners manners;
    for (int index = 1; index < argc; ++index) {
        const std::string option = argv[index];
        const auto value = [&] { return std::string(argv[++index]); };
        if (option == "--class")
            manners.classes.front() = value();
        else if (option == "--next-class")
            manners.classes.push_back(value());
        else if (option == "--title")
            manners.title = value();
        else if (option == "--title-length")
            manners.titleLength = std::stoul(value());
        else if (option == "--windows")
            manners.windows = std::stoi(value());
        else if (option == "--machine")
            manners.machine = value();
        else if (option == "--type")
            manners.types.push_back(value());
        else if (option == "--modal")
            manners.isModal = true;
        else if (option == "--ignore")
            manners.ignores = true;
        else if (option == "--no-protocol")
            manners.hasProtocol = false;
        else if (option == "--stay")
            manners.stays = true;
        else if (option == "--asks")
            manners.asks = true;
        else if (option == "--asks-plainly")
            manners.asks = manners.asksPlainly = true;
        else if (option == "--pongs-as-qt")
            manners.canBePinged = manners.pongsAsQt = true;
        else if (option == "--ping")
            manners.canBePinged = true;
        else if (option == "--frozen")
            manners.canBePinged = manners.isFrozen = true;
        else if (option == "--dock")
            manners.isDock = true;
        else if (option == "--tray")
            manners.isInTray = true;
        else if (option == "--tray-icon")
            manners.hasTrayIcon = true;
        else if (option == "--works")
            manners.secondsOfWork = std::stoi(value());
        else if (option == "--gapplication-service")
            continue;
        else if (option == "--icon")
            manners.hasIcon = true;
        else if (option == "--deaf")
            std::signal(SIGTERM, SIG_IGN);
        else
            return 2;
    }
    return Client(manners).run();
}
