#include "Linux/Session/OpenApplications.h"

namespace velmorquit {

OpenApplications::StillOpen OpenApplications::ask(Uptime now) {
    StillOpen open;
    for (const auto& application : workspace_.runningApplications()) {
        if (application->processId() == own_)
            continue;
        if (application->activationPolicy() == ActivationPolicy::regular) {
            askWithWindows(application);
            if (!application->isTerminated())
                open.applications.push_back(application);
            continue;
        }
        const auto asked = asked_.find(application);
        const bool wasAsked = asked != asked_.end();
        if (isBusy(*application, wasAsked)) {
            if (wasAsked)
                asked->second.quietSince.reset();
            open.applications.push_back(application);
        } else if (wasAsked && isEnding(*application, asked->second, now)) {
            open.areOthersEnding = true;
        }
    }
    return open;
}

// One that showed a window after it had gone on without any is as good as opened anew.
void OpenApplications::askWithWindows(const std::shared_ptr<RunningApplication>& application) {
    const auto [asked, isNew] = asked_.try_emplace(application);
    const bool hasComeBack = asked->second.isAskedAgain;
    asked->second = {};
    if (isNew || hasComeBack)
        application->terminate();
}

// One that was asked and doesn't react any more may be writing down what it was asked to save. What
// had no windows from the start is none of the user's business unless it has a question: parts of
// the desktop are among these.
bool OpenApplications::isBusy(RunningApplication& application, bool wasAsked) {
    const StayReason reason = application.stayReason();
    return reason == StayReason::asking || (wasAsked && reason == StayReason::notResponding);
}

bool OpenApplications::isEnding(RunningApplication& application, Asked& asked, Uptime now) {
    if (!asked.quietSince)
        asked.quietSince = now;
    if (!asked.isAskedAgain && now - *asked.quietSince >= windowlessPatience) {
        asked.isAskedAgain = true;
        asked.quietSince = now;
        application.terminate();
    }
    return !application.isTerminated() &&
           (!asked.isAskedAgain || now - *asked.quietSince < windowlessLimit);
}

void OpenApplications::askAnew() {
    std::erase_if(asked_, [](const auto& entry) {
        RunningApplication& application = *entry.first;
        return application.activationPolicy() == ActivationPolicy::regular &&
               application.stayReason() != StayReason::asking;
    });
}

} // namespace velmorquit
