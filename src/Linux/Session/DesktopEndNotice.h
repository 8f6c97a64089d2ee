#pragma once

#include "Linux/Session/EndNotice.h"
#include "Platform/Notice.h"

namespace velmorquit {

/// Tells it in a notice of the desktop's.
class DesktopEndNotice final : public EndNotice {
public:
    /// `notice` outlives it, and is its own to listen to.
    explicit DesktopEndNotice(Notice& notice);
    DesktopEndNotice(const DesktopEndNotice&) = delete;
    DesktopEndNotice& operator=(const DesktopEndNotice&) = delete;
    ~DesktopEndNotice() override;

    void showWaiting(LoginRequest request, const std::vector<std::string>& names) override;
    void showGivenUp(LoginRequest request, const std::vector<std::string>& names) override;
    void showFailure(LoginRequest request) override;
    void withdraw() override;

private:
    Notice& notice_;
};

} // namespace velmorquit
