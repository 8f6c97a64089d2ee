#pragma once

#include "Remote/Status.h"
#include "Services/QuitController/QuitController.h"

namespace velmorquit {

/// The engine's state as reported to other processes.
class StatusSource {
public:
    /// The arguments must outlive it.
    StatusSource(const QuitController& controller, const LoginWindow& loginWindow)
        : controller_(controller), loginWindow_(loginWindow) {}

    [[nodiscard]] remote::Status status() const;

    [[nodiscard]] remote::Application application(const OpenApp& app) const;
    [[nodiscard]] std::vector<remote::Application>
    applications(const std::vector<OpenApp>& apps) const;
    /// With the reason why each of them stays.
    [[nodiscard]] std::vector<remote::Application> stubborn() const;
    [[nodiscard]] remote::RunState run() const;
    [[nodiscard]] std::vector<remote::Drive> drives() const;
    /// None without one.
    [[nodiscard]] std::optional<remote::Schedule> schedule() const;
    /// None when no end was requested.
    [[nodiscard]] std::optional<remote::Ending> ending() const;

private:
    const QuitController& controller_;
    const LoginWindow& loginWindow_;
};

} // namespace velmorquit
