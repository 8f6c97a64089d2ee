#include "Linux/Input/DesktopInput.h"

#include "Linux/Bus/BusCall.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

namespace {

QDBusMessage questionTo(const QString& service, const QString& path, const QString& interface,
                        const QString& method) {
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setAutoStartService(false);
    return message;
}

QDBusMessage questionToMutter() {
    return questionTo("org.gnome.Mutter.IdleMonitor", "/org/gnome/Mutter/IdleMonitor/Core",
                      "org.gnome.Mutter.IdleMonitor", "GetIdletime");
}

QDBusMessage questionToPlasma() {
    return questionTo("org.kde.screensaver", "/ScreenSaver", "org.freedesktop.ScreenSaver",
                      "GetSessionIdleTime");
}

/// Both answer in milliseconds; only Mutter, whose number is wider, means a zero as zero.
std::optional<Duration> durationIn(const QDBusMessage& answer) {
    const QString signature = answer.signature();
    if (answer.type() != QDBusMessage::ReplyMessage || (signature != "t" && signature != "u"))
        return std::nullopt;
    const qulonglong number = answer.arguments().value(0).toULongLong();
    // A larger number is an error, and would overflow.
    constexpr std::chrono::milliseconds most = std::chrono::hours(24 * 365);
    if (number > static_cast<qulonglong>(most.count()) || (number == 0 && signature == "u"))
        return std::nullopt;
    return std::chrono::milliseconds(number);
}

} // namespace

struct DesktopInput::Question {
    std::function<void(std::optional<Duration>)> told;
    std::optional<Duration> ofServer;
    std::optional<Duration> ofCompositor;
    int awaited = 0;
    Handle finishing;
    BusCalls calls;
};

DesktopInput::DesktopInput(MainLoop& loop, QDBusConnection bus, IdleSource* idle, Server server)
    : loop_(loop), bus_(std::move(bus)), idle_(idle), server_(server),
      questions_(std::make_shared<Questions>()) {}

void DesktopInput::Questions::cancel(std::uint64_t id) noexcept { byId.erase(id); }

Handle DesktopInput::sinceLastInput(std::function<void(std::optional<Duration>)> told) {
    const std::uint64_t id = ++questions_->lastId;
    auto question = std::make_unique<Question>();
    question->told = std::move(told);
    question->ofServer = askServer();
    const bool isEnough = question->ofServer && server_ == Server::whole;
    questions_->byId.emplace(id, std::move(question));
    if (isEnough || !bus_.isConnected()) {
        finishIn(Duration::zero(), id);
    } else {
        finishIn(patience, id);
        askCompositor(id, questionToMutter());
        askCompositor(id, questionToPlasma());
    }
    return {questions_, id};
}

std::optional<Duration> DesktopInput::askServer() {
    return idle_ ? idle_->sinceInput() : std::nullopt;
}

void DesktopInput::askCompositor(std::uint64_t id, const QDBusMessage& message) {
    Question& question = *questions_->byId.at(id);
    ++question.awaited;
    question.calls.send(bus_, message,
                        [this, id](const QDBusMessage& answer) { hear(id, answer); });
}

void DesktopInput::hear(std::uint64_t id, const QDBusMessage& answer) {
    Question& question = *questions_->byId.at(id);
    if (const auto duration = durationIn(answer))
        question.ofCompositor = std::min(*duration, question.ofCompositor.value_or(*duration));
    if (--question.awaited == 0)
        finishIn(Duration::zero(), id);
}

void DesktopInput::finishIn(Duration wait, std::uint64_t id) {
    questions_->byId.at(id)->finishing = loop_.after(wait, [this, id] {
        const auto question = std::move(questions_->byId.extract(id).mapped());
        std::optional<Duration> since = question->ofServer;
        if (question->ofCompositor)
            since = std::min(*question->ofCompositor, since.value_or(*question->ofCompositor));
        question->told(since);
    });
}

} // namespace velmorquit
