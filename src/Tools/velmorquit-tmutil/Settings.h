#pragma once

#include "Loop/Time.h"
#include "Problem.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit::tmutil {

/// How many backups are kept; 0 for a missing rule.
struct KeepRules {
    std::int64_t last = 0;
    std::int64_t daily = 0;
    std::int64_t weekly = 0;
    std::int64_t monthly = 0;

    /// Without any rule, all backups are kept.
    [[nodiscard]] bool isAny() const { return last > 0 || daily > 0 || weekly > 0 || monthly > 0; }
};

/// A backup on record.
struct SnapshotRecord {
    std::string id; ///< or its beginning; empty when unknown
    WallTime date;  ///< whole seconds, not before the backup began
};

/// A place for backups. Paths may be any bytes.
struct Destination {
    std::string path;
    std::string id; ///< of the repository there
    /// The computer's name at the setup: the backups remain one series if it changes later.
    std::string host;
    std::string passwordFile;
    std::vector<std::string> sources;
    std::vector<std::string> excludes; ///< the user's own, in addition to the usual ones
    KeepRules keep;
    std::vector<SnapshotRecord> snapshots;

    [[nodiscard]] std::optional<WallTime> latest() const;
};

/// The file of destinations, a property list that other programs read as well.
namespace Settings {

/// The content of the file as a list; none if it isn't a list of destinations.
[[nodiscard]] std::optional<std::vector<Destination>> decode(const std::string& content);

/// The list as content of the file.
[[nodiscard]] std::string encode(const std::vector<Destination>& destinations);

/// All destinations; none while there is no such file. A file that can't be
/// understood is a problem, and is never overwritten here.
[[nodiscard]] Outcome<std::vector<Destination>> load();

/// The same; having none is a problem.
[[nodiscard]] Outcome<std::vector<Destination>> loadSome();

/// Changes the list on the disk, taking changes by other processes into account, and writes it.
[[nodiscard]] std::optional<Problem>
change(const std::function<void(std::vector<Destination>&)>& edit);

/// Changes the destination with that repository; does nothing if it has gone.
[[nodiscard]] std::optional<Problem> change(const std::string& id,
                                            const std::function<void(Destination&)>& edit);

} // namespace Settings

} // namespace velmorquit::tmutil
