#include "Services/QuitController/OpenApp.h"

#include <utility>

namespace velmorquit {

OpenApp::OpenApp(std::shared_ptr<RunningApplication> application, std::uint64_t footprint)
    : id(application->processId()), app(std::move(application)),
      name(app->localizedName().value_or(app->bundleIdentifier().value_or("App"))),
      bundleID(app->bundleIdentifier()), otherIdentities(app->otherIdentities()), icon(app->icon()),
      memory(footprint) {}

} // namespace velmorquit
