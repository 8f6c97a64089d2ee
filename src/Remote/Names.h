#pragma once

#include "Platform/RemoteCommands.h"

#include <string>
#include <string_view>

/// What the program and whoever commands it have to call alike.
namespace velmorquit::remote {

/// On the session bus.
inline constexpr const char* service = "org.velmorquit.VelmorQuit";
inline constexpr const char* path = "/org/velmorquit/VelmorQuit";
inline constexpr const char* interface = "org.velmorquit.VelmorQuit1";
/// The interface's method, which takes a verb and its arguments, and its signal.
inline constexpr const char* performMethod = "Perform";
inline constexpr const char* changedSignal = "Changed";
/// What launchers use, beside it.
inline constexpr const char* launcherInterface = "org.freedesktop.Application";

/// All errors of the program's own begin like that.
inline constexpr std::string_view errorPrefix = "org.velmorquit.VelmorQuit.Error.";

/// The name of the error that tells of it; null when there is none.
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
