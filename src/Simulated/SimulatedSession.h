#pragma once

#include "Loop/MainLoop.h"
#include "Platform/EndService.h"
#include "Platform/InputActivity.h"
#include "Platform/LoginWindow.h"
#include "Platform/Notice.h"
#include "Platform/Processes.h"
#include "Platform/SessionRegistry.h"
#include "Platform/Windows.h"
#include "Simulated/SimulatedWorkspace.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// Takes every request, unless a test sets a refusal, and does nothing else.
class SimulatedLoginWindow final : public LoginWindow {
public:
    SimulatedLoginWindow(MainLoop& loop, std::function<void(std::string_view)> log)
        : LoginWindow(loop), log_(std::move(log)) {}

    std::optional<std::string> request(LoginRequest request, const EndTerms& terms) override;
    void announce(LoginRequest request) override;
    bool cancel() override;
    bool endAnyway(std::uint64_t list) override;
    [[nodiscard]] EndOutlook outlook(LoginRequest) const override { return expected; }

    using LoginWindow::become;

    std::optional<std::string> refusal;
    EndOutlook expected = EndOutlook::direct;
    std::function<void()> onRequest;

private:
    bool isWaiting_ = false;
    std::function<void(std::string_view)> log_;
};

/// One window for each application that has any, and those added by a test: of programs that no
/// list shows.
class SimulatedWindows final : public Windows {
public:
    SimulatedWindows(SimulatedWorkspace& workspace, std::function<void(std::string_view)> log);

    /// Opens a window that stays until it is closed; returns its id.
    std::uint64_t add(WindowOwner owner, bool isQuestion = false, bool canBeAsked = true);
    void close(std::uint64_t window);
    /// The added windows.
    [[nodiscard]] const std::vector<OpenWindow>& added() const { return added_; }

    [[nodiscard]] std::vector<OpenWindow> open() override;
    bool askToClose(std::uint64_t window) override;
    void askWithoutWindows(ProcessId process) override;
    [[nodiscard]] std::set<ProcessId> trayOwners() override { return inTray; }
    [[nodiscard]] Handle observe(std::function<void()> told) override {
        return observers_.add(std::move(told));
    }

    std::set<ProcessId> inTray;
    /// Programs that belong to the session instead of its user.
    std::set<ProcessId> inBackground;

private:
    bool quit(ProcessId process);

    SimulatedWorkspace& workspace_;
    std::function<void(std::string_view)> log_;
    std::vector<OpenWindow> added_;
    std::uint64_t lastId_ = 0;
    Subscribers observers_;
    Handle watching_;
};

/// The applications as processes, with the work that a test sets.
class SimulatedProcesses final : public Processes {
public:
    explicit SimulatedProcesses(const SimulatedWorkspace& workspace) : workspace_(workspace) {}

    [[nodiscard]] std::optional<std::uint64_t> startOf(ProcessId process) const override;
    [[nodiscard]] std::map<ProcessId, ProcessWork>
    work(const std::set<ProcessId>& ids) const override;
    [[nodiscard]] std::vector<WindowlessJob> windowlessJobs() const override { return jobs; }

    /// The work of a process so far; none for processes without an entry. A process besides the
    /// applications exists while it has an entry.
    std::map<ProcessId, std::function<ProcessWork()>> doing;
    std::vector<WindowlessJob> jobs;

private:
    const SimulatedWorkspace& workspace_;
};

class SimulatedSessionRegistry final : public SessionRegistry {
public:
    explicit SimulatedSessionRegistry(MainLoop& loop) : loop_(loop) {}

    [[nodiscard]] Handle
    read(std::function<void(const std::optional<SessionAccount>&)> told) override {
        return loop_.after(answerTime, [this, told = std::move(told)] { told(account); });
    }

    std::optional<SessionAccount> account = SessionAccount{};
    Duration answerTime{};

private:
    MainLoop& loop_;
};

class SimulatedInput final : public InputActivity {
public:
    explicit SimulatedInput(MainLoop& loop) : loop_(loop) {}

    [[nodiscard]] Handle
    sinceLastInput(std::function<void(std::optional<Duration>)> told) override {
        return loop_.after(Duration::zero(), [this, told = std::move(told)] { told(since); });
    }

    std::optional<Duration> since = Duration::zero();

private:
    MainLoop& loop_;
};

/// Logs the requests that it gets.
class SimulatedEndService final : public EndService {
public:
    SimulatedEndService(MainLoop& loop, std::function<void(std::string_view)> log)
        : loop_(loop), log_(std::move(log)) {}

    [[nodiscard]] bool isReady() const override { return ready; }
    [[nodiscard]] std::optional<std::string> obstacle(LoginRequest, EndForm form) const override {
        return form == EndForm::asking ? cannotAsk : missing;
    }
    void carryOut(LoginRequest request, EndForm form) override;

    bool ready = true;
    std::optional<std::string> missing;
    std::optional<std::string> cannotAsk;
    std::optional<std::string> failure;
    Duration answerTime = 10ms;
    /// Called at the moment when the session would end.
    std::function<void(LoginRequest request, EndForm form)> onCall;

private:
    MainLoop& loop_;
    std::function<void(std::string_view)> log_;
    Handle answering_;
};

/// Logs what the user can read.
class SimulatedNotice final : public Notice {
public:
    explicit SimulatedNotice(std::function<void(std::string_view)> log) : log_(std::move(log)) {}

    void show(const Content& content) override {
        shown = content;
        log_("notice " + content.text);
    }
    void withdraw() override {
        if (std::exchange(shown, std::nullopt))
            log_("notice withdrawn");
    }
    /// The user presses a button on show; pressing a missing one is an error of the test.
    bool press(const std::string& button);

    std::optional<Content> shown;

private:
    std::function<void(std::string_view)> log_;
};

} // namespace velmorquit
