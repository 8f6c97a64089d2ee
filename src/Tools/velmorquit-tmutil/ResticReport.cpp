#include "ResticReport.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace velmorquit {

void ResticReport::hear(std::string_view line) {
    const auto bytes = QByteArray::fromRawData(line.data(), static_cast<qsizetype>(line.size()));
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    const QString type = object["message_type"].toString();
    if (type == "status") {
        // The total grows until everything was counted: a part of it says nothing before that.
        const auto total = object["total_bytes"].toInteger();
        const bool isCounted = object.contains("seconds_remaining") || total_ == total;
        total_ = total;
        if (total > 0 && (fraction_ || isCounted))
            fraction_ = std::max(fraction_.value_or(0), object["percent_done"].toDouble());
    } else if (type == "error" && object["during"].toString() == "archival") {
        ++unreadable_;
        unreadablePath_ = object["item"].toString().toStdString();
    } else if (type == "summary") {
        snapshot_ = object["snapshot_id"].toString().toStdString();
        files_ = object["files_new"].toInteger() + object["files_changed"].toInteger();
        added_ = static_cast<std::uint64_t>(object["data_added"].toInteger());
    }
}

} // namespace velmorquit
