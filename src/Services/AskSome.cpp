#include "Services/AskSome.h"

namespace velmorquit {

AskSome::Result AskSome::ask(const std::vector<OpenApp>& apps) const {
    Result result;
    for (const OpenApp& app : controller_.isRunning() ? std::vector<OpenApp>() : apps) {
        if (const auto obstacle = app.app->obstacle())
            result.notAsked.push_back({app, *obstacle});
        else if (app.app->terminate(AskedBy::user))
            result.asked.push_back(app);
        else
            result.notAsked.push_back({app, StayReason::cannotBeAsked});
    }
    return result;
}

} // namespace velmorquit
