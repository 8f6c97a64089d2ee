#pragma once

#include "Loop/MainLoop.h"
#include "Platform/AudioProcesses.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace velmorquit {

/// The processes that play or record, according to PulseAudio or PipeWire's replacement for it.
/// There is a connection only during a question, on another thread.
class PulseAudioProcesses final : public AudioProcesses {
public:
    explicit PulseAudioProcesses(MainLoop& loop) : loop_(loop) {}

    void busyProcesses(std::function<void(const std::vector<ProcessId>&)> told) override;

private:
    MainLoop& loop_;
    std::map<int, Handle> asking_;
    int lastAsking_ = 0;
};

/// A sound stream's information about its program.
struct StreamOwner {
    std::optional<ProcessId> process; ///< as the program itself sees it
    std::string binary;               ///< file name of its executable; may be empty
};

/// The processes of this system that a stream may belong to: a sandboxed program gives the id that
/// it has inside its sandbox. Several if more than one matches; none if none does.
[[nodiscard]] std::set<ProcessId> processesOfStream(const StreamOwner& owner,
                                                    const std::string& proc = "/proc");

} // namespace velmorquit
