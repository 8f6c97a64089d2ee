#pragma once

#include "Platform/Files.h"
#include "Simulated/SimulatedBackupTool.h"

#include <set>
#include <string>

namespace velmorquit {

/// The files of the simulated desktop: the one that its backup tool keeps, and those of a test.
class SimulatedFiles final : public Files {
public:
    /// Where the backup tool keeps its file.
    static constexpr const char* destinations = "/destinations";

    explicit SimulatedFiles(const SimulatedBackupTool& backupTool) : backupTool_(backupTool) {}

    /// Files and folders that are there.
    std::set<std::string> paths;

    [[nodiscard]] bool exists(const std::string& path) const override {
        return paths.contains(path) || read(path);
    }
    [[nodiscard]] std::optional<std::string> read(const std::string& path) const override {
        return path == destinations ? backupTool_.destinations() : std::nullopt;
    }

private:
    const SimulatedBackupTool& backupTool_;
};

} // namespace velmorquit
