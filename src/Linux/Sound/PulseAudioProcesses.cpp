#include "Linux/Sound/PulseAudioProcesses.h"

#include "Linux/Proc/ProcDirectory.h"

#include <charconv>
#include <chrono>
#include <memory>
#include <pulse/pulseaudio.h>
#include <set>
#include <string_view>
#include <unistd.h>

namespace velmorquit {

namespace {

/// After this time the sound server counts as missing.
constexpr auto patience = std::chrono::seconds(2);

template <auto release> struct Release {
    template <class T> void operator()(T* object) const { release(object); }
};
using Loop = std::unique_ptr<pa_mainloop, Release<pa_mainloop_free>>;
using Context = std::unique_ptr<pa_context, Release<pa_context_unref>>;
using Operation = std::unique_ptr<pa_operation, Release<pa_operation_unref>>;

StreamOwner ownerOf(const pa_proplist* properties) {
    StreamOwner owner;
    if (const char* id = pa_proplist_gets(properties, PA_PROP_APPLICATION_PROCESS_ID)) {
        ProcessId number = 0;
        const std::string_view text(id);
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error == std::errc{} && end == text.data() + text.size() && number > 0)
            owner.process = number;
    }
    if (const char* binary = pa_proplist_gets(properties, PA_PROP_APPLICATION_PROCESS_BINARY))
        owner.binary = binary;
    return owner;
}

/// One connection to the sound server.
class Visit {
public:
    std::vector<StreamOwner> audibleStreams() {
        if (!connect())
            return {};
        const Operation playing(
            pa_context_get_sink_input_info_list(context_.get(), hearPlaying, this));
        const Operation recording(
            pa_context_get_source_output_info_list(context_.get(), hearRecording, this));
        runUntil([&] {
            return !playing || !recording ||
                   (pa_operation_get_state(playing.get()) != PA_OPERATION_RUNNING &&
                    pa_operation_get_state(recording.get()) != PA_OPERATION_RUNNING);
        });
        pa_context_disconnect(context_.get());
        return std::move(owners_);
    }

private:
    bool connect() {
        context_.reset(pa_context_new(pa_mainloop_get_api(loop_.get()), "Velmor Quit"));
        // A question must not start a sound server.
        if (!context_ ||
            pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
            return false;
        runUntil([this] { return pa_context_get_state(context_.get()) == PA_CONTEXT_READY; });
        return pa_context_get_state(context_.get()) == PA_CONTEXT_READY;
    }

    template <class Condition> void runUntil(Condition isSo) {
        while (!isSo() && PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()))) {
            const auto left = std::chrono::duration_cast<std::chrono::microseconds>(
                deadline_ - std::chrono::steady_clock::now());
            if (left.count() <= 0 ||
                pa_mainloop_prepare(loop_.get(), static_cast<int>(left.count())) < 0 ||
                pa_mainloop_poll(loop_.get()) < 0 || pa_mainloop_dispatch(loop_.get()) < 0)
                return;
        }
    }

    static void hearPlaying(pa_context*, const pa_sink_input_info* stream, int end, void* visit) {
        if (end == 0 && !stream->corked)
            static_cast<Visit*>(visit)->owners_.push_back(ownerOf(stream->proplist));
    }

    static void hearRecording(pa_context*, const pa_source_output_info* stream, int end,
                              void* visit) {
        // A volume control's level meter reads only the peaks, which is no recording.
        const bool showsLevel = end == 0 && stream->resample_method &&
                                std::string_view(stream->resample_method) == "peaks";
        if (end == 0 && !stream->corked && !showsLevel)
            static_cast<Visit*>(visit)->owners_.push_back(ownerOf(stream->proplist));
    }

    std::chrono::steady_clock::time_point deadline_ = std::chrono::steady_clock::now() + patience;
    Loop loop_{pa_mainloop_new()};
    Context context_;
    std::vector<StreamOwner> owners_;
};

std::vector<ProcessId> audibleProcesses() {
    std::set<ProcessId> processes;
    for (const StreamOwner& owner : Visit().audibleStreams())
        processes.merge(processesOfStream(owner));
    processes.erase(::getpid());
    return {processes.begin(), processes.end()};
}

bool executes(const ProcDirectory& proc, ProcessId id, const std::string& binary) {
    const std::string path = proc.link(id, "exe");
    return binary.empty() ? !path.empty() : path.substr(path.rfind('/') + 1) == binary;
}

/// The last number of the line "NSpid:": the id in the innermost namespace.
std::string innermostId(const std::string& status) {
    const std::size_t line = status.find("\nNSpid:");
    if (line == std::string::npos)
        return {};
    const std::size_t end = std::min(status.find('\n', line + 1), status.size());
    const std::string ids = status.substr(line, end - line);
    return ids.substr(ids.find_last_of("\t ") + 1);
}

} // namespace

void PulseAudioProcesses::busyProcesses(std::function<void(const std::vector<ProcessId>&)> told) {
    auto processes = std::make_shared<std::vector<ProcessId>>();
    const int number = ++lastAsking_;
    asking_[number] = loop_.background([processes] { *processes = audibleProcesses(); },
                                       [this, number, processes, told = std::move(told)] {
                                           const auto answer = told;
                                           const auto found = processes;
                                           asking_.erase(number);
                                           answer(*found);
                                       });
}

std::set<ProcessId> processesOfStream(const StreamOwner& owner, const std::string& proc) {
    if (!owner.process)
        return {};
    const ProcDirectory directory(proc);
    if (executes(directory, *owner.process, owner.binary))
        return {*owner.process};
    const std::string inner = std::to_string(*owner.process);
    std::set<ProcessId> processes;
    for (const ProcessId id : directory.processes()) {
        if (innermostId(directory.read(id, "status")) == inner &&
            executes(directory, id, owner.binary))
            processes.insert(id);
    }
    return processes;
}

} // namespace velmorquit
