#include "Linux/Power/PowerBus.h"

#include <QDBusError>

#include <cstdlib>
#include <optional>
#include <utility>

#include <sys/stat.h>

namespace velmorquit {

namespace {

namespace fs = std::filesystem;

constexpr const char* systemSockets[] = {"/run/dbus/system_bus_socket",
                                         "/var/run/dbus/system_bus_socket"};

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// The socket of an address that consists of a single path; none for any other address, or if
/// nothing is there.
std::optional<fs::path> socketOf(const std::string& address) {
    const std::string beginning = "unix:path=";
    if (!address.starts_with(beginning) || address.find_first_of(";%") != std::string::npos)
        return std::nullopt;
    const auto end = address.find(',');
    if (end != std::string::npos && !address.substr(end).starts_with(",guid="))
        return std::nullopt;
    std::error_code missing;
    fs::path path =
        fs::canonical(address.substr(beginning.size(), end - beginning.size()), missing);
    return missing ? std::nullopt : std::optional(std::move(path));
}

// Compares files, since the same socket can be reached by other paths.
bool isSystemSocket(const fs::path& socket) {
    struct stat its{};
    if (::stat(socket.c_str(), &its) != 0)
        return true;
    for (const char* known : systemSockets) {
        struct stat systems{};
        if (::stat(known, &systems) == 0 && its.st_dev == systems.st_dev &&
            its.st_ino == systems.st_ino)
            return true;
    }
    return false;
}

bool liesIn(const fs::path& path, const fs::path& folder) {
    std::error_code missing;
    const fs::path real = fs::canonical(folder, missing);
    if (missing || !real.has_relative_path())
        return false;
    const fs::path way = path.lexically_relative(real);
    return !way.empty() && *way.begin() != ".." && way != ".";
}

/// The folder in which scripts/virtual-desktop keeps everything of this desktop; none when it
/// hasn't made this environment.
std::optional<fs::path> folderOf(const PowerBus::Environment& environment) {
    fs::path folder = fs::path(environment.runtimeFolder).parent_path();
    if (!folder.filename().string().starts_with("velmor-desktop."))
        return std::nullopt;
    return folder;
}

} // namespace

PowerBus::Environment PowerBus::Environment::ofThisProcess() {
    return {.virtualDesktop = variable("VELMOR_VIRTUAL_DESKTOP"),
            .runtimeFolder = variable("XDG_RUNTIME_DIR"),
            .sessionBus = variable("DBUS_SESSION_BUS_ADDRESS"),
            .standInSystemBus = variable("VELMOR_STAND_IN_SYSTEM_BUS")};
}

PowerBus PowerBus::session(const Environment& environment, Build build) {
    if (!environment.virtualDesktop.empty())
        return ofDesktop(environment, environment.sessionBus);
    if (build == Build::tests)
        return refused("il bus di sessione è vietato a una versione di prova");
    return {QDBusConnection::sessionBus(), {}};
}

PowerBus PowerBus::system(const Environment& environment, Build build) {
    if (!environment.virtualDesktop.empty())
        return ofDesktop(environment, environment.standInSystemBus);
    if (build == Build::tests)
        return refused("il bus di sistema è vietato a una versione di prova");
    return {QDBusConnection::systemBus(), {}};
}

PowerBus PowerBus::ofDesktop(const Environment& environment, const std::string& address) {
    const auto folder = folderOf(environment);
    if (!folder)
        return refused("non trovo la cartella del desktop virtuale");
    if (address.empty())
        return refused("il desktop virtuale non ha questo bus");
    return standIn(address, *folder);
}

PowerBus PowerBus::standIn(const std::string& address, const fs::path& folder) {
    const auto socket = socketOf(address);
    if (!socket || !liesIn(*socket, folder) || isSystemSocket(*socket))
        return refused("non è un bus di prova: " + address);
    static int count = 0;
    const QString name = QStringLiteral("velmor-power-%1").arg(++count);
    // The checked path, not the address that led to it.
    PowerBus bus{QDBusConnection::connectToBus(
                     QString::fromStdString("unix:path=" + socket->string()), name),
                 {}};
    bus.isOwn_ = true;
    return bus;
}

PowerBus PowerBus::refused(const std::string& why) {
    return {QDBusConnection(QStringLiteral("velmor-power-none")), why};
}

PowerBus::PowerBus(QDBusConnection connection, std::string problem)
    : connection_(std::move(connection)), problem_(std::move(problem)) {}

PowerBus::PowerBus(PowerBus&& other) noexcept
    : connection_(other.connection_), problem_(std::move(other.problem_)),
      isOwn_(std::exchange(other.isOwn_, false)) {}

PowerBus::~PowerBus() {
    if (isOwn_)
        QDBusConnection::disconnectFromBus(connection_.name());
}

std::string PowerBus::problem() const {
    if (!problem_.empty() || connection_.isConnected())
        return problem_;
    const QString why = connection_.lastError().message();
    return why.isEmpty() ? "il bus non risponde" : why.toStdString();
}

} // namespace velmorquit
