#include "Sentences.h"

#include <QJsonArray>
#include <QLocale>
#include <QMap>
#include <QStringList>

#include <algorithm>

namespace velmorquit {

namespace {

/// At most one decimal for megabytes and two for gigabytes, none that is zero.
QString bytesText(double bytes) {
    constexpr double mebibyte = 1 << 20;
    constexpr double gibibyte = 1 << 30;
    const bool isLarge = bytes >= gibibyte;
    const double figure = bytes / (isLarge ? gibibyte : mebibyte);
    const QLocale locale;
    QString number = locale.toString(figure, 'f', isLarge ? 2 : 1);
    const QString point = locale.decimalPoint();
    while (number.contains(point) && (number.endsWith('0') || number.endsWith(point)))
        number.chop(1);
    return number + (isLarge ? " GB" : " MB");
}

QString names(const QJsonArray& applications) {
    QStringList list;
    for (const auto& application : applications)
        list << application.toObject()["name"].toString();
    return list.join(", ");
}

QString phaseText(const QJsonObject& state) {
    const QString phase = state["phase"].toString();
    if (phase == "quitting") {
        const int total = state["total"].toInt();
        return total == 1 ? QStringLiteral("Chiedo a 1 app di chiudersi")
                          : QStringLiteral("Chiedo a %1 app di chiudersi").arg(total);
    }
    if (phase == "waiting")
        return QStringLiteral("Aspetto una risposta");
    if (phase == "done") {
        const int closed = state["closed"].toInt();
        const QString freed = bytesText(state["freed"].toDouble());
        if (closed == 0)
            return QStringLiteral("Finito: nessuna app chiusa");
        return closed == 1
                   ? QStringLiteral("Finito: 1 app chiusa, %1 liberati").arg(freed)
                   : QStringLiteral("Finito: %1 app chiuse, %2 liberati").arg(closed).arg(freed);
    }
    return QStringLiteral("Pronta");
}

bool holds(const QJsonArray& applications, const QJsonObject& wanted) {
    return std::ranges::any_of(applications, [&](const auto& application) {
        return application.toObject()["process"] == wanted["process"];
    });
}

QString rowText(const QJsonObject& application, const QJsonArray& stubborn) {
    QString remark;
    if (holds(stubborn, application))
        remark = QStringLiteral("ancora aperta");
    else if (application["excluded"].toBool())
        remark = QStringLiteral("esclusa");
    const QString id = application["id"].toString();
    return QStringLiteral("  %1 %2 %3  %4  %5\n")
        .arg(application["name"].toString(), -22)
        .arg(bytesText(application["memory"].toDouble()), 10)
        .arg(application["process"].toInteger(), 8)
        .arg(id.isEmpty() ? QStringLiteral("—") : id, -28)
        .arg(remark);
}

QString labelOf(const QString& then) {
    static const QMap<QString, QString> labels{
        {"shutDown", "Spegni"}, {"restart", "Riavvia"}, {"logOut", "Esci utente"}};
    return labels.value(then);
}

} // namespace

QString statusText(const QJsonObject& status) {
    const QJsonArray stubborn = status["stubborn"].toArray();
    QJsonArray applications = status["applications"].toArray();
    // One that lives on without windows is no open application any more, and yet it is waited for.
    for (const auto& application : stubborn) {
        if (!holds(applications, application.toObject()))
            applications.append(application);
    }
    QString text = phaseText(status) + ".\n";
    if (applications.isEmpty())
        return text + QStringLiteral("Nessuna app aperta.\n");
    text += applications.size() == 1 ? QStringLiteral("1 app aperta:\n")
                                     : QStringLiteral("%1 app aperte:\n").arg(applications.size());
    for (const auto& application : applications)
        text += rowText(application.toObject(), stubborn);
    return text;
}

QString changeText(const QJsonObject& change) {
    const QString kind = change["change"].toString();
    if (kind == "phase")
        return phaseText(change);
    if (kind == "stubborn") {
        const QJsonArray applications = change["applications"].toArray();
        if (applications.isEmpty())
            return {};
        return (applications.size() == 1 ? QStringLiteral("Ancora aperta: %1")
                                         : QStringLiteral("Ancora aperte: %1"))
            .arg(names(applications));
    }
    if (kind == "opened")
        return QStringLiteral("Aperta: %1").arg(change["application"]["name"].toString());
    if (kind == "closed")
        return QStringLiteral("Chiusa: %1").arg(change["application"]["name"].toString());
    if (kind == "windowless")
        return QStringLiteral("Senza finestre: %1").arg(change["application"]["name"].toString());
    if (kind == "excluded")
        return QStringLiteral("Esclusa: %1").arg(change["key"].toString());
    if (kind == "included")
        return QStringLiteral("Non più esclusa: %1").arg(change["key"].toString());
    return {};
}

QString confirmationQuestion(qsizetype count, const QString& then) {
    return QStringLiteral("Chiudo %1 app e poi %2?").arg(count).arg(labelOf(then).toLower());
}

QString nothingFollowedText(const QString& then) {
    if (then == "nothing")
        return {};
    return QStringLiteral("Non faccio altro: «%1» non è ancora disponibile\n").arg(labelOf(then));
}

} // namespace velmorquit
