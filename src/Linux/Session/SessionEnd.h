#pragma once

#include "Linux/Session/EndNotice.h"
#include "Platform/EndService.h"
#include "Linux/Session/OpenApplications.h"
#include "Platform/LoginWindow.h"
#include "Platform/SystemLog.h"
#include "Platform/Task.h"

#include <string>
#include <vector>

namespace velmorquit {

/// Ends the session, or switches the computer off, once everything in it has closed. Nobody else
/// would ask: those who do the rest close what is still open without a question.
class SessionEnd final : public LoginWindow {
public:
    /// Time that the applications have to close.
    static constexpr Duration limit = 60s;
    static constexpr Duration pollInterval = 250ms;
    /// What has closed by then is not worth a notice.
    static constexpr Duration noticeDelay = 1s;

    struct Surroundings {
        MainLoop& loop;
        SystemLog& log;
        Workspace& workspace;
        EndService& service;
        EndNotice& notice;
        /// This program, which isn't asked to quit.
        ProcessId ownProcess;
    };

    /// What it refers to outlives it, and `service` and `notice` are its own to listen to.
    explicit SessionEnd(const Surroundings& surroundings);
    SessionEnd(const SessionEnd&) = delete;
    SessionEnd& operator=(const SessionEnd&) = delete;
    ~SessionEnd() override;

    /// Refused as well while the system is being asked for an earlier request. A request that is
    /// refused leaves one that waits as it is.
    std::optional<std::string> request(LoginRequest request) override;
    bool cancel() override;

    [[nodiscard]] MainLoop& mainLoop() { return surroundings_.loop; }

private:
    using Applications = std::vector<std::shared_ptr<RunningApplication>>;

    Task waitAndEnd(LoginRequest request);
    void tellWaiting(LoginRequest request, const Applications& open);
    void giveUp(LoginRequest request, const Applications& open);
    void carryOut(LoginRequest request);
    void hear(const std::optional<std::string>& failure);

    Surroundings surroundings_;
    OpenApplications applications_;
    Task waiting_;
    /// The applications that the notice tells of.
    std::vector<std::string> told_;
    /// What the service is being asked for.
    std::optional<LoginRequest> underWay_;
};

} // namespace velmorquit
