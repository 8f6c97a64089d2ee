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
/// else would ask: the system's own services close what is still open without a question.
class SessionEnd final : public LoginWindow {
public:
    static constexpr Duration pollInterval = 250ms;
    /// How long to wait for windows once they have been asked.
    static constexpr Duration windowLimit = 60s;
    /// How long to wait for anything else.
    static constexpr Duration limit = 30min;
    /// How old the account of the sessions may be while waiting for something else.
    static constexpr Duration accountInterval = 2s;
    /// How long obstacles that can't be looked into are named before the end follows.
    static constexpr Duration namingTime = 10s;
    /// How long an end is announced that comes when nobody expects it any more.
    static constexpr Duration lateNamingTime = 60s;
    /// After a longer sleep the user has woken the computer for something else.
    static constexpr Duration mostSleep = 120s;
    /// How long to show that the system has been told.
    static constexpr Duration underWayTime = 8s;
    /// While one window manager replaces another, no windows are listed for a moment …
    static constexpr Duration blindPatience = 3s;
    /// … and then they come back one by one.
    static constexpr Duration sightPatience = 2s;
    /// A user whose last input is more recent than this is there to answer.
    static constexpr Duration presence = 120s;

    using Surroundings = SessionPorts;

    /// Everything it refers to must outlive it; only this object listens to `service`.
    explicit SessionEnd(const Surroundings& surroundings);
    ~SessionEnd() override;

    /// Also refused while the system is being asked for an earlier request. A refused request
    /// leaves one that is waiting as it is.
    std::optional<std::string> request(LoginRequest request, const EndTerms& terms) override;
    void announce(LoginRequest request) override;
    bool cancel() override;
    bool endAnyway(std::uint64_t list) override;
    [[nodiscard]] EndOutlook outlook(LoginRequest request) const override;

    [[nodiscard]] MainLoop& mainLoop() { return surroundings_.loop; }

private:
    using Kind = EndObstacle::Kind;
    using Obstacles = std::vector<EndObstacle>;

    /// The present request, and since when each kind of waiting has lasted.
    struct Wait {
        LoginRequest request = LoginRequest::shutDown;
        EndTerms terms;
        Uptime begin;
        /// How far the wall clock was ahead of running time at the beginning; sleep increases it.
        Duration ahead{};
        /// How it is to be carried out, given what can be seen now.
        EndForm form = EndForm::direct;
        std::optional<Uptime> blindSince{};
        /// Since when everything can be seen again.
        std::optional<Uptime> sightSince{};
        std::optional<Uptime> windowsSince{};
        std::optional<Uptime> namedSince{};
        Obstacles named{};
        /// Whether the mentions were looked up in the previous round.
        bool haveJustLooked = false;
        std::optional<Uptime> readAt{};
        /// Whether the time of the last input has been asked for, since not everything can be seen.
        bool isInputRead = false;
    };
    enum class Next {
        wait,
        lookAgain, ///< start over, beginning with the account of the sessions
        carryOut,  ///< nothing in this respect stands in the way
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
    /// The obstacles that the user has allowed the end to pass over.
    Obstacles pardoned_;
    std::uint64_t lastList_ = 0;
    Handle awake_;
    Handle watching_;
    Handle waking_;
    Handle telling_;
    Task<> waiting_;
    /// The request that the service is carrying out.
    std::optional<LoginRequest> underWay_;
};

} // namespace velmorquit
