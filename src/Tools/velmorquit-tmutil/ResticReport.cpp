#include "ResticReport.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace velmorquit::tmutil {

namespace {

/// More than any number of files, and small enough for sums.
constexpr qint64 most = qint64{1} << 53;

qint64 countAt(const QJsonObject& object, const char* key) {
    return std::clamp<qint64>(object[key].toInteger(), 0, most);
}

} // namespace

void ResticReport::hear(std::string_view line) {
    const auto bytes = QByteArray::fromRawData(line.data(), static_cast<qsizetype>(line.size()));
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    const QString type = object["message_type"].toString();
    if (type == "status") {
        // The total grows during counting, when a fraction of it means nothing.
        const auto total = object["total_bytes"].toInteger();
        const bool isCounted = object.contains("seconds_remaining") || total_ == total;
        total_ = total;
        if (total > 0 && (fraction_ || isCounted))
            fraction_ = std::clamp(object["percent_done"].toDouble(), fraction_.value_or(0), 1.0);
    } else if (type == "error" && object["during"].toString() == "archival") {
        ++unreadable_;
        unreadablePath_ = object["item"].toString().toStdString();
    } else if (type == "summary") {
        snapshot_ = object["snapshot_id"].toString().toStdString();
        files_ = countAt(object, "files_new") + countAt(object, "files_changed");
        added_ = static_cast<std::uint64_t>(countAt(object, "data_added"));
    }
}

} // namespace velmorquit::tmutil
