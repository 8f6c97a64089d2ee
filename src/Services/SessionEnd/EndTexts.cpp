#include "Services/SessionEnd/EndTexts.h"

#include "Model/AppTexts.h"
#include "Texts/Joined.h"
#include "Texts/Localized.h"
#include "Texts/Shown.h"

#include <algorithm>
#include <array>

namespace velmorquit::EndTexts {
namespace {

using Kind = EndObstacle::Kind;
using Stage = EndState::Stage;

/// Keys of the string table.
struct Keys {
    const char* coming;
    const char* underWay;
    const char* refused;
    const char* anyway;
    const char* question;
    const char* cancel;
};

const Keys& keysOf(LoginRequest request) {
    static constexpr std::array<Keys, 3> keys{
        {{textKey("Sto per spegnere il computer"), textKey("Spengo il computer"),
          textKey("Il computer non è stato spento"), textKey("Spegni comunque"),
          textKey("Spegnere comunque?"), textKey("Annulla lo spegnimento")},
         {textKey("Sto per riavviare il computer"), textKey("Riavvio il computer"),
          textKey("Il computer non è stato riavviato"), textKey("Riavvia comunque"),
          textKey("Riavviare comunque?"), textKey("Annulla il riavvio")},
         {textKey("Sto per chiudere la sessione"), textKey("Chiudo la sessione"),
          textKey("La sessione non è stata chiusa"), textKey("Esci comunque"),
          textKey("Uscire comunque?"), textKey("Annulla l'uscita")}}};
    return keys.at(static_cast<std::size_t>(request));
}

std::string nameOf(const EndObstacle& obstacle) {
    std::string name = shownName(obstacle.name);
    return name.empty() ? "App" : name;
}

std::string described(const EndObstacle& obstacle) {
    const std::string name = nameOf(obstacle);
    const std::string detail = shownText(obstacle.detail);
    switch (obstacle.kind) {
    case Kind::question:
        return nameWithReason(name, StayReason::asking);
    case Kind::unaskable:
        return nameWithReason(name, StayReason::cannotBeAsked);
    case Kind::work:
        return detail.empty() ? localized("%@ (sta ancora lavorando)", name)
                              : localized("%@ (sta ancora lavorando: %@)", name, detail);
    case Kind::inhibitor:
        return detail.empty() ? name : name + " (" + detail + ')';
    case Kind::secondSession:
        return localized("Hai un'altra sessione aperta su questo computer.");
    case Kind::slept:
        return localized("Il computer è stato a lungo in stop nel frattempo.");
    case Kind::unseen:
        return detail;
    case Kind::unknown:
        return localized("Il sistema non dice chi è collegato e che cosa non va interrotto.");
    default:
        return name;
    }
}

std::vector<EndObstacle> ofKind(const std::vector<EndObstacle>& obstacles, Kind kind) {
    std::vector<EndObstacle> found;
    std::ranges::copy_if(obstacles, std::back_inserter(found),
                         [kind](const EndObstacle& one) { return one.kind == kind; });
    return found;
}

bool areAll(const std::vector<EndObstacle>& obstacles, Kind kind) {
    return std::ranges::all_of(obstacles,
                               [kind](const EndObstacle& one) { return one.kind == kind; });
}

std::string namingText(const EndState& state) {
    const std::vector<EndObstacle>& obstacles = state.obstacles;
    const auto tray = ofKind(obstacles, Kind::tray);
    const auto jobs = ofKind(obstacles, Kind::job);
    std::string text;
    if (obstacles.empty())
        return localized("Entro un minuto, se non annulli.");
    if (!tray.empty())
        text = localized("Nell'area di notifica: %@.", list(tray));
    if (!jobs.empty())
        text += (text.empty() ? "" : " ") +
                localized("Comandi in corso senza finestra: %@.", list(jobs));
    return text;
}

/// Whether it is described by a sentence, and not by a name.
bool isSentence(const EndObstacle& obstacle) {
    return obstacle.kind == Kind::secondSession || obstacle.kind == Kind::slept ||
           obstacle.kind == Kind::unseen || obstacle.kind == Kind::unknown;
}

std::string waitingText(const std::vector<EndObstacle>& obstacles) {
    std::vector<EndObstacle> named = obstacles;
    std::erase_if(named, isSentence);
    std::vector<std::string> sentences;
    if (!named.empty() && !areAll(named, Kind::window))
        sentences.push_back(localized("Aspetto ancora: %@.", list(named)));
    else if (named.size() == 1)
        sentences.push_back(localized("Aspetto che si chiuda %@.", list(named)));
    else if (!named.empty())
        sentences.push_back(
            localized("Aspetto che si chiudano %lld app: %@.", named.size(), list(named)));
    for (const EndObstacle& obstacle : obstacles) {
        if (isSentence(obstacle) &&
            std::ranges::find(sentences, described(obstacle)) == sentences.end())
            sentences.push_back(described(obstacle));
    }
    return joined(sentences, " ");
}

std::string refusedText(const std::vector<EndObstacle>& obstacles) {
    if (areAll(obstacles, Kind::window))
        return obstacles.size() == 1 ? localized("%@ è rimasta aperta.", list(obstacles))
                                     : localized("%lld app sono rimaste aperte: %@.",
                                                 obstacles.size(), list(obstacles));
    const auto users = ofKind(obstacles, Kind::otherUser);
    if (!users.empty())
        return users.size() == 1
                   ? localized("%@ è ancora al lavoro su questo computer.", list(users))
                   : localized("Sono ancora al lavoro su questo computer: %@.", list(users));
    const auto sentence = std::ranges::find_if(obstacles, isSentence);
    return sentence == obstacles.end() ? localized("Non è ancora finito: %@.", list(obstacles))
                                       : described(*sentence);
}

} // namespace

std::string title(const EndState& state) {
    const Keys& keys = keysOf(state.request);
    switch (state.stage) {
    case Stage::waiting:
    case Stage::naming:
        return localized(keys.coming);
    case Stage::underWay:
        return localized(keys.underWay);
    case Stage::refused:
    case Stage::failed:
        return localized(keys.refused);
    case Stage::none:
        break;
    }
    return {};
}

std::string text(const EndState& state) {
    switch (state.stage) {
    case Stage::waiting:
        return waitingText(state.obstacles);
    case Stage::naming:
        return namingText(state);
    case Stage::refused:
        return refusedText(state.obstacles);
    case Stage::failed:
        return localized("Il sistema ha rifiutato o non ha risposto.");
    case Stage::underWay:
    case Stage::none:
        break;
    }
    return {};
}

std::string line(const EndState& state) {
    const std::string told = text(state);
    return told.empty() ? title(state) : title(state) + ". " + told;
}

std::string cancelTitle(LoginRequest request) { return localized(keysOf(request).cancel); }

std::string list(const std::vector<EndObstacle>& obstacles) {
    std::vector<std::string> told;
    for (const EndObstacle& obstacle : obstacles) {
        std::string one = described(obstacle);
        if (std::ranges::find(told, one) == told.end())
            told.push_back(std::move(one));
    }
    return joined(told);
}

std::string anyway(LoginRequest request) { return localized(keysOf(request).anyway); }

std::string anywayQuestion(LoginRequest request) { return localized(keysOf(request).question); }

std::string anywayText(const EndState& state) {
    return refusedText(state.obstacles) + ' ' + localized("Quello che non è salvato va perso.");
}

std::string unseen(bool canAsk) {
    return canAsk ? localized("Non vedo tutte le finestre di questa sessione, e non so se "
                              "qualcuno è al computer per confermare.")
                  : localized("Non vedo tutte le finestre di questa sessione, e nessun programma "
                              "può chiederti conferma.");
}

std::string outlook(EndOutlook outlook) {
    switch (outlook) {
    case EndOutlook::asks:
        return localized("Non vedo tutte le finestre di questa sessione: alla fine sarà il sistema "
                         "a chiederti conferma.");
    case EndOutlook::refused:
        return localized("Non vedo tutte le finestre di questa sessione: non potrò spegnere, "
                         "riavviare o uscire.");
    case EndOutlook::direct:
        break;
    }
    return {};
}

std::string shortOutlook(EndOutlook outlook) {
    switch (outlook) {
    case EndOutlook::asks:
        return localized("Non vedo tutte le finestre: chiederà il sistema");
    case EndOutlook::refused:
        return localized("Non vedo tutte le finestre: non potrò farlo");
    case EndOutlook::direct:
        break;
    }
    return {};
}

} // namespace velmorquit::EndTexts
