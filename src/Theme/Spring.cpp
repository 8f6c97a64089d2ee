#include "Theme/Spring.h"

#include <cmath>
#include <numbers>

namespace velmorquit {

double Spring::at(double seconds) const {
    if (seconds <= 0)
        return 0;
    if (response <= 0)
        return 1;
    const double frequency = 2 * std::numbers::pi / response;
    if (damping >= 1)
        return 1 - std::exp(-frequency * seconds) * (1 + frequency * seconds);
    const double damped = frequency * std::sqrt(1 - damping * damping);
    const double envelope = std::exp(-damping * frequency * seconds);
    return 1 - envelope * (std::cos(damped * seconds) +
                           damping * frequency / damped * std::sin(damped * seconds));
}

double Spring::settlingTime() const {
    constexpr double rest = 0.001;
    const double frequency = response > 0 ? 2 * std::numbers::pi / response : 0;
    // A critically damped spring has a factor that grows with time: a third more covers it.
    const double slowness = damping >= 1 ? 1.35 : 1;
    return frequency > 0 && damping > 0 ? -std::log(rest) / (damping * frequency) * slowness : 0;
}

} // namespace velmorquit
