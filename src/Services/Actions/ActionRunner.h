#pragma once

#include "Loop/Task.h"
#include "Platform/Formats.h"
#include "Platform/Kernel.h"
#include "Services/Actions/Action.h"
#include "Services/MemoryMonitor.h"

#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>

namespace velmorquit {

class QuitController;

/// The outcome of an action, or why it was not carried out.
struct ActionAnswer {
    enum class Status {
        done,
        notReady, ///< there is no controller yet
        declined, ///< the user didn't want it after all
    };
    Status status = Status::done;
    std::string text; ///< for the user; empty when declined
    std::optional<std::int64_t> value{};
};

/// The sentence that confirms a scheduled quit.
[[nodiscard]] std::string scheduledText(WallTime date, PowerAction action, const Formats& formats);
/// The sentence on the memory in use, with the percentage as the value.
[[nodiscard]] ActionAnswer memoryAnswer(const MemoryMonitor::SystemMemory& memory,
                                        const Formats& formats);

/// Carries out the actions that come from outside, as soon as there is a controller.
class ActionRunner {
public:
    static constexpr Duration waitInterval = 50ms;
    static constexpr int mostWaits = 40;

    /// Puts a question to the user, with the caption of the button that says yes, and gives the
    /// answer later, on the main loop.
    using Confirm = std::function<void(const std::string& question, const std::string& button,
                                       std::function<void(bool isWanted)> answer)>;
    using Answered = std::function<void(const ActionAnswer&)>;

    /// The arguments must outlive it.
    ActionRunner(MainLoop& loop, const Kernel& kernel, const Formats& formats)
        : loop_(loop), kernel_(kernel), formats_(formats) {}

    /// The controller that the actions work on: null before the program has started and as it ends.
    void setController(QuitController* controller) { controller_ = controller; }

    /// Carries the action out and calls `answered` once, in a later turn; never if this object has
    /// gone by then. The request's parameters are in their range.
    void perform(const ActionRequest& request, Confirm confirm, Answered answered);

    [[nodiscard]] MainLoop& mainLoop() const { return loop_; }

private:
    struct Job {
        ActionRequest request;
        Confirm confirm;
        Answered answered;
        Answer<bool> choice;
        Task<> task;
    };

    Task<> run(Job& job);
    void tell(Job& job, const ActionAnswer& answer);
    [[nodiscard]] std::shared_ptr<Job> jobOf(const Job& job) const;
    [[nodiscard]] std::string quitAll(PowerAction action, std::size_t count);
    [[nodiscard]] std::string schedule(const ActionRequest& request);
    [[nodiscard]] std::string cancelSchedule();
    [[nodiscard]] std::string reopen();

    MainLoop& loop_;
    const Kernel& kernel_;
    const Formats& formats_;
    QuitController* controller_ = nullptr;
    std::list<std::shared_ptr<Job>> jobs_;
};

} // namespace velmorquit
