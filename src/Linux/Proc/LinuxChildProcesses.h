#pragma once

#include "Platform/ChildProcesses.h"

namespace velmorquit {

/// Children of this process. They read nothing and have a group of signals of their own.
class LinuxChildProcesses final : public ChildProcesses {
public:
    [[nodiscard]] Result run(const std::string& program,
                             const std::vector<std::string>& arguments) override;
    [[nodiscard]] std::variant<std::shared_ptr<ChildProcess>, std::string>
    launch(const std::string& program, const std::vector<std::string>& arguments) override;
};

} // namespace velmorquit
