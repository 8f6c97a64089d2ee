#include "Fuzz/Fuzz.h"
#include "Linux/Appearance/DesktopLook.h"
#include "Linux/X11/XSettings.h"

void velmorquit::fuzz::examine(std::string_view bytes) {
    const auto settings = parseXSettings(bytes);
    if (!settings)
        return;
    std::size_t held = 0;
    for (const auto& [name, value] : *settings) {
        const auto* text = std::get_if<std::string>(&value);
        held += name.size() + (text ? text->size() : 0) + 8;
    }
    require(held <= bytes.size(), "settings are a part of the bytes");
    static_cast<void>(DesktopLook::of(*settings, *settings));
}
