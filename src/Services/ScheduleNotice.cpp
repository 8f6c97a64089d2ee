#include "Services/ScheduleNotice.h"

#include "Loop/MainLoop.h"
#include "Services/RunAnswers.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace velmorquit {

ScheduleNotice::ScheduleNotice(QuitController& controller, Notice& notice, const Formats& formats)
    : controller_(controller), notice_(notice), formats_(formats) {
    notice_.onButton = [this](const std::string& button) { answer(button); };
    notice_.onUnanswerable = [this] { hearUnanswerable(); };
    subscriptions_.push_back(controller_.hearCalls([this] { callAttention(); }));
    subscriptions_.push_back(controller_.hearEvents([this](const Event& event) {
        if (std::holds_alternative<events::ConfirmationNeeded>(event))
            ask();
    }));
    subscriptions_.push_back(controller_.schedule.subscribe([this] { follow(); }));
    subscriptions_.push_back(controller_.awaitingConfirmation.subscribe([this] { follow(); }));
    subscriptions_.push_back(controller_.scheduleNote.subscribe([this] { follow(); }));
}

ScheduleNotice::~ScheduleNotice() {
    notice_.onButton = nullptr;
    notice_.onUnanswerable = nullptr;
}

void ScheduleNotice::callAttention() {
    const auto& schedule = controller_.schedule.get();
    if (!schedule)
        return;
    const auto left =
        std::chrono::ceil<std::chrono::seconds>(schedule->date - controller_.mainLoop().now());
    const std::int64_t seconds = std::max<std::int64_t>(left.count(), 0);
    isQuestion_ = false;
    show(localized("Chiusura programmata alle %@", formats_.shortTime(schedule->date)),
         seconds == 1 ? localized("Tra 1 secondo: %@", buttonTitle(schedule->action))
                      : localized("Tra %lld secondi: %@", seconds, buttonTitle(schedule->action)),
         {{"postpone", localized("+10 min")}, {"cancel", localized("Annulla")}});
}

void ScheduleNotice::ask() {
    const auto& schedule = controller_.schedule.get();
    if (!schedule)
        return;
    isQuestion_ = true;
    show(localized("È l'ora della chiusura programmata"), helpText(schedule->action),
         {{"confirm", buttonTitle(schedule->action)},
          {"postpone", localized("+10 min")},
          {"cancel", localized("Annulla")}});
}

void ScheduleNotice::show(std::string title, std::string text,
                          std::vector<Notice::Button> buttons) {
    told_ = controller_.schedule;
    notice_.show({.title = std::move(title),
                  .text = std::move(text),
                  .buttons = std::move(buttons),
                  .stays = true});
}

// The notice may have become outdated by time or by something the user did elsewhere.
void ScheduleNotice::follow() {
    const bool isTrue =
        told_ == controller_.schedule.get() && isQuestion_ == controller_.awaitingConfirmation;
    if (told_ && !isTrue) {
        if (!isQuestion_ && !controller_.schedule.get() && controller_.isRunning())
            begunAt_ = controller_.mainLoop().uptime();
        told_.reset();
        notice_.withdraw();
    }
    const auto& note = controller_.scheduleNote.get();
    if (note && note != toldNote_)
        notice_.show({.title = localized("Chiusura programmata"), .text = *note});
    toldNote_ = note;
}

void ScheduleNotice::hearUnanswerable() {
    if (told_ && std::exchange(shownInPanel_, told_) != told_ && onUnanswerable)
        onUnanswerable();
}

void ScheduleNotice::answer(const std::string& button) {
    using RunAnswers::Word;
    const RunAnswers::Moment moment = RunAnswers::momentOf(controller_);
    const bool hasJustBegun = begunAt_ && controller_.mainLoop().uptime() - *begunAt_ <= lateness;
    if (button == "cancel" && hasJustBegun) {
        controller_.cancelRun();
        return;
    }
    if (!told_ || told_ != controller_.schedule.get())
        return;
    if (button == "postpone")
        controller_.postponeSchedule(postponement);
    else if (button == "cancel")
        controller_.cancelSchedule();
    else if (RunAnswers::isTaken(Word::confirmSchedule, moment))
        controller_.confirmScheduledQuit();
    else
        ask(); // the desktop removed the question with the press
}

} // namespace velmorquit
