#pragma once

#include "Platform/RemoteCommands.h"
#include "Remote/Fields.h"
#include "Texts/Localized.h"

#include <string>
#include <utility>

/// The kinds of answers to commands of other processes.
namespace velmorquit::remote {

[[nodiscard]] inline RemoteAnswer done(const Json& json) {
    return {RemoteAnswer::Status::done, textOf(json)};
}

[[nodiscard]] inline RemoteAnswer refused(std::string why) {
    return {RemoteAnswer::Status::refused, std::move(why)};
}

[[nodiscard]] inline RemoteAnswer unknownCommand(std::string_view what) {
    return {RemoteAnswer::Status::unknown, localized("Comando sconosciuto: %@", what)};
}

[[nodiscard]] inline RemoteAnswer unknownAction(std::string_view what) {
    return {RemoteAnswer::Status::unknown, localized("Azione sconosciuta: %@", what)};
}

} // namespace velmorquit::remote
