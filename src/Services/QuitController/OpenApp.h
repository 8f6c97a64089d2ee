#pragma once

#include "Platform/RunningApplication.h"

#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// One application that the user has open, as it was known, and with the figure read, when it was
/// listed.
struct OpenApp {
    ProcessId id = 0;
    std::shared_ptr<RunningApplication> app;
    /// As it may be shown; never empty. Others may look the same.
    std::string name;
    std::optional<std::string> bundleID;
    /// The other identities of the same process; an exclusion of one of them holds for it as well.
    std::vector<std::string> otherIdentities;
    /// Never null.
    std::shared_ptr<const Icon> icon;
    /// Memory footprint in bytes, 0 when it is not known.
    std::uint64_t memory = 0;

    OpenApp(std::shared_ptr<RunningApplication> application, std::uint64_t footprint);

    /// Brings what it is known by up to date; the figure stays.
    void renew();

    /// What the exclusions know the application by: its bundle identifier, else its name as it
    /// says it itself.
    [[nodiscard]] const std::string& exclusionKey() const { return key_; }

    /// Equal means the same process, known by the same and with the same figure: a list needs not
    /// be drawn again.
    friend bool operator==(const OpenApp& one, const OpenApp& other) {
        return one.id == other.id && one.memory == other.memory && one.name == other.name &&
               one.key_ == other.key_ && one.bundleID == other.bundleID &&
               one.otherIdentities == other.otherIdentities && one.icon == other.icon;
    }

private:
    std::string key_;
};

} // namespace velmorquit
