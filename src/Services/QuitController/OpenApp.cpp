#include "Services/QuitController/OpenApp.h"

#include <utility>

namespace velmorquit {

OpenApp::OpenApp(std::shared_ptr<RunningApplication> application, std::uint64_t footprint)
    : id(application->processId()), app(std::move(application)), memory(footprint) {
    renew();
}

void OpenApp::renew() {
    bundleID = app->bundleIdentifier();
    name = app->localizedName().value_or(bundleID.value_or("App"));
    otherIdentities = app->otherIdentities();
    icon = app->icon();
}

} // namespace velmorquit
