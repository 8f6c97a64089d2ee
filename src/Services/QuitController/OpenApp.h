#pragma once

#include "Platform/RunningApplication.h"

#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// One of the user's open applications: its identity as last renewed, and its memory when it was
/// listed.
struct OpenApp {
    ProcessId id = 0;
    std::shared_ptr<RunningApplication> app;
    /// Fit for display; never empty. Others may look the same.
    std::string name;
    std::optional<std::string> bundleID;
    /// The other identities of the same process; excluding one of them excludes this one as well.
    std::vector<std::string> otherIdentities;
    /// Never null.
    std::shared_ptr<const Icon> icon;
    /// Memory footprint in bytes, 0 when it is not known.
    std::uint64_t memory = 0;

    OpenApp(std::shared_ptr<RunningApplication> application, std::uint64_t footprint);

    /// Updates its identity; the figure stays.
    void renew();

    /// The key under which it is excluded: its bundle identifier, or else its name exactly as it
    /// gives it.
    [[nodiscard]] const std::string& exclusionKey() const { return key_; }

    /// Equal means the same process with the same identity and figure: a list of them need not be
    /// redrawn.
    friend bool operator==(const OpenApp& one, const OpenApp& other) {
        return one.id == other.id && one.memory == other.memory && one.name == other.name &&
               one.key_ == other.key_ && one.bundleID == other.bundleID &&
               one.otherIdentities == other.otherIdentities && one.icon == other.icon;
    }

private:
    std::string key_;
};

} // namespace velmorquit
