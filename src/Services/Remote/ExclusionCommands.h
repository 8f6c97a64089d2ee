#pragma once

#include "Platform/RemoteCommands.h"
#include "Services/QuitController/QuitController.h"

#include <string>
#include <vector>

namespace velmorquit {

/// The commands that other processes can give about exclusions.
class ExclusionCommands {
public:
    /// The controller must outlive it.
    explicit ExclusionCommands(QuitController& controller) : controller_(controller) {}

    RemoteAnswer exclude(const std::string& name);
    /// Also for an application that isn't open now.
    RemoteAnswer include(const std::string& name);

private:
    RemoteAnswer set(const std::string& name, const std::vector<OpenApp>& apps, bool isExcluded);
    RemoteAnswer includeShown(const std::string& name);

    QuitController& controller_;
};

} // namespace velmorquit
