#include "Linux/Session/DesktopEndNotice.h"

#include "Texts/Localized.h"

namespace velmorquit {

namespace {

/// Keys of the string table.
struct Titles {
    const char* waiting;
    const char* failed;
};

Titles titlesOf(LoginRequest request) {
    switch (request) {
    case LoginRequest::shutDown:
        return {textKey("Sto per spegnere il computer"), textKey("Il computer non è stato spento")};
    case LoginRequest::restart:
        return {textKey("Sto per riavviare il computer"),
                textKey("Il computer non è stato riavviato")};
    case LoginRequest::logOut:
        break;
    }
    return {textKey("Sto per chiudere la sessione"), textKey("La sessione non è stata chiusa")};
}

std::string listed(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + name;
    return list;
}

} // namespace

DesktopEndNotice::DesktopEndNotice(Notice& notice) : notice_(notice) {
    notice_.onButton = [this](const std::string&) {
        if (onCancel)
            onCancel();
    };
}

DesktopEndNotice::~DesktopEndNotice() { notice_.onButton = nullptr; }

void DesktopEndNotice::showWaiting(LoginRequest request, const std::vector<std::string>& names) {
    notice_.show({.title = localized(titlesOf(request).waiting),
                  .text = names.size() == 1 ? localized("Aspetto che si chiuda %@.", listed(names))
                                            : localized("Aspetto che si chiudano %lld app: %@.",
                                                        names.size(), listed(names)),
                  .buttons = {{"cancel", localized("Annulla")}},
                  .stays = true});
}

void DesktopEndNotice::showGivenUp(LoginRequest request, const std::vector<std::string>& names) {
    notice_.show({.title = localized(titlesOf(request).failed),
                  .text = names.size() == 1 ? localized("%@ è rimasta aperta.", listed(names))
                                            : localized("%lld app sono rimaste aperte: %@.",
                                                        names.size(), listed(names))});
}

void DesktopEndNotice::showFailure(LoginRequest request) {
    notice_.show({.title = localized(titlesOf(request).failed),
                  .text = localized("Il sistema ha rifiutato o non ha risposto.")});
}

void DesktopEndNotice::withdraw() { notice_.withdraw(); }

} // namespace velmorquit
