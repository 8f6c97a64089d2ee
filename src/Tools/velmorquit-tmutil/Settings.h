#pragma once

#include "Loop/Time.h"
#include "Problem.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit::tmutil {

/// How many backups are kept; 0 for a rule that isn't there.
struct KeepRules {
    std::int64_t last = 0;
    std::int64_t daily = 0;
    std::int64_t weekly = 0;
    std::int64_t monthly = 0;

    /// Without any rule all of them are kept.
    [[nodiscard]] bool isAny() const { return last + daily + weekly + monthly > 0; }
};

/// A backup as it is on record.
struct SnapshotRecord {
    std::string id; ///< or the beginning of it; empty when it isn't known
    WallTime date;  ///< whole seconds, not before the backup began
};

/// A place for backups. Paths are any bytes.
struct Destination {
    std::string path;
    std::string id; ///< of the repository there
    /// The computer's name at the time of the setup: its backups stay one series when it changes.
    std::string host;
    std::string passwordFile;
    std::vector<std::string> sources;
    std::vector<std::string> excludes; ///< what the user leaves out beyond what is always left out
    KeepRules keep;
    std::vector<SnapshotRecord> snapshots;

    [[nodiscard]] std::optional<WallTime> latest() const;
};

/// The file of destinations, a property list that other programs read as well.
namespace Settings {

/// What the file holds, as a list; none when it is no list of destinations.
[[nodiscard]] std::optional<std::vector<Destination>> decode(const std::string& content);

/// The list as the file is to hold it.
[[nodiscard]] std::string encode(const std::vector<Destination>& destinations);

/// All destinations; none while there is no such file. A file that can't be understood is a
/// problem, and nothing here ever writes over it.
[[nodiscard]] Outcome<std::vector<Destination>> load();

/// The same, and it is a problem when there are none.
[[nodiscard]] Outcome<std::vector<Destination>> loadSome();

/// Changes the list as it is on the disk now, whoever else is changing it, and writes it.
[[nodiscard]] std::optional<Problem>
change(const std::function<void(std::vector<Destination>&)>& edit);

/// Changes the destination with that repository; nothing happens when it has gone.
[[nodiscard]] std::optional<Problem> change(const std::string& id,
                                            const std::function<void(Destination&)>& edit);

} // namespace Settings

} // namespace velmorquit::tmutil
