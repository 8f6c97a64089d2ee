#pragma once

#include "Remote/Status.h"
#include "Services/QuitController/QuitController.h"

namespace velmorquit {

/// The engine's state as other processes are told of it.
class StatusSource {
public:
    /// What it is handed outlives it.
    StatusSource(const QuitController& controller, const LoginWindow& loginWindow)
        : controller_(controller), loginWindow_(loginWindow) {}

    [[nodiscard]] remote::Status status() const;

    [[nodiscard]] remote::Application application(const OpenApp& app) const;
    [[nodiscard]] std::vector<remote::Application>
    applications(const std::vector<OpenApp>& apps) const;
    /// With the reasons why they stay.
    [[nodiscard]] std::vector<remote::Application> stubborn() const;
    [[nodiscard]] remote::RunState run() const;
    [[nodiscard]] std::vector<remote::Drive> drives() const;
    /// None without one.
    [[nodiscard]] std::optional<remote::Schedule> schedule() const;
    /// None when nobody has asked for it.
    [[nodiscard]] std::optional<remote::Ending> ending() const;

private:
    const QuitController& controller_;
    const LoginWindow& loginWindow_;
};

} // namespace velmorquit
