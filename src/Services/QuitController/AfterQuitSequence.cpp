#include "Platform/SystemLog.h"
#include "Services/QuitController/QuitController.h"

namespace velmorquit {

Task QuitController::afterApps(RunResult result, PowerAction action) {
    unfollowedResult_.reset();
    showResult(result, std::nullopt);
    if (result.closed > 0)
        emit(events::QuitDone{result.closed});
    if (action != PowerAction::none) {
        desktop_.log.write("Velmor Quit: azione " + std::string(rawValue(action)) +
                           " non ancora disponibile: non faccio altro");
    }
    co_return;
}

} // namespace velmorquit
