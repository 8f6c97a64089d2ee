#pragma once

#include "Platform/RemoteCommands.h"

#include <string>
#include <string_view>

/// Names that the program and those who command it must agree on.
namespace velmorquit::remote {

/// On the session bus.
inline constexpr const char* service = "org.velmorquit.VelmorQuit";
inline constexpr const char* path = "/org/velmorquit/VelmorQuit";
inline constexpr const char* interface = "org.velmorquit.VelmorQuit1";
/// The interface's method, which takes a verb and its arguments, and its signal.
inline constexpr const char* performMethod = "Perform";
inline constexpr const char* changedSignal = "Changed";
/// The interface that launchers use as well.
inline constexpr const char* launcherInterface = "org.freedesktop.Application";

/// The prefix of all the program's own errors.
inline constexpr std::string_view errorPrefix = "org.velmorquit.VelmorQuit.Error.";

/// The name of the error for this status; null when it is none.
[[nodiscard]] constexpr const char* errorOf(RemoteAnswer::Status status) {
    switch (status) {
    case RemoteAnswer::Status::refused:
        return "org.velmorquit.VelmorQuit.Error.Refused";
    case RemoteAnswer::Status::unknown:
        return "org.velmorquit.VelmorQuit.Error.Unknown";
    case RemoteAnswer::Status::asking:
        return "org.velmorquit.VelmorQuit.Error.Asking";
    case RemoteAnswer::Status::done:
        break;
    }
    return nullptr;
}

} // namespace velmorquit::remote
