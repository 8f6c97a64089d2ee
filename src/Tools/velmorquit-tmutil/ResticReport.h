#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmorquit::tmutil {

/// What `restic backup --json` tells line by line.
class ResticReport {
public:
    /// Takes a line of its standard output or standard error.
    void hear(std::string_view line);

    /// How far it is, 0 to 1; none while restic is still counting what there is.
    [[nodiscard]] std::optional<double> fraction() const { return fraction_; }
    /// Files and folders that could not be read.
    [[nodiscard]] std::int64_t unreadable() const { return unreadable_; }
    /// One of them, as UTF-8.
    [[nodiscard]] const std::string& unreadablePath() const { return unreadablePath_; }
    /// The beginning of the id of the snapshot; empty until there is one.
    [[nodiscard]] const std::string& snapshot() const { return snapshot_; }
    /// New and changed files.
    [[nodiscard]] std::int64_t files() const { return files_; }
    /// What was added to the repository, in bytes.
    [[nodiscard]] std::uint64_t added() const { return added_; }

private:
    std::optional<double> fraction_;
    std::optional<std::int64_t> total_;
    std::int64_t unreadable_ = 0;
    std::string unreadablePath_;
    std::string snapshot_;
    std::int64_t files_ = 0;
    std::uint64_t added_ = 0;
};

} // namespace velmorquit::tmutil
