#pragma once

#include <cstdint>
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

    /// The file that starts the application; none when it is not known.
    [[nodiscard]] virtual std::optional<std::string> bundlePath() const = 0;

    [[nodiscard]] virtual ActivationPolicy activationPolicy() const = 0;

    /// Whether the process has ended.
    [[nodiscard]] virtual bool isTerminated() const = 0;

    /// Asks the application to quit as its own Quit command would, so that it can ask about unsaved
    /// work. False when there is no polite way to ask: it is then left as it is. Returns at once.
    virtual bool terminate() = 0;

    /// Makes the process end, whatever it is doing. False when the system refuses; a process that
    /// has ended already is no refusal. Returns at once; the end shows in `isTerminated`.
    virtual bool forceTerminate() = 0;

    /// Brings its windows to the front. False when there is nothing to bring.
    virtual bool activate() = 0;
};

} // namespace velmorquit
