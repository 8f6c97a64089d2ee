#include "ResticAnswers.h"

#include "Platform/Dates.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace velmorquit::tmutil {

namespace {

/// A time such as "2026-11-23T03:52:56.946434519Z", of which Qt understands only milliseconds.
QDateTime dateTime(QString text) {
    const auto point = text.indexOf('.');
    if (point >= 0) {
        auto end = point + 1;
        while (end < text.size() && text[end].isDigit())
            ++end;
        text.remove(point + 4, std::max<qsizetype>(end - point - 4, 0));
    }
    return QDateTime::fromString(text, Qt::ISODateWithMs);
}

WallTime wholeSecond(const QDateTime& date) {
    const std::chrono::milliseconds since(date.isValid() ? date.toMSecsSinceEpoch() : 0);
    return dateAt(std::chrono::sys_seconds(std::chrono::ceil<std::chrono::seconds>(since)));
}

Snapshot snapshotOf(const QJsonObject& object) {
    Snapshot snapshot{.id = object["id"].toString().toStdString(),
                      .date = wholeSecond(dateTime(object["time"].toString())),
                      .host = object["hostname"].toString().toStdString(),
                      .paths = {},
                      .isOurs = object["tags"].toArray().contains(QString(ResticAnswers::tag))};
    for (const auto& path : object["paths"].toArray())
        snapshot.paths.push_back(path.toString().toStdString());
    return snapshot;
}

} // namespace

std::vector<Snapshot> ResticAnswers::snapshots(const std::string& output) {
    std::vector<Snapshot> snapshots;
    const auto list = QJsonDocument::fromJson(QByteArray::fromStdString(output)).array();
    for (const auto& element : list)
        snapshots.push_back(snapshotOf(element.toObject()));
    std::ranges::sort(snapshots, {}, &Snapshot::date);
    return snapshots;
}

// Only the first line, since restic prints other text below it.
std::vector<std::string> ResticAnswers::removed(const std::string& output) {
    std::vector<std::string> ids;
    const auto line = QByteArray::fromStdString(output.substr(0, output.find('\n')));
    for (const auto& group : QJsonDocument::fromJson(line).array()) {
        for (const auto& snapshot : group.toObject()["remove"].toArray())
            ids.push_back(snapshot.toObject()["id"].toString().toStdString());
    }
    return ids;
}

std::string ResticAnswers::lastLine(const std::string& errors) {
    std::string found;
    for (const QString& line : QString::fromStdString(errors).split('\n')) {
        const QString text = line.trimmed();
        const bool isAdvice = text.startsWith('{') || text.startsWith("the `unlock` command") ||
                              text.startsWith("storage ID");
        if (!text.isEmpty() && !isAdvice)
            found = text.toStdString();
    }
    return found;
}

std::int64_t ResticAnswers::seconds(const QString& time) {
    const QDateTime read = dateTime(time);
    return read.isValid() ? read.toSecsSinceEpoch() : 0;
}

} // namespace velmorquit::tmutil
