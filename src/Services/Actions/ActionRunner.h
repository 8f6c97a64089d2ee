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

/// What an action has to say when it has been carried out, or why it was not.
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

/// What is said of a quit that was scheduled.
[[nodiscard]] std::string scheduledText(WallTime date, PowerAction action, const Formats& formats);
/// What is said of the memory in use, with the percentage as the value.
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

    /// What it is handed outlives it.
    ActionRunner(MainLoop& loop, const Kernel& kernel, const Formats& formats)
        : loop_(loop), kernel_(kernel), formats_(formats) {}

    /// What the actions work on: null until the program has started, and when it ends.
    void setController(QuitController* controller) { controller_ = controller; }

    /// Carries the action out and tells `answered` once, in a later turn; never when this object
    /// has gone by then. The request's parameters are in their range.
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
