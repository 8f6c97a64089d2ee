#pragma once

#include <string>

namespace velmorquit {

/// The session's display servers besides the X server that this program is a client of.
class DisplayServers {
public:
    /// The environment's statements about the session; empty texts for variables that aren't set.
    struct Environment {
        std::string sessionType{};   ///< XDG_SESSION_TYPE
        std::string display{};       ///< WAYLAND_DISPLAY: a socket's name or its whole path
        std::string runtimeFolder{}; ///< XDG_RUNTIME_DIR

        static Environment ofThisProcess();
    };

    explicit DisplayServers(Environment environment);

    /// Whether there may be windows that no X server knows: the session is of type Wayland, or a
    /// compositor answers at its socket. A socket left behind by a crash doesn't count. Asks the
    /// system now, without waiting.
    [[nodiscard]] bool hasAnotherDisplay() const;

private:
    Environment environment_;
};

} // namespace velmorquit
