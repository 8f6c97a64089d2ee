#include "Sentences.h"
#include "FollowedRun.h"
#include "Fuzz/Fuzz.h"
#include "Language/LocaleFormats.h"

#include <QJsonDocument>

#include <iostream>
#include <sstream>

using namespace velmorquit;

namespace {

void requireText(const std::string& text, std::size_t size) {
    fuzz::require(fuzz::isUtf8(text), "what is printed is a text");
    // The columns of a table are as wide as their widest cell.
    fuzz::require(text.size() <= (size + 64) * (size + 64), "no longer than what it is about");
}

void follow(const QJsonArray& changes, const Formats& formats, const QString& then) {
    CommandLine line;
    line.then = then;
    FollowedRun run(line, formats);
    run.begin(changes);
    for (const auto& change : changes) {
        if (run.hear(change.toObject()) || run.hearEnding(change.toObject()["ending"]))
            return;
    }
}

} // namespace

/// What the program, or whoever has its name on the bus, answers: an object, or an array of changes
/// that come one after the other.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const LocaleFormats formats(Language::italian, QLocale(QLocale::Italian));
    const auto document = QJsonDocument::fromJson(
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    const QJsonObject object = document.object();
    requireText(statusText(object, formats), size);
    requireText(actionsText(object), size);
    requireText(changeText(object, formats), size);
    static_cast<void>(confirmationQuestion(object["count"].toInt(), object["then"].toString()));
    std::ostringstream printed;
    auto* const terminal = std::cout.rdbuf(printed.rdbuf());
    for (const char* then : {"nothing", "shutDown"})
        follow(document.array(), formats, then);
    std::cout.rdbuf(terminal);
    requireText(printed.str(), size);
    return 0;
}
