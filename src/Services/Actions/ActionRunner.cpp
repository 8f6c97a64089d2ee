#include "Services/Actions/ActionRunner.h"

#include "Services/QuitController/QuitController.h"
#include "Services/RunAnswers.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <cmath>

namespace velmorquit {

std::string scheduledText(WallTime date, PowerAction action, const Formats& formats) {
    return localized("Fatto: alle %@ %@.", formats.shortTime(date),
                     formats.lowerCase(scheduleTitle(action)));
}

ActionAnswer memoryAnswer(const MemoryMonitor::SystemMemory& memory, const Formats& formats) {
    const auto total = static_cast<double>(std::max<std::uint64_t>(memory.total, 1));
    const std::int64_t percent = std::llround(static_cast<double>(memory.used) / total * 100);
    return {ActionAnswer::Status::done,
            localized("In uso %@ su %@ (%lld%%).", formats.bytes(memory.used),
                      formats.bytes(memory.total), percent),
            percent};
}

void ActionRunner::perform(const ActionRequest& request, Confirm confirm, Answered answered) {
    jobs_.push_back(std::make_shared<Job>());
    Job& job = *jobs_.back();
    job.request = request;
    job.confirm = std::move(confirm);
    job.answered = std::move(answered);
    job.task = run(job);
}

Task<> ActionRunner::run(Job& job) {
    const ActionRequest request = job.request;
    if (request.kind == ActionKind::memory) {
        tell(job, memoryAnswer(MemoryMonitor::system(kernel_), formats_));
        co_return;
    }
    for (int waits = 0; !controller_ && waits < mostWaits; ++waits)
        co_await sleep(waitInterval);
    if (!controller_) {
        tell(job, {ActionAnswer::Status::notReady,
                   localized("Velmor Quit non è pronta: riprova tra un attimo.")});
        co_return;
    }
    if (request.kind != ActionKind::quitAll) {
        const std::string text = request.kind == ActionKind::scheduleQuit     ? schedule(request)
                                 : request.kind == ActionKind::cancelSchedule ? cancelSchedule()
                                                                              : reopen();
        tell(job, {ActionAnswer::Status::done, text});
        co_return;
    }

    if (controller_->isRunning()) {
        tell(job, {ActionAnswer::Status::done, localized("Velmor Quit sta già chiudendo le app.")});
        co_return;
    }
    controller_->refresh();
    const std::size_t count = controller_->quittable().size();
    const PowerAction action = powerAction(request.then);
    if (action != PowerAction::none) {
        const std::string what = formats_.lowerCase(label(action));
        job.confirm(count == 1 ? localized("Chiudo 1 app e poi %@?", what)
                               : localized("Chiudo %lld app e poi %@?", count, what),
                    localized("Continua"), [asked = std::weak_ptr(jobOf(job))](bool isWanted) {
                        if (const auto waiting = asked.lock())
                            waiting->choice.give(isWanted);
                    });
        const bool isWanted = co_await job.choice;
        if (!isWanted || !controller_) {
            tell(job, {ActionAnswer::Status::declined, {}});
            co_return;
        }
    }
    tell(job, {ActionAnswer::Status::done, quitAll(action, count)});
}

std::shared_ptr<ActionRunner::Job> ActionRunner::jobOf(const Job& job) const {
    return *std::ranges::find(jobs_, &job, [](const auto& one) { return one.get(); });
}

// The job is destroyed before it answers: the listener may perform the next one.
void ActionRunner::tell(Job& job, const ActionAnswer& answer) {
    const Answered answered = std::move(job.answered);
    jobs_.remove(jobOf(job));
    if (answered)
        answered(answer);
}

std::string ActionRunner::quitAll(PowerAction action, std::size_t count) {
    if (count == 0 && action == PowerAction::none)
        return localized("Non c'è niente da chiudere.");
    controller_->quitAll(action);
    return count == 1 ? localized("Chiudo 1 app.") : localized("Chiudo %lld app.", count);
}

std::string ActionRunner::schedule(const ActionRequest& request) {
    const WallTime date = loop_.now() + std::chrono::minutes(request.minutes);
    const PowerAction action = powerAction(request.then);
    controller_->scheduleQuit(date, action);
    return scheduledText(date, action, formats_);
}

std::string ActionRunner::cancelSchedule() {
    if (!controller_->schedule.get())
        return localized(RunAnswers::nothingScheduled);
    controller_->cancelSchedule();
    return localized(RunAnswers::scheduleCancelled);
}

std::string ActionRunner::reopen() {
    const std::size_t count = controller_->reopenable().size();
    if (count == 0)
        return localized(RunAnswers::nothingToReopen);
    controller_->reopenLastSession();
    return RunAnswers::reopening(count);
}

} // namespace velmorquit
