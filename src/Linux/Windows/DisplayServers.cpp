#include "Linux/Windows/DisplayServers.h"

#include "Linux/Files/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>

namespace velmorquit {

namespace {

namespace fs = std::filesystem;

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// Beside each socket there is a lock file with a longer name.
bool isSocketName(std::string_view name) {
    constexpr std::string_view prefix = "wayland-";
    return name.starts_with(prefix) && name.size() > prefix.size() &&
           name.find_first_not_of("0123456789", prefix.size()) == std::string_view::npos;
}

bool isListenedTo(const fs::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.native().size() >= sizeof address.sun_path)
        return false;
    std::ranges::copy(path.native(), std::begin(address.sun_path));
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // EAGAIN means that it exists, with too many clients waiting.
    return socket && (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address),
                                sizeof address) == 0 ||
                      errno == EAGAIN);
}

} // namespace

DisplayServers::Environment DisplayServers::Environment::ofThisProcess() {
    return {.sessionType = variable("XDG_SESSION_TYPE"),
            .display = variable("WAYLAND_DISPLAY"),
            .runtimeFolder = variable("XDG_RUNTIME_DIR")};
}

DisplayServers::DisplayServers(Environment environment) : environment_(std::move(environment)) {}

bool DisplayServers::hasAnotherDisplay() const {
    if (environment_.sessionType == "wayland")
        return true;
    const fs::path folder = environment_.runtimeFolder;
    const fs::path display = environment_.display;
    // A name means nothing without the folder.
    if (display.is_absolute() || (!display.empty() && !folder.empty())) {
        if (isListenedTo(folder / display))
            return true;
    }
    std::error_code problem;
    for (fs::directory_iterator next(folder, problem), end; !problem && next != end;
         next.increment(problem)) {
        if (isSocketName(next->path().filename().native()) && isListenedTo(next->path()))
            return true;
    }
    return false;
}

} // namespace velmorquit
