#include "CommandLine.h"
#include "Language/InstalledLanguage.h"
#include "Pictures.h"
#include "Sheet.h"
#include "Stage.h"
#include "StageScreens.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPalette>
#include <QStyleFactory>

#include <algorithm>
#include <iostream>
#include <variant>
#include <vector>

namespace velmorquit {
namespace {

enum ExitStatus { success = 0, failure = 1, usageError = 2 };

/// Pictures must not depend on the user or the place.
void forgetTheUser() {
    for (const char* name :
         {"LANGUAGE", "QT_SCALE_FACTOR", "QT_FONT_DPI", "QT_STYLE_OVERRIDE", "QT_QPA_PLATFORMTHEME",
          "QT_SCREEN_SCALE_FACTORS", "QT_USE_PHYSICAL_DPI"})
        qunsetenv(name);
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "UTC");
}

QtMessageHandler usualHandler = nullptr;

/// The invisible platform complains whenever a window is raised.
void hear(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (!message.startsWith(QLatin1String("This plugin does not support")))
        usualHandler(type, context, message);
}

void dress() {
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QColor ground(43, 44, 51);
    QPalette palette(ground);
    palette.setColor(QPalette::Base, ground);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(128, 129, 135));
    // The colour of the edge that the style gives disabled texts.
    palette.setColor(QPalette::Disabled, QPalette::Light, ground);
    palette.setColor(QPalette::Highlight, QColor(107, 69, 194));
    QApplication::setPalette(palette);
    QFont font(QStringLiteral("Inter"));
    font.setPointSize(10);
    QApplication::setFont(font);
    QApplication::setCursorFlashTime(0);
}

QImage draw(const Picture& picture, Language language, int scale) {
    const InstalledLanguage installed(language);
    Stage stage({.language = language,
                 .formats = installed.formats(),
                 .screen = picture.screen,
                 .scale = scale});
    picture.stage(stage);
    return stage.photograph();
}

bool write(const QImage& image, const QString& file) {
    const bool isWritten = QDir().mkpath(QFileInfo(file).path()) && image.save(file, "PNG");
    if (!isWritten)
        std::cerr << "velmorquit-gallery: can't write " << file.toStdString() << '\n';
    return isWritten;
}

/// The pictures with those names; a text names one that doesn't exist.
std::variant<std::vector<Picture>, std::string> chosen(const QStringList& names) {
    if (names.isEmpty())
        return pictures();
    std::vector<Picture> found;
    for (const QString& name : names) {
        const auto picture = std::ranges::find(pictures(), name.toStdString(), &Picture::name);
        if (picture == pictures().end())
            return "no picture is called " + name.toStdString();
        found.push_back(*picture);
    }
    return found;
}

QString fileFor(const QString& folder, const Picture& picture, Language language, int scale) {
    return QStringLiteral("%1/%2/%3%4.png")
        .arg(folder, QLatin1String(language == Language::italian ? "it" : "en"),
             QString::fromStdString(picture.name), QLatin1String(scale == 1 ? "" : "@2x"));
}

ExitStatus drawSheet(const CommandLine& line, const std::vector<Picture>& list) {
    const int scale = line.scales.front();
    Sheet sheet(scale);
    for (const Picture& picture : list)
        sheet.add(QString::fromStdString(picture.name),
                  draw(picture, line.languages.front(), scale));
    return write(sheet.drawn(), line.sheet) ? success : failure;
}

ExitStatus drawAll(const CommandLine& line, const std::vector<Picture>& list) {
    for (const Picture& picture : list) {
        for (const Language language : line.languages) {
            for (const int scale : line.scales) {
                const QString file = fileFor(line.folder, picture, language, scale);
                if (!write(draw(picture, language, scale), file))
                    return failure;
            }
        }
    }
    return success;
}

ExitStatus refuse(const std::string& why) {
    std::cerr << "velmorquit-gallery: " << why << "\n\n" << usage();
    return usageError;
}

ExitStatus run() {
    const auto parsed = parseCommandLine(QCoreApplication::arguments().mid(1));
    if (const auto* wrong = std::get_if<std::string>(&parsed))
        return refuse(*wrong);
    const auto& line = std::get<CommandLine>(parsed);
    if (line.wantsHelp) {
        std::cout << usage();
        return success;
    }
    const auto list = chosen(line.names);
    if (const auto* wrong = std::get_if<std::string>(&list))
        return refuse(*wrong);
    const auto& wanted = std::get<std::vector<Picture>>(list);
    if (line.wantsList) {
        for (const Picture& picture : wanted)
            std::cout << picture.name << '\n';
        return success;
    }
    dress();
    return line.sheet.isEmpty() ? drawAll(line, wanted) : drawSheet(line, wanted);
}

} // namespace
} // namespace velmorquit

int main(int argc, char** argv) {
    velmorquit::forgetTheUser();
    velmorquit::StageScreens::prepare();
    velmorquit::usualHandler = qInstallMessageHandler(velmorquit::hear);
    const QApplication application(argc, argv);
    return velmorquit::run();
}
