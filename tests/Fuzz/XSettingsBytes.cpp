#include "Fuzz/Fuzz.h"
#include "Linux/Appearance/DesktopLook.h"
#include "Linux/X11/XSettings.h"

using namespace velmorquit;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto settings = parseXSettings({reinterpret_cast<const char*>(data), size});
    if (!settings)
        return 0;
    std::size_t held = 0;
    for (const auto& [name, value] : *settings) {
        const auto* text = std::get_if<std::string>(&value);
        held += name.size() + (text ? text->size() : 0) + 8;
    }
    fuzz::require(held <= size, "settings are a part of the bytes");
    static_cast<void>(DesktopLook::of(*settings, *settings));
    return 0;
}
