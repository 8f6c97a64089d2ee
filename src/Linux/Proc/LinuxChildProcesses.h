#pragma once

#include "Platform/ChildProcesses.h"

namespace velmorquit {

/// Children of this process. They have no input, and a process group of their own.
class LinuxChildProcesses final : public ChildProcesses {
public:
    [[nodiscard]] Result run(const std::string& program,
                             const std::vector<std::string>& arguments) override;
    [[nodiscard]] std::variant<std::shared_ptr<ChildProcess>, std::string>
    launch(const std::string& program, const std::vector<std::string>& arguments) override;
};

} // namespace velmorquit
