#pragma once

#include "Loop/Time.h"
#include "Platform/Icon.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// The number by which the system knows a process.
using ProcessId = std::int32_t;

/// How much of an application the user sees.
enum class ActivationPolicy {
    regular,   ///< it has windows of its own that the user works with
    accessory, ///< it runs, without such windows
};

/// Why an application that was asked to quit is still there, as far as the desktop can see.
enum class StayReason {
    unknown,
    asking,        ///< it asks something on the screen: the user has to answer it
    windowless,    ///< it has closed its windows and goes on running
    cannotBeAsked, ///< there is no polite way to ask it
    busyTerminal,  ///< a command runs in it that would be lost
    notResponding, ///< it doesn't react to anything
    inTray,        ///< it has closed its windows and lives on in the tray
};

/// By whose word an application is asked to quit.
enum class AskedBy {
    run,  ///< all are asked: to one that was asked before, asking again may be an answer
    user, ///< the user means this one
};

/// One application of the user's session, for as long as anybody asks about it: also after it
/// ended. Its process id is never mistaken for that of a later process that was given the same
/// number.
class RunningApplication {
public:
    virtual ~RunningApplication() = default;

    [[nodiscard]] virtual ProcessId processId() const = 0;

    /// The name in the user's language, as valid UTF-8; none when nothing gives one.
    [[nodiscard]] virtual std::optional<std::string> localizedName() const = 0;

    /// What identifies the application across starts; none when nothing does.
    [[nodiscard]] virtual std::optional<std::string> bundleIdentifier() const = 0;

    /// Further identifiers and names under which the same process has shown itself, such as the
    /// other parts of an office suite. They never hold the first identity.
    [[nodiscard]] virtual std::vector<std::string> otherIdentities() const = 0;

    /// Whether its name, identifiers, file and icon stay as they are. An application that has only
    /// just shown itself may become better known; what it was known by before is then among its
    /// other identities.
    [[nodiscard]] virtual bool isIdentitySettled() const = 0;

    /// The file that starts the application; none when it is not known.
    [[nodiscard]] virtual std::optional<std::string> bundlePath() const = 0;

    /// When its process began, by the wall clock; none when the system doesn't say.
    [[nodiscard]] virtual std::optional<WallTime> launchDate() const = 0;

    /// Never null.
    [[nodiscard]] virtual std::shared_ptr<const Icon> icon() const = 0;

    [[nodiscard]] virtual ActivationPolicy activationPolicy() const = 0;

    /// Whether it has ended. A background service of the desktop has ended as an application when
    /// its last window has closed, and the same service is a new application when it shows another.
    [[nodiscard]] virtual bool isTerminated() const = 0;

    /// Asks the application to quit as its own Quit command would, so that it can ask about unsaved
    /// work. One that has closed its windows and goes on running is asked in whatever other way it
    /// understands. False when it was not asked, as there is no polite way: it is then left as it
    /// is, as it is while there is an `obstacle`. A run leaves one alone that it has asked before
    /// and that still shows its question, or that has not been used since: to some, being asked
    /// twice means that what isn't saved may be lost. That counts as asked. Returns at once.
    virtual bool terminate(AskedBy who) = 0;

    /// What `terminate` has not said to it so far is not said any more.
    virtual void takeBack() = 0;

    /// Why `terminate` would not ask it now; none when it would.
    [[nodiscard]] virtual std::optional<StayReason> obstacle() = 0;

    /// When it had the keyboard last, by running time: now while it has it; none when it never had.
    [[nodiscard]] virtual std::optional<Uptime> lastUsed() const = 0;

    /// Why it is still there, once it was asked. To find out, it may be sent a short question,
    /// whose answer (or its absence) counts the next time.
    [[nodiscard]] virtual StayReason stayReason() = 0;

    /// Makes the process end, whatever it is doing. False when the system refuses; a process that
    /// has ended already is no refusal. Returns at once; the end shows in `isTerminated`.
    virtual bool forceTerminate() = 0;

    /// Brings its windows to the front, or has its icon in the tray bring them. False when there is
    /// nothing to bring.
    virtual bool activate() = 0;
};

} // namespace velmorquit
