#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace velmorquit {

/// Where a quit-all run stands.
namespace phases {

/// No run, and no result on show.
struct Idle {
    friend bool operator==(Idle, Idle) = default;
};
/// `total` applications were asked to quit; the grace period is running.
struct Quitting {
    int total = 0;
    friend bool operator==(Quitting, Quitting) = default;
};
/// The grace period is over and some are still open.
struct Waiting {
    friend bool operator==(Waiting, Waiting) = default;
};
/// The backup is running; `fraction` of it (0 to 1) is done, none while that is unknown.
struct BackingUp {
    std::optional<double> fraction;
    friend bool operator==(const BackingUp&, const BackingUp&) = default;
};
/// The backup has failed, and the user has to say whether to go on.
struct BackupFailed {
    std::string reason;
    friend bool operator==(const BackupFailed&, const BackupFailed&) = default;
};
/// External drives are being ejected.
struct Ejecting {
    friend bool operator==(Ejecting, Ejecting) = default;
};
/// The run is over: `closed` applications quit, which used `freed` bytes when it began.
struct Done {
    int closed = 0;
    std::uint64_t freed = 0;
    /// Distinguishes runs, so that a second one with the same result is reported as well.
    int run = 0;
    friend bool operator==(Done, Done) = default;
};

} // namespace phases

using Phase = std::variant<phases::Idle, phases::Quitting, phases::Waiting, phases::BackingUp,
                           phases::BackupFailed, phases::Ejecting, phases::Done>;

template <class Case> [[nodiscard]] bool is(const Phase& phase) {
    return std::holds_alternative<Case>(phase);
}

/// Whether a run is in progress: no other can begin.
[[nodiscard]] inline bool isBusy(const Phase& phase) {
    return !is<phases::Idle>(phase) && !is<phases::Done>(phase);
}

} // namespace velmorquit
