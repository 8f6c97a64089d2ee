#pragma once

#include <string>

namespace velmorquit {

/// Which display servers the session has besides the X server that this program is a client of.
class DisplayServers {
public:
    /// What the environment says of the session; empty texts for what is not set.
    struct Environment {
        std::string sessionType{};   ///< XDG_SESSION_TYPE
        std::string display{};       ///< WAYLAND_DISPLAY: a socket's name or its whole path
        std::string runtimeFolder{}; ///< XDG_RUNTIME_DIR

        static Environment ofThisProcess();
    };

    explicit DisplayServers(Environment environment);

    /// Whether there may be windows that no X server knows: the session says that it is one of
    /// Wayland's, or somebody answers at the socket of a compositor. One that a crash has left
    /// behind counts for nothing. Asks the system now, and waits for nobody.
    [[nodiscard]] bool hasAnotherDisplay() const;

private:
    Environment environment_;
};

} // namespace velmorquit
