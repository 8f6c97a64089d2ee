#include "Services/RunNotice.h"

#include "Model/AppTexts.h"
#include "Services/Panel/CardTexts.h"
#include "Services/RunAnswers.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <utility>

namespace velmorquit {
namespace {

std::string outlook(PowerAction action) {
    switch (action) {
    case PowerAction::shutDown:
        return localized("Quando tutto sarà chiuso, il computer si spegnerà. Se lasci aperto "
                         "qualcosa, resterà acceso.");
    case PowerAction::restart:
        return localized("Quando tutto sarà chiuso, il computer si riavvierà. Se lasci aperto "
                         "qualcosa, non si riavvierà.");
    case PowerAction::logOut:
        return localized("Quando tutto sarà chiuso, la sessione finirà. Se lasci aperto "
                         "qualcosa, continuerà.");
    case PowerAction::none:
        break;
    }
    return {};
}

} // namespace

RunNotice::RunNotice(QuitController& controller, Notice& notice, const Formats& formats)
    : controller_(controller), notice_(notice), formats_(formats) {
    notice_.onButton = [this](const std::string& button) { answer(button); };
    notice_.onUnanswerable = [this] { hearUnanswerable(); };
    const auto follow = [this](auto&... fields) {
        (subscriptions_.push_back(fields.subscribe([this] { this->follow(); })), ...);
    };
    follow(controller_.phase, controller_.stubborn, controller_.stayReasons,
           controller_.pendingAction, controller_.runningAction);
}

RunNotice::~RunNotice() {
    notice_.onButton = nullptr;
    notice_.onUnanswerable = nullptr;
    withdraw();
}

void RunNotice::panelOpened() {
    isPanelShown_ = true;
    isPanelDue_ = false;
    withdraw();
}

void RunNotice::panelClosed() {
    isPanelShown_ = false;
    follow();
}

RunNotice::Wait RunNotice::present() const {
    if (is<phases::Waiting>(controller_.phase))
        return Wait::applications;
    return is<phases::BackupFailed>(controller_.phase) ? Wait::backup : Wait::none;
}

PowerAction RunNotice::action() const {
    return wait_ == Wait::applications ? controller_.pendingAction : controller_.runningAction;
}

RunNotice::Subject RunNotice::subject() const {
    Subject subject{.apps = {}, .explained = {}, .action = action()};
    for (const OpenApp& app : controller_.stubborn.get())
        subject.apps.push_back(app.id);
    for (const auto& [app, reason] : controller_.stayReasons.get()) {
        if (reason != StayReason::unknown)
            subject.explained.insert(app);
    }
    return subject;
}

// Reasons may come and go with every look at an application: only a reason not told yet is news.
bool RunNotice::isNews() const {
    const Subject now = subject();
    return !isShown_ || now.apps != told_.apps || now.action != told_.action ||
           !std::ranges::includes(told_.explained, now.explained);
}

void RunNotice::follow() {
    if (wait_ != present()) {
        wait_ = present();
        isPanelDue_ = !isPanelShown_;
        withdraw();
    }
    if (wait_ == Wait::none || isPanelShown_ || telling_.isSet() || !isNews())
        return;
    const Duration rest = toldAt_ + pause - controller_.mainLoop().uptime();
    telling_ =
        controller_.mainLoop().after(isShown_ ? std::max(rest, delay) : delay, [this] { tell(); });
}

void RunNotice::tell() {
    telling_.reset();
    if (wait_ != present() || !isNews())
        return;
    isShown_ = true;
    told_ = subject();
    toldAt_ = controller_.mainLoop().uptime();
    notice_.show(wait_ == Wait::backup ? aboutBackup() : aboutApplications());
}

void RunNotice::withdraw() {
    telling_.reset();
    if (std::exchange(isShown_, false))
        notice_.withdraw();
}

Notice::Content RunNotice::aboutApplications() const {
    const std::vector<OpenApp>& apps = controller_.stubborn;
    const auto& reasons = controller_.stayReasons.get();
    const std::size_t named = apps.size() > mostNames ? mostNames - 1 : apps.size();
    std::string names;
    for (std::size_t at = 0; at < named; ++at) {
        const auto reason = reasons.find(apps[at].id);
        names += (at == 0 ? "" : ", ") + nameWithReason(apps[at].name, reason == reasons.end()
                                                                           ? StayReason::unknown
                                                                           : reason->second);
    }
    std::string text = named == apps.size() ? localized("Ancora aperte: %@.", names)
                                            : localized("Ancora aperte: %@ e altre %lld app.",
                                                        names, apps.size() - named);
    if (apps.size() == 1)
        text = localized("Ancora aperta: %@.", names);
    if (const std::string what = outlook(action()); !what.empty())
        text += '\n' + what;
    const bool isOne = apps.size() == 1;
    return {.title = isOne ? localized("Un'app non si è chiusa")
                           : localized("Alcune app non si sono chiuse"),
            .text = text,
            .buttons = {{"show", localized("Mostra")},
                        {"leave", isOne ? localized("Lascia aperta") : localized("Lascia aperte")}},
            .stays = true};
}

Notice::Content RunNotice::aboutBackup() const {
    const auto* failed = std::get_if<phases::BackupFailed>(&controller_.phase.get());
    std::string text = failed ? failed->reason : std::string();
    if (const auto& at = controller_.autoContinueAt.get())
        text += '\n' + localized("Se nessuno risponde, proseguo da solo alle %@.",
                                 formats_.shortTime(*at));
    return {.title = localized("Backup non riuscito"),
            .text = text,
            .buttons = {{"stop", localized("Annulla")},
                        {"goOn", CardTexts::continueTitle(controller_.runningAction)}},
            .stays = true};
}

// A click may have been meant for what was shown a moment ago, in another phase.
void RunNotice::answer(const std::string& button) {
    using RunAnswers::Word;
    const auto isMeant = [&](const char* id, Word word) {
        return button == id && isShown_ &&
               RunAnswers::isTaken(word, RunAnswers::momentOf(controller_));
    };
    if (isMeant("show", Word::showNamed))
        showFirst();
    else if (isMeant("leave", Word::leaveNamed))
        controller_.leaveStubbornOpen();
    else if (isMeant("stop", Word::answerFailure))
        controller_.resolveBackupFailure(QuitController::FailureChoice::stop);
    else if (isMeant("goOn", Word::answerFailure))
        goOn();
}

void RunNotice::showFirst() {
    const std::vector<OpenApp>& apps = controller_.stubborn;
    const bool isSeen = !apps.empty() && apps.front().app->activate();
    if (!isSeen && onShow)
        onShow();
}

// The desktop removes a notice when one of its buttons is pressed, so the question is shown again.
void RunNotice::goOn() {
    if (controller_.mainLoop().uptime() - toldAt_ >= readingTime) {
        controller_.resolveBackupFailure(QuitController::FailureChoice::goOn);
        return;
    }
    toldAt_ = controller_.mainLoop().uptime();
    notice_.show(aboutBackup());
}

void RunNotice::hearUnanswerable() {
    if (isShown_ && std::exchange(isPanelDue_, false) && onUnanswerable)
        onUnanswerable();
}

} // namespace velmorquit
