#include "Fuzz/Fuzz.h"
#include "Language/LocaleFormats.h"
#include "Tools/velmorquit-tmutil/Settings.h"
#include "Tools/velmorquit-tmutil/Stamp.h"

using namespace velmorquit;
using namespace velmorquit::tmutil;

/// The file of destinations, which a person or another program may have changed.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const LocaleFormats formats(Language::italian, QLocale(QLocale::Italian));
    static const WallTime now{std::chrono::sys_days{std::chrono::year{2026} / 3 / 2}};
    const std::string content(reinterpret_cast<const char*>(data), size);
    const auto destinations = Settings::decode(content);
    if (!destinations)
        return 0;
    for (const Destination& destination : *destinations) {
        fuzz::require(!destination.path.empty() && !destination.id.empty(),
                      "a destination has a place and a repository");
        static_cast<void>(destination.keep.isAny());
        const auto latest = destination.latest();
        if (!latest)
            continue;
        fuzz::require(pathOf(destination, *latest).ends_with(stampOf(*latest)),
                      "a backup's path ends with its stamp");
        fuzz::require(fuzz::isUtf8(formats.relativeDate(*latest, now)), "a date can be said");
    }
    const std::string written = Settings::encode(*destinations);
    const auto back = Settings::decode(written);
    fuzz::require(back && Settings::encode(*back) == written, "what is written can be read");
    return 0;
}
