#pragma once

#include <QDBusConnection>

#include <filesystem>
#include <string>

namespace velmorquit {

/// A message bus on which a session, or the computer, can be ended.
///
/// Only buses that this class permits can be asked to do so: on a virtual desktop, buses of that
/// desktop, whose sockets are in its folder; in a build for tests, no others at all. So the
/// computer of anybody who tries the program out stays on, whatever else goes wrong.
class PowerBus {
public:
    /// The environment's statements about buses; empty texts for variables that aren't set.
    struct Environment {
        std::string virtualDesktop{}; ///< VELMOR_VIRTUAL_DESKTOP: any text, on a virtual desktop
        std::string runtimeFolder{};  ///< XDG_RUNTIME_DIR
        std::string sessionBus{};     ///< DBUS_SESSION_BUS_ADDRESS
        /// VELMOR_STAND_IN_SYSTEM_BUS: address of the bus that stands in for a virtual desktop's
        /// system bus.
        std::string standInSystemBus{};

        static Environment ofThisProcess();
    };

    /// The purpose of the build.
    enum class Build { use, tests };
#ifdef VELMOR_TEST_BUILD
    static constexpr Build thisBuild = Build::tests;
#else
    static constexpr Build thisBuild = Build::use;
#endif

    /// The user's session bus.
    static PowerBus session(const Environment& environment, Build build = thisBuild);
    /// The system's bus.
    static PowerBus system(const Environment& environment, Build build = thisBuild);
    /// A stand-in: the bus at this address, whose socket lies in `folder`.
    static PowerBus standIn(const std::string& address, const std::filesystem::path& folder);

    PowerBus(PowerBus&& other) noexcept;
    PowerBus& operator=(PowerBus&&) = delete;
    ~PowerBus();

    /// Unconnected if the bus doesn't exist, or may not be used.
    [[nodiscard]] const QDBusConnection& connection() const { return connection_; }
    /// Why it is unconnected, for the log; empty if it is connected.
    [[nodiscard]] std::string problem() const;

private:
    PowerBus(QDBusConnection connection, std::string problem);

    static PowerBus refused(const std::string& why);
    static PowerBus ofDesktop(const Environment& environment, const std::string& address);

    QDBusConnection connection_;
    std::string problem_;
    /// Whether the connection is private to this object.
    bool isOwn_ = false;
};

} // namespace velmorquit
