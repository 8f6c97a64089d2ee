#include "Sentences.h"

#include "Table.h"
#include "Texts/Localized.h"

#include <QJsonArray>
#include <QStringList>

#include <algorithm>

namespace velmorquit {

namespace {

std::string nameOf(const QJsonValue& application) {
    return application["name"].toString().toStdString();
}

std::string names(const QJsonArray& applications) {
    QStringList list;
    for (const auto& application : applications)
        list << application.toObject()["name"].toString();
    return list.join(", ").toStdString();
}

std::string phaseText(const QJsonObject& state, const Formats& formats) {
    const QString phase = state["phase"].toString();
    if (phase == "quitting") {
        const int total = state["total"].toInt();
        return total == 1 ? localized("Chiedo a 1 app di chiudersi")
                          : localized("Chiedo a %lld app di chiudersi", total);
    }
    if (phase == "waiting")
        return localized("Aspetto una risposta");
    if (phase == "done") {
        const int closed = state["closed"].toInt();
        if (closed == 0)
            return localized("Finito: nessuna app chiusa");
        const auto freed = static_cast<std::uint64_t>(state["freed"].toInteger());
        return closed == 1 ? localized("Finito: 1 app chiusa, %@ liberati", formats.bytes(freed))
                           : localized("Finito: %lld app chiuse, %@ liberati", closed,
                                       formats.bytes(freed));
    }
    return localized("Pronta");
}

bool holds(const QJsonArray& applications, const QJsonObject& wanted) {
    return std::ranges::any_of(applications, [&](const auto& application) {
        return application.toObject()["process"] == wanted["process"];
    });
}

Table::Row rowFor(const QJsonObject& application, const QJsonArray& stubborn,
                  const Formats& formats) {
    std::string remark;
    if (holds(stubborn, application))
        remark = localized("ancora aperta");
    else if (application["excluded"].toBool())
        remark = localized("esclusa");
    const QString id = application["id"].toString();
    const auto memory = static_cast<std::uint64_t>(application["memory"].toInteger());
    return {nameOf(application), formats.bytes(memory),
            std::to_string(application["process"].toInteger()),
            id.isEmpty() ? "—" : id.toStdString(), remark};
}

/// The short name of what follows a run, empty for "nothing".
std::string labelOf(const QString& then) {
    if (then == "shutDown")
        return localized("Spegni");
    if (then == "restart")
        return localized("Riavvia");
    if (then == "logOut")
        return localized("Esci utente");
    return {};
}

} // namespace

std::string statusText(const QJsonObject& status, const Formats& formats) {
    const QJsonArray stubborn = status["stubborn"].toArray();
    QJsonArray applications = status["applications"].toArray();
    // One that lives on without windows is no open application any more, and yet it is waited for.
    for (const auto& application : stubborn) {
        if (!holds(applications, application.toObject()))
            applications.append(application);
    }
    const std::string phase = phaseText(status, formats) + '\n';
    if (applications.isEmpty())
        return phase + localized("Nessuna app aperta") + '\n';
    Table table({Table::Align::left, Table::Align::right, Table::Align::right, Table::Align::left,
                 Table::Align::left});
    for (const auto& application : applications)
        table.add(rowFor(application.toObject(), stubborn, formats));
    const auto count = applications.size();
    return phase +
           (count == 1 ? localized("1 app aperta:") : localized("%lld app aperte:", count)) + '\n' +
           table.text();
}

std::string changeText(const QJsonObject& change, const Formats& formats) {
    const QString kind = change["change"].toString();
    const std::string name = nameOf(change["application"]);
    const std::string key = change["key"].toString().toStdString();
    if (kind == "phase")
        return phaseText(change, formats);
    if (kind == "stubborn") {
        const QJsonArray applications = change["applications"].toArray();
        if (applications.isEmpty())
            return {};
        return applications.size() == 1 ? localized("Ancora aperta: %@", names(applications))
                                        : localized("Ancora aperte: %@", names(applications));
    }
    if (kind == "opened")
        return localized("Aperta: %@", name);
    if (kind == "closed")
        return localized("Chiusa: %@", name);
    if (kind == "windowless")
        return localized("Senza finestre: %@", name);
    if (kind == "excluded")
        return localized("Esclusa: %@", key);
    if (kind == "included")
        return localized("Non più esclusa: %@", key);
    return {};
}

std::string confirmationQuestion(qsizetype count, const QString& then) {
    if (then == "shutDown") {
        return count == 1 ? localized("Chiudo 1 app e poi spengo? [s/N]")
                          : localized("Chiudo %lld app e poi spengo? [s/N]", count);
    }
    if (then == "restart") {
        return count == 1 ? localized("Chiudo 1 app e poi riavvio? [s/N]")
                          : localized("Chiudo %lld app e poi riavvio? [s/N]", count);
    }
    return count == 1 ? localized("Chiudo 1 app e poi chiudo la sessione? [s/N]")
                      : localized("Chiudo %lld app e poi chiudo la sessione? [s/N]", count);
}

std::string nothingFollowedText(const QString& then) {
    const std::string label = labelOf(then);
    if (label.empty())
        return {};
    return localized("Non faccio altro: «%@» non è ancora disponibile", label) + '\n';
}

} // namespace velmorquit
