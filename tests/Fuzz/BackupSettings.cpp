#include "Fuzz/Fuzz.h"
#include "Language/LocaleFormats.h"
#include "Tools/velmorquit-tmutil/Settings.h"
#include "Tools/velmorquit-tmutil/Stamp.h"

using namespace velmorquit::tmutil;

/// The file of destinations, which a person or another program may have changed.
void velmorquit::fuzz::examine(std::string_view bytes) {
    static const LocaleFormats formats(Language::italian, QLocale(QLocale::Italian));
    static const WallTime now{std::chrono::sys_days{std::chrono::year{2026} / 3 / 2}};
    const std::string content(bytes);
    const auto destinations = Settings::decode(content);
    if (!destinations)
        return;
    for (const Destination& destination : *destinations) {
        require(!destination.path.empty() && !destination.id.empty(),
                "a destination has a place and a repository");
        const auto latest = destination.latest();
        if (!latest)
            continue;
        require(pathOf(destination, *latest).ends_with(stampOf(*latest)),
                "a backup's path ends with its stamp");
        require(isUtf8(formats.relativeDate(*latest, now)), "a date can be said");
    }
    const std::string written = Settings::encode(*destinations);
    const auto back = Settings::decode(written);
    require(back && Settings::encode(*back) == written, "what is written can be read");
}
