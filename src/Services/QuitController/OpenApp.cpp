#include "Services/QuitController/OpenApp.h"

#include "Texts/Shown.h"

#include <utility>

namespace velmorquit {

OpenApp::OpenApp(std::shared_ptr<RunningApplication> application, std::uint64_t footprint)
    : id(application->processId()), app(std::move(application)), memory(footprint) {
    renew();
}

void OpenApp::renew() {
    bundleID = app->bundleIdentifier();
    const std::string stated = app->localizedName().value_or(bundleID.value_or("App"));
    key_ = bundleID.value_or(stated);
    name = shownName(stated);
    if (name.empty())
        name = shownName(key_);
    if (name.empty())
        name = "App";
    otherIdentities = app->otherIdentities();
    icon = app->icon();
}

} // namespace velmorquit
