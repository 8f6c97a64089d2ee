#pragma once

#include "Platform/Files.h"
#include "Simulated/SimulatedBackupTool.h"

#include <set>
#include <string>

namespace velmorquit {

/// The files of the simulated desktop: that of its backup tool, and those of a test.
class SimulatedFiles final : public Files {
public:
    /// The path of the backup tool's file.
    static constexpr const char* destinations = "/destinations";

    explicit SimulatedFiles(const SimulatedBackupTool& backupTool) : backupTool_(backupTool) {}

    /// Existing files and folders.
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
