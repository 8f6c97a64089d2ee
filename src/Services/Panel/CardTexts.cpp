#include "Services/Panel/CardTexts.h"

#include "Texts/Joined.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace velmorquit::CardTexts {
namespace {

std::int64_t wholeSeconds(Duration left) {
    return std::max<std::int64_t>(0, std::chrono::ceil<std::chrono::seconds>(left).count());
}

} // namespace

std::string preset(int minutes) {
    constexpr int hour = 60;
    if (minutes == hour)
        return localized("1 ora");
    return minutes % hour == 0 ? localized("%lld ore", minutes / hour)
                               : localized("%lld min", minutes);
}

std::string remaining(Duration left) {
    const std::int64_t seconds = wholeSeconds(left);
    if (seconds < 60)
        return localized("tra %lld s", seconds);
    const std::int64_t minutes = (seconds + 59) / 60;
    const std::int64_t hours = minutes / 60;
    if (hours == 0)
        return localized("tra %lld min", minutes);
    return minutes % 60 == 0 ? localized("tra %lld h", hours)
                             : localized("tra %lld h %lld min", hours, minutes % 60);
}

LastBackup lastBackup(const TimeMachine::Info& info, const Formats& formats, WallTime now) {
    if (!info.lastBackup)
        return {localized("Nessun backup ancora fatto"), true};
    return {localized("Ultimo backup: %@", formats.relativeDate(*info.lastBackup, now)),
            *info.lastBackup < now - freshBackup};
}

std::string backupHelp(const TimeMachine::Info& info) {
    return info.isConfigured
               ? localized("Dopo aver chiuso le app fa il backup con Time Machine, poi spegne o "
                           "riavvia")
               : localized("Time Machine non è configurato: scegli un disco in Impostazioni di "
                           "Sistema → Generali → Time Machine");
}

std::string ejectHelp(const std::vector<ExternalDrives::Drive>& drives) {
    if (drives.empty())
        return localized(
            "Dopo aver chiuso le app espelle i dischi esterni (ora non ce n'è nessuno)");
    return drives.size() == 1
               ? localized("Dopo aver chiuso le app espelle «%@»", drives.front().name)
               : localized("Dopo aver chiuso le app espelle i %lld dischi esterni", drives.size());
}

std::optional<double> shownFraction(std::optional<double> fraction) {
    if (!fraction || !std::isfinite(*fraction))
        return std::nullopt;
    return std::clamp(*fraction, 0.0, 1.0);
}

std::string percentage(double fraction) {
    return localized("%lld %%", std::llround(fraction * 100));
}

std::string continueTitle(PowerAction runningAction) {
    return runningAction == PowerAction::none ? localized("Continua")
                                              : localized("%@ lo stesso", label(runningAction));
}

std::string continuesIn(Duration left) {
    return localized("Nessuno risponde: proseguo da solo tra %lld s", wholeSeconds(left));
}

std::string reopenTitle(std::size_t count) {
    return count == 1 ? localized("L'app di prima") : localized("%lld app di prima", count);
}

std::string names(const std::vector<SavedApp>& apps) { return joined(apps, ", ", &SavedApp::name); }

std::string notReopenable(const std::vector<std::string>& names) {
    if (names.empty())
        return {};
    return names.size() == 1 ? localized("Non si può riaprire: %@.", names.front())
                             : localized("Non si possono riaprire: %@.", joined(names));
}

} // namespace velmorquit::CardTexts
