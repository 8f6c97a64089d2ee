#include "Fuzz/Fuzz.h"
#include "Linux/Appearance/DesktopLook.h"
#include "Linux/X11/XSettings.h"

void velmorquit::fuzz::examine(std::string_view bytes) {
    if (const auto settings = parseXSettings(bytes))
        static_cast<void>(DesktopLook::of(*settings, *settings));
}
