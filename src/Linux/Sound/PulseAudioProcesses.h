#pragma once

#include "Loop/MainLoop.h"
#include "Platform/AudioProcesses.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace velmorquit {

/// Who plays or records, as PulseAudio or PipeWire's stand-in for it tells. A connection exists
/// only while somebody asks, on another thread.
class PulseAudioProcesses final : public AudioProcesses {
public:
    explicit PulseAudioProcesses(MainLoop& loop) : loop_(loop) {}

    void busyProcesses(std::function<void(const std::vector<ProcessId>&)> told) override;

private:
    MainLoop& loop_;
    std::map<int, Handle> asking_;
    int lastAsking_ = 0;
};

/// What a stream of sound says of the program that it belongs to.
struct StreamOwner {
    std::optional<ProcessId> process; ///< as the program sees itself
    std::string binary;               ///< file name of its executable; may be empty
};

/// The processes of this system that a stream may belong to: a program in a sandbox states the id
/// that it has in there. More than one when several fit; none when none does.
[[nodiscard]] std::set<ProcessId> processesOfStream(const StreamOwner& owner,
                                                    const std::string& proc = "/proc");

} // namespace velmorquit
