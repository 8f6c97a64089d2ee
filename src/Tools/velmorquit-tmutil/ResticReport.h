#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmorquit::tmutil {

/// The line-by-line report of `restic backup --json`.
class ResticReport {
public:
    /// Takes a line of its standard output or standard error.
    void hear(std::string_view line);

    /// Progress from 0 to 1; none while restic is still counting.
    [[nodiscard]] std::optional<double> fraction() const { return fraction_; }
    /// Files and folders that could not be read.
    [[nodiscard]] std::int64_t unreadable() const { return unreadable_; }
    /// One of them, as UTF-8.
    [[nodiscard]] const std::string& unreadablePath() const { return unreadablePath_; }
    /// The beginning of the id of the snapshot; empty until there is one.
    [[nodiscard]] const std::string& snapshot() const { return snapshot_; }
    /// New and changed files.
    [[nodiscard]] std::int64_t files() const { return files_; }
    /// Bytes added to the repository.
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
