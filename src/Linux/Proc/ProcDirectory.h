#pragma once

#include "Platform/RunningApplication.h"

#include <string>
#include <vector>

namespace velmorquit {

/// A file system laid out like /proc. Anything unreadable counts as empty, since processes come and
/// go.
class ProcDirectory {
public:
    explicit ProcDirectory(const std::string& path = "/proc");
    ProcDirectory(const ProcDirectory&) = delete;
    ProcDirectory& operator=(const ProcDirectory&) = delete;
    ~ProcDirectory();

    /// The ids of all processes, in the kernel's order.
    [[nodiscard]] std::vector<ProcessId> processes() const;

    /// The content of a file of the directory, such as "meminfo".
    [[nodiscard]] std::string read(const std::string& name) const;

    /// The content of a file of a process, such as "stat".
    [[nodiscard]] std::string read(ProcessId id, const char* name) const;

    /// Reads into `content`, whose memory is reused for the next file.
    void read(ProcessId id, const char* name, std::string& content) const;

    /// The target of a process's symbolic link, such as "exe".
    [[nodiscard]] std::string link(ProcessId id, const char* name) const;

private:
    void readInto(const char* name, std::string& content) const;

    int directory_;
};

} // namespace velmorquit
