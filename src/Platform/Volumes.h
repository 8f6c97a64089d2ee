#pragma once

#include "Loop/Handle.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// A mounted file system, listed once even if mounted in several places. Unknown properties are
/// none.
struct Volume {
    std::string path; ///< where it is mounted, as raw bytes: may be invalid UTF-8
    std::optional<std::string> name;
    std::optional<std::uint64_t> capacity; ///< in bytes
    std::optional<bool> isBrowsable;       ///< the user is meant to see it
    std::optional<bool> isLocal;           ///< not on a network
    std::optional<bool> isInternal;        ///< on a drive that is built in
    std::optional<bool> isRemovable;       ///< its medium can be taken out
    std::optional<bool> isEjectable;
    /// The running system is on its drive, which must never be ejected.
    bool holdsSystem = false;
};

/// The volumes that are mounted.
class Volumes {
public:
    virtual ~Volumes() = default;

    /// All mounted volumes, in the system's order; from memory, without waiting. Empty when nobody
    /// keeps account of them.
    [[nodiscard]] virtual std::vector<Volume> mounted() const = 0;

    /// Unmounts the volume and all others of the same drive, and releases the drive so that it can
    /// be unplugged. False if any part of that failed; true also if it is already unmounted.
    /// Blocks, for minutes if much data is still to be written: never on the main thread.
    virtual bool unmountAndEject(const std::string& path) = 0;

    /// Calls `told` on the main loop after a volume was mounted or unmounted.
    [[nodiscard]] virtual Handle observe(std::function<void()> told) = 0;
};

} // namespace velmorquit
