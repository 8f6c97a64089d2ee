#pragma once

#include "Problem.h"
#include "Restic.h"
#include "ResticAnswers.h"
#include "Settings.h"

#include <string>
#include <vector>

namespace velmorquit::tmutil {

/// A restic repository in a folder.
class Repository {
public:
    /// The mark of this tool's own snapshots.
    static constexpr const char* tag = ResticAnswers::tag;

    Repository(Restic& restic, std::string path, std::string passwordFile);

    /// Whether a folder holds a repository, as far as can be seen without its password.
    [[nodiscard]] static bool isAt(const std::string& path);

    [[nodiscard]] const std::string& path() const { return path_; }

    /// Runs restic on it.
    [[nodiscard]] ResticEnd run(std::vector<std::string> arguments,
                                const Restic::Listeners& listeners = {}) const;

    /// Why such a call failed, as a sentence that names the destination.
    [[nodiscard]] Problem problem(const ResticEnd& end) const;

    /// Makes it.
    [[nodiscard]] std::optional<Problem> create() const;

    /// Its identity, which also proves that the password opens it.
    [[nodiscard]] Outcome<std::string> id() const;

    /// All its snapshots, oldest first. Changes nothing there.
    [[nodiscard]] Outcome<std::vector<Snapshot>> snapshots() const;

    /// Removes locks left by processes that have ended. Quick if there are no locks
    /// at all.
    void removeStaleLocks() const;

    void interrupt() const { restic_.interrupt(); }
    [[nodiscard]] bool isInterrupted() const { return restic_.isInterrupted(); }

private:
    enum class LockHolder { hasEnded, elsewhere, unknown };
    [[nodiscard]] LockHolder holderOf(const std::string& lock) const;

    Restic& restic_;
    std::string path_;
    std::string passwordFile_;
};

/// A path as a restic pattern that matches nothing else.
[[nodiscard]] std::string escapedPattern(const std::string& path);

/// The name of this computer.
[[nodiscard]] std::string hostName();

} // namespace velmorquit::tmutil
