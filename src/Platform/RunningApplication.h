#pragma once

#include "Loop/Time.h"
#include "Platform/Icon.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// The system's number for a process.
using ProcessId = std::int32_t;

/// How much of an application the user can see.
enum class ActivationPolicy {
    regular,   ///< it has windows of its own that the user works with
    accessory, ///< it runs without such windows
};

/// Why an application that was asked to quit is still running, as far as the desktop can tell.
enum class StayReason {
    unknown,
    asking,        ///< it shows a question that the user has to answer
    windowless,    ///< it has closed its windows and goes on running
    cannotBeAsked, ///< there is no polite way to ask it
    busyTerminal,  ///< a command that would be lost runs in it
    notResponding, ///< it doesn't react at all
    inTray,        ///< it has closed its windows and lives on in the tray
};

/// Who wants an application to quit.
enum class AskedBy {
    run,  ///< all are asked; some that were asked before take another request as an answer
    user, ///< the user means this application
};

/// One application of the user's session. The object stays valid for as long as it is held, also
/// after the application has ended. Its process id is never mistaken for a later process with the
/// same number.
class RunningApplication {
public:
    virtual ~RunningApplication() = default;

    [[nodiscard]] virtual ProcessId processId() const = 0;

    /// The name in the user's language, as valid UTF-8; none when nothing gives one.
    [[nodiscard]] virtual std::optional<std::string> localizedName() const = 0;

    /// Identifies the application across starts; none when nothing does.
    [[nodiscard]] virtual std::optional<std::string> bundleIdentifier() const = 0;

    /// Further identifiers and names of the same process, such as the other parts of an office
    /// suite. The first identity is never among them.
    [[nodiscard]] virtual std::vector<std::string> otherIdentities() const = 0;

    /// Whether its name, identifiers, file and icon are final. An application that has only just
    /// appeared may become better known; the identity that it had before is then among its other
    /// ones.
    [[nodiscard]] virtual bool isIdentitySettled() const = 0;

    /// The file that starts the application; none when it is not known.
    [[nodiscard]] virtual std::optional<std::string> bundlePath() const = 0;

    /// When its process began, by the wall clock; none when the system doesn't say.
    [[nodiscard]] virtual std::optional<WallTime> launchDate() const = 0;

    /// Never null.
    [[nodiscard]] virtual std::shared_ptr<const Icon> icon() const = 0;

    [[nodiscard]] virtual ActivationPolicy activationPolicy() const = 0;

    /// Whether it has ended. A background service of the desktop counts as ended when its last
    /// window closes, and as a new application when it shows another one.
    [[nodiscard]] virtual bool isTerminated() const = 0;

    /// Asks the application to quit as its own Quit command would, so that it can ask about unsaved
    /// work. One that has closed its windows and goes on running is asked in whatever other way it
    /// understands. False when there is no polite way, or while there is an `obstacle`: it is then
    /// left as it is. A run doesn't ask again (which counts as asked) while the application shows
    /// its question, or if it has not been used since: some take a second request to mean that
    /// unsaved work may be lost. Returns at once.
    virtual bool terminate(AskedBy who) = 0;

    /// Withdraws requests of `terminate` that have not been delivered yet.
    virtual void takeBack() = 0;

    /// Why `terminate` would not ask it now; none if it would.
    [[nodiscard]] virtual std::optional<StayReason> obstacle() = 0;

    /// When it last had the keyboard, by running time: now while it has it; none if it never had.
    [[nodiscard]] virtual std::optional<Uptime> lastUsed() const = 0;

    /// Why it is still there after being asked. To find out, it may be sent a short question whose
    /// answer, or the lack of one, counts at the next call.
    [[nodiscard]] virtual StayReason stayReason() = 0;

    /// Forces the process to end, whatever it is doing. False when the system refuses; true for a
    /// process that has already ended. Returns at once; the end shows in `isTerminated`.
    virtual bool forceTerminate() = 0;

    /// Brings its windows to the front, if need be through its icon in the tray. False when there
    /// is nothing to bring.
    virtual bool activate() = 0;
};

} // namespace velmorquit
