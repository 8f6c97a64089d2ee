#include "Model/AppTexts.h"

#include "Texts/Localized.h"

#include <array>

namespace velmorquit {

namespace {

/// Keys of the string table.
struct Keys {
    const char* name;
    const char* remark;
    const char* help;
};

const Keys& keysOf(StayReason reason) {
    // In the order of the enumeration.
    static constexpr std::array<Keys, 7> table{{
        {"%@", textKey("ancora aperta"), textKey("Forse chiede qualcosa dentro la sua finestra.")},
        {textKey("%@ (aspetta una tua risposta)"),
         textKey("ancora aperta: aspetta una tua risposta"),
         textKey("Ha una finestra aperta che aspetta una risposta.")},
        {textKey("%@ (senza finestre)"), textKey("ancora in esecuzione, senza finestre"),
         textKey("Ha chiuso le sue finestre, ma resta in esecuzione.")},
        {textKey("%@ (non si può chiederle di chiudersi)"),
         textKey("ancora aperta: non si può chiederle di chiudersi"),
         textKey("Non c'è modo di chiederle di chiudersi.")},
        {textKey("%@ (ha un comando in corso)"), textKey("ancora aperta: ha un comando in corso"),
         textKey("Vi è in corso un comando che andrebbe perso.")},
        {textKey("%@ (non risponde)"), textKey("ancora aperta: non risponde"),
         textKey("Non risponde.")},
        {textKey("%@ (nell'area di notifica)"),
         textKey("ancora in esecuzione, nell'area di notifica"),
         textKey("Ha chiuso le sue finestre e resta nell'area di notifica.")},
    }};
    return table.at(static_cast<std::size_t>(reason));
}

} // namespace

std::string nameWithReason(const std::string& name, StayReason reason) {
    return localized(keysOf(reason).name, name);
}

std::string stayRemark(StayReason reason) { return localized(keysOf(reason).remark); }

std::string stayHelp(StayReason reason) { return localized(keysOf(reason).help); }

std::string unseenHelp(Sight sight) {
    switch (sight) {
    case Sight::noWindowList:
        return localized("Non vedo che cosa è aperto: nessun gestore di finestre me lo dice.");
    case Sight::incomplete:
        return localized("Non vedo tutto: ci sono troppe finestre o troppi file aperti.");
    case Sight::anotherDisplay:
        return localized("Non vedo che cosa è aperto: di questa sessione vedo solo una parte delle "
                         "finestre.");
    case Sight::all:
        break;
    }
    return {};
}

std::string ejectedText(int count) {
    return count == 1 ? localized("1 disco espulso") : localized("%lld dischi espulsi", count);
}

} // namespace velmorquit
