#pragma once

#include "Loop/Task.h"
#include "Platform/EndService.h"
#include "Platform/InputActivity.h"
#include "Platform/LoginWindow.h"
#include "Platform/SessionPorts.h"
#include "Platform/SessionRegistry.h"
#include "Platform/SleepHold.h"
#include "Platform/SystemLog.h"
#include "Platform/Workspace.h"
#include "Services/SessionEnd/OpenWork.h"

#include <vector>

namespace velmorquit {

/// Ends the session, or switches the computer off, once nothing in it can be lost by that. Nobody
/// else would ask: those who do the rest close what is still open without a question.
class SessionEnd final : public LoginWindow {
public:
    static constexpr Duration pollInterval = 250ms;
    /// How long windows are waited for once they have been asked.
    static constexpr Duration windowLimit = 60s;
    /// How long anything is waited for.
    static constexpr Duration limit = 30min;
    /// How old the account of the sessions may be while something else is waited for.
    static constexpr Duration accountInterval = 2s;
    /// How long what can't be looked into is named before the end follows.
    static constexpr Duration namingTime = 10s;
    /// How long one is announced that comes when nobody expects it any more.
    static constexpr Duration lateNamingTime = 60s;
    /// Who wakes the computer after that has something else in mind.
    static constexpr Duration mostSleep = 120s;
    /// How long it is said that the system has been told.
    static constexpr Duration underWayTime = 8s;
    /// A window manager that is replaced by another one lists no windows for a moment …
    static constexpr Duration blindPatience = 3s;
    /// … and those that there are one by one.
    static constexpr Duration sightPatience = 2s;
    /// Whoever has used the computer that recently is there to answer.
    static constexpr Duration presence = 120s;

    using Surroundings = SessionPorts;

    /// What it refers to outlives it, and `service` is its own to listen to.
    explicit SessionEnd(const Surroundings& surroundings);
    ~SessionEnd() override;

    /// Refused as well while the system is being asked for an earlier request. A request that is
    /// refused leaves one that waits as it is.
    std::optional<std::string> request(LoginRequest request, const EndTerms& terms) override;
    void announce(LoginRequest request) override;
    bool cancel() override;
    bool endAnyway(std::uint64_t list) override;
    [[nodiscard]] EndOutlook outlook(LoginRequest request) const override;

    [[nodiscard]] MainLoop& mainLoop() { return surroundings_.loop; }

private:
    using Kind = EndObstacle::Kind;
    using Obstacles = std::vector<EndObstacle>;

    /// What is wanted, and since when it has been in which way of waiting.
    struct Wait {
        LoginRequest request = LoginRequest::shutDown;
        EndTerms terms;
        Uptime begin;
        /// What the clock on the wall was ahead of running time then: that grows by sleep.
        Duration ahead{};
        /// How it is to be carried out, by what is seen now.
        EndForm form = EndForm::direct;
        std::optional<Uptime> blindSince{};
        /// Since when all has been seen again.
        std::optional<Uptime> sightSince{};
        std::optional<Uptime> windowsSince{};
        std::optional<Uptime> namedSince{};
        Obstacles named{};
        /// For what is to be named.
        bool haveJustLooked = false;
        std::optional<Uptime> readAt{};
        /// Whether it has been asked, since not all is seen, if the user is there.
        bool isInputRead = false;
    };
    enum class Next {
        wait,
        lookAgain, ///< at all, from what others say on
        carryOut,  ///< as far as that is concerned
        refuse,
    };

    void begin(LoginRequest request, const EndTerms& terms);
    [[nodiscard]] Duration ahead() const;
    void hearWakeUp();
    Task<> waitAndEnd();
    [[nodiscard]] EndForm form() const;
    void forgetRefusal();
    Next consider(bool isAccountFresh);
    Next considerAccount();
    Next considerSight();
    Next considerWork(bool isAccountFresh);
    Next considerMentions(Uptime now);
    [[nodiscard]] Obstacles withoutPardoned(const Obstacles& obstacles) const;
    void publish(EndState::Stage stage, Obstacles obstacles, std::optional<Uptime> at = {});
    void refuse(Obstacles obstacles);
    void carryOut();
    void end();
    void hear(const std::optional<std::string>& failure);

    Surroundings surroundings_;
    OpenWork work_;
    Wait wait_;
    std::optional<SessionAccount> account_;
    Answer<std::optional<SessionAccount>> accountAnswer_;
    std::optional<Duration> sinceInput_;
    Answer<std::optional<Duration>> inputAnswer_;
    Handle asking_;
    Obstacles refusal_;
    /// Those over which the user has said that the end may come.
    Obstacles pardoned_;
    std::uint64_t lastList_ = 0;
    Handle awake_;
    Handle watching_;
    Handle waking_;
    Handle telling_;
    Task<> waiting_;
    /// What the service is being asked for.
    std::optional<LoginRequest> underWay_;
};

} // namespace velmorquit
