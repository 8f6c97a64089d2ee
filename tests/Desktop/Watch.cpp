#include "Desktop/Watch.h"

#include "support/Waiting.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <stdexcept>

namespace velmorquit {

namespace {

QString nameOf(const QJsonValue& application) { return application.toObject()["name"].toString(); }

std::string described(const std::string& line) {
    const QJsonObject change = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
    const QString kind = change["change"].toString();
    QStringList words{kind};
    if (kind == "phase") {
        words << change["phase"].toString();
        if (change.contains("closed"))
            words << QString::number(change["closed"].toInt());
    } else if (kind == "stubborn") {
        QStringList names;
        for (const auto& application : change["applications"].toArray())
            names << nameOf(application);
        names.sort();
        words << (names.isEmpty() ? QStringLiteral("none") : names.join(", "));
    } else if (kind == "opened") {
        words << nameOf(change["application"]);
    } else if (kind == "closed" || kind == "windowless") {
        words = QStringList{"gone", nameOf(change["application"])};
    } else {
        words << change[kind == "event" ? "event" : "key"].toString();
    }
    return words.join(' ').toStdString();
}

} // namespace

// It says nothing when it has begun to listen: windows are opened until it tells of one.
Watch::Watch() : command_({VELMORCTL, "watch", "--json"}) {
    constexpr int attempts = 20;
    constexpr int milliseconds = 2000;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const Child probe({RUDE_CLIENT, "--class", "Probe"});
        if (waitUntil([this] { return hasHeard("opened Probe"); }, milliseconds)) {
            isSure_ = true;
            changes_.clear();
            times_.clear();
            return;
        }
    }
    throw std::runtime_error("velmorctl watch tells of nothing:\n" + command_.output());
}

const std::vector<std::string>& Watch::changes() {
    const std::string& output = command_.output();
    for (std::size_t end; (end = output.find('\n', read_)) != std::string::npos; read_ = end + 1) {
        const std::string change = described(output.substr(read_, end - read_));
        if (isSure_ && change.ends_with(" Probe"))
            continue;
        changes_.push_back(change);
        times_.push_back(Clock::now());
    }
    return changes_;
}

std::optional<Watch::Clock::time_point> Watch::timeOf(const std::string& change) {
    const auto found = std::ranges::find(changes(), change);
    if (found == changes_.end())
        return std::nullopt;
    return times_[static_cast<std::size_t>(found - changes_.begin())];
}

} // namespace velmorquit
