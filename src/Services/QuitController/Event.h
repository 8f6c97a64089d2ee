#pragma once

#include <variant>

namespace velmorquit {

/// What is told once, when it happens.
namespace events {

/// A run has ended in which at least one application quit.
struct QuitDone {
    int closed = 0;
};
/// The grace period has ended with applications still open.
struct StubbornApps {};

} // namespace events

using Event = std::variant<events::QuitDone, events::StubbornApps>;

} // namespace velmorquit
