#pragma once

#include "Loop/Handle.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// A mounted file system, once, wherever else it is mounted too. What the system doesn't know is
/// none.
struct Volume {
    std::string path; ///< where it is mounted, as the system has it: it may be no UTF-8
    std::optional<std::string> name;
    std::optional<std::uint64_t> capacity; ///< in bytes
    std::optional<bool> isBrowsable;       ///< the user is meant to see it
    std::optional<bool> isLocal;           ///< not on a network
    std::optional<bool> isInternal;        ///< on a drive that is built in
    std::optional<bool> isRemovable;       ///< its medium can be taken out
    std::optional<bool> isEjectable;
    /// The running system lives on its drive: it must never be taken away.
    bool holdsSystem = false;
};

/// The volumes that are mounted.
class Volumes {
public:
    virtual ~Volumes() = default;

    /// All that the system has an account of, in its own order; from memory, without waiting.
    /// Empty when nobody keeps such an account.
    [[nodiscard]] virtual std::vector<Volume> mounted() const = 0;

    /// Unmounts the volume, and all others of the same drive, and lets the drive go, so that it may
    /// be unplugged. False when anything of that failed; true too when it is not mounted any more.
    /// Blocks, for minutes if much is still to be written: never on the main thread.
    virtual bool unmountAndEject(const std::string& path) = 0;

    /// Calls `told` on the main loop after a volume was mounted or unmounted.
    [[nodiscard]] virtual Handle observe(std::function<void()> told) = 0;
};

} // namespace velmorquit
