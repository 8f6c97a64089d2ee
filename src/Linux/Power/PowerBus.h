#pragma once

#include <QDBusConnection>

#include <filesystem>
#include <string>

namespace velmorquit {

/// A message bus on which a session, or the computer, can be ended.
///
/// Only what this class lets through can be asked to do so: on a virtual desktop a bus of that
/// desktop, whose socket lies in its folder, and in a build for tests nothing else at all. The
/// computer of whoever tries the program out stays on, whatever else is wrong.
class PowerBus {
public:
    /// What the environment says of the buses; empty texts for what is not set.
    struct Environment {
        std::string virtualDesktop{}; ///< VELMOR_VIRTUAL_DESKTOP: anything, on a virtual desktop
        std::string runtimeFolder{};  ///< XDG_RUNTIME_DIR
        std::string sessionBus{};     ///< DBUS_SESSION_BUS_ADDRESS
        /// VELMOR_STAND_IN_SYSTEM_BUS: the address of the bus that is a virtual desktop's system
        /// bus.
        std::string standInSystemBus{};

        static Environment ofThisProcess();
    };

    /// What the program was built for.
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

    /// Not connected when the bus isn't there, or may not be used.
    [[nodiscard]] const QDBusConnection& connection() const { return connection_; }
    /// Why it is not connected, for the log; empty when it is.
    [[nodiscard]] std::string problem() const;

private:
    PowerBus(QDBusConnection connection, std::string problem);

    static PowerBus refused(const std::string& why);
    static PowerBus ofDesktop(const Environment& environment, const std::string& address);

    QDBusConnection connection_;
    std::string problem_;
    /// Whether nobody else uses the connection.
    bool isOwn_ = false;
};

} // namespace velmorquit
