#include "Linux/Windows/Windowing.h"

#include "Linux/X11/X11Windowing.h"
#include "Platform/SystemLog.h"

#include <cstdlib>
#include <string>

namespace velmorquit {

std::unique_ptr<Windowing> Windowing::choose(SystemLog& log) {
    if (auto windowing = X11Windowing::connect())
        return windowing;
    const char* display = std::getenv("DISPLAY");
    log.write(std::string("Velmor Quit: non trovo un desktop X11 ") +
              (display ? std::string("(DISPLAY=") + display + " non risponde)"
                       : "(DISPLAY non è impostata)"));
    return nullptr;
}

} // namespace velmorquit
