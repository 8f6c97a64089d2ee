#include "Simulated/SimulatedSession.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

namespace {

std::string word(LoginRequest request) {
    switch (request) {
    case LoginRequest::shutDown:
        return "shut down";
    case LoginRequest::restart:
        return "restart";
    case LoginRequest::logOut:
        break;
    }
    return "log out";
}

} // namespace

std::optional<std::string> SimulatedLoginWindow::request(LoginRequest request,
                                                         const EndTerms& terms) {
    log_(word(request) + (terms.attendance == Attendance::unattended ? " unattended" : "") +
         (terms.comesLate ? " late" : ""));
    isWaiting_ = !refusal;
    become({});
    if (onRequest)
        onRequest();
    return refusal;
}

void SimulatedLoginWindow::announce(LoginRequest request) {
    become({.stage = EndState::Stage::waiting, .request = request});
}

bool SimulatedLoginWindow::cancel() {
    if (isWaiting_)
        log_("cancel request");
    become({});
    return std::exchange(isWaiting_, false);
}

bool SimulatedLoginWindow::endAnyway(std::uint64_t list) {
    const bool isMeant = state->canBeForced && state->list == list;
    if (isMeant)
        log_("end anyway");
    return isMeant;
}

SimulatedWindows::SimulatedWindows(SimulatedWorkspace& workspace,
                                   std::function<void(std::string_view)> log)
    : workspace_(workspace), log_(std::move(log)) {
    watching_ = workspace_.observe([this](const WorkspaceChanges&) { observers_.tell(); });
}

std::uint64_t SimulatedWindows::add(WindowOwner owner, bool isQuestion, bool canBeAsked) {
    added_.push_back({.id = ++lastId_,
                      .owner = std::move(owner),
                      .isQuestion = isQuestion,
                      .canBeAsked = canBeAsked});
    observers_.tell();
    return lastId_;
}

void SimulatedWindows::close(std::uint64_t window) {
    std::erase_if(added_, [window](const OpenWindow& one) { return one.id == window; });
    observers_.tell();
}

namespace {

/// Far from the ids of added windows.
constexpr std::uint64_t firstOfApplications = 1'000'000;

} // namespace

std::vector<OpenWindow> SimulatedWindows::open() {
    std::vector<OpenWindow> windows;
    for (const auto& application : workspace_.runningApplications()) {
        const ProcessId id = application->processId();
        const bool isAsking = application->stayReason() == StayReason::asking;
        if (application->activationPolicy() != ActivationPolicy::regular && !isAsking)
            continue;
        windows.push_back({.id = firstOfApplications + static_cast<std::uint64_t>(id),
                           .owner = {.process = id,
                                     .name = application->localizedName().value_or("App"),
                                     .application = application->bundleIdentifier().value_or(""),
                                     .isBackground = inBackground.contains(id)},
                           .isQuestion = isAsking,
                           .canBeAsked = application->stayReason() != StayReason::cannotBeAsked});
    }
    windows.insert(windows.end(), added_.begin(), added_.end());
    return windows;
}

bool SimulatedWindows::askToClose(std::uint64_t window) {
    if (window >= firstOfApplications)
        return quit(static_cast<ProcessId>(window - firstOfApplications));
    for (const OpenWindow& one : added_) {
        if (one.id == window)
            log_("close " + one.owner.name);
    }
    return true;
}

void SimulatedWindows::askWithoutWindows(ProcessId process) { quit(process); }

bool SimulatedWindows::quit(ProcessId process) {
    for (const auto& application : workspace_.runningApplications()) {
        if (application->processId() == process)
            return application->terminate(AskedBy::user);
    }
    return false;
}

std::optional<std::uint64_t> SimulatedProcesses::startOf(ProcessId process) const {
    const bool isApplication = workspace_.memoryOf(process).has_value();
    return isApplication || doing.contains(process) ? std::optional<std::uint64_t>(1)
                                                    : std::nullopt;
}

std::map<ProcessId, ProcessWork> SimulatedProcesses::work(const std::set<ProcessId>& ids) const {
    std::map<ProcessId, ProcessWork> work;
    for (const ProcessId id : ids) {
        if (!startOf(id))
            continue;
        const auto found = doing.find(id);
        ProcessWork done = found == doing.end() ? ProcessWork{} : found->second();
        done.start = 1;
        work.emplace(id, done);
    }
    return work;
}

void SimulatedEndService::carryOut(LoginRequest request, EndForm form) {
    log_((form == EndForm::asking ? "ASK TO " : "CALL ") + word(request));
    if (onCall)
        onCall(request, form);
    answering_ = loop_.after(answerTime, [this] { onAnswered(failure); });
}

bool SimulatedNotice::press(const std::string& button) {
    if (!shown || std::ranges::find(shown->buttons, button, &Button::id) == shown->buttons.end())
        return false;
    const auto pressed = onButton;
    pressed(button);
    return true;
}

} // namespace velmorquit
