#include "Services/QuitController/QuitController.h"

#include <algorithm>

namespace velmorquit {

/// A run begins with what is known at that moment. What is asked, remembered and shown goes by what
/// is known by now.
void QuitController::renewTargets() {
    for (OpenApp& target : targets_)
        target.renew();
}

// An application that has only just shown itself may turn out to be one that the user excludes: it
// is asked as soon as it is known for good, which is long before the grace period ends. Whoever has
// been asked can't be spared any more.
void QuitController::askTargets() {
    renewTargets();
    const auto isSpared = [this](const OpenApp& target) {
        // One that is known by now for what the user doesn't see isn't on the user's list.
        const bool isHidden = target.app->isIdentitySettled() &&
                              target.app->activationPolicy() == ActivationPolicy::accessory &&
                              target.app->obstacle();
        return unsettled_.contains(target.id) && !target.app->isTerminated() &&
               (isExcluded(target) || isHidden);
    };
    if (std::erase_if(targets_, isSpared) > 0 && is<phases::Quitting>(phase))
        phase = phases::Quitting{static_cast<int>(targets_.size())};
    for (const OpenApp& target : targets_) {
        const bool isRegular = target.app->activationPolicy() == ActivationPolicy::regular;
        // Between two windows it isn't asked: one that has none for long is asked otherwise.
        if (target.app->isIdentitySettled() && unsettled_.erase(target.id) > 0 &&
            !(isRegular && target.app->terminate(AskedBy::run)))
            hindered_.insert_or_assign(target.id, std::nullopt);
    }
}

} // namespace velmorquit
