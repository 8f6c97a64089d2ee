#include "Services/SessionEnd/EndLog.h"

#include "Texts/Shown.h"

namespace velmorquit::EndLog {

std::string name(LoginRequest request) {
    switch (request) {
    case LoginRequest::shutDown:
        return "spegnimento";
    case LoginRequest::restart:
        return "riavvio";
    case LoginRequest::logOut:
        break;
    }
    return "chiusura della sessione";
}

std::string text(const std::vector<EndObstacle>& obstacles) {
    using Kind = EndObstacle::Kind;
    std::string list;
    for (const EndObstacle& obstacle : obstacles) {
        list += list.empty() ? "" : ", ";
        if (obstacle.kind == Kind::secondSession)
            list += "un'altra sessione dell'utente";
        else if (obstacle.kind == Kind::slept)
            list += "il computer è stato in stop";
        else if (obstacle.kind == Kind::unseen)
            list += "non tutte le finestre si vedono";
        else if (obstacle.kind == Kind::unknown)
            list += "il registro delle sessioni non risponde";
        else
            list +=
                shownName(obstacle.name) + (obstacle.kind == Kind::work ? " (lavora ancora)" : "");
    }
    return list;
}

} // namespace velmorquit::EndLog
