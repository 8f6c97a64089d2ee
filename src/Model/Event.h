#pragma once

#include <string>
#include <variant>
#include <vector>

namespace velmorquit {

/// Events, each told once when it happens.
namespace events {

/// A run has ended in which at least one application quit.
struct QuitDone {
    int closed = 0;
};
/// The grace period has ended with applications still open.
struct StubbornApps {};
/// The backup of a run has begun.
struct BackupStarted {};
/// The backup has passed a quarter: 0.25, 0.5 or 0.75, each once at most.
struct BackupProgress {
    double fraction = 0;
};
/// The backup has ended by itself; `success` when a new one was recorded.
struct BackupFinished {
    bool success = false;
};
/// Ejecting is over: `count` drives are gone, those named in `failed` are still mounted.
struct DisksEjected {
    int count = 0;
    std::vector<std::string> failed;
};

/// A scheduled quit is due and waits for the user's confirmation.
struct ConfirmationNeeded {};

} // namespace events

using Event = std::variant<events::QuitDone, events::StubbornApps, events::BackupStarted,
                           events::BackupProgress, events::BackupFinished, events::DisksEjected,
                           events::ConfirmationNeeded>;

} // namespace velmorquit
