#include "Linux/Program/QtStart.h"

#include "Linux/Log/JournalLog.h"
#include "Linux/Program/OwnProcess.h"
#include "Linux/Windows/Windowing.h"
#include "Texts/Shown.h"

#include <QGuiApplication>
#include <QSessionManager>

#include <cstdlib>

namespace velmorquit {

namespace {

QtMessageHandler usualHandler = nullptr;

/// When the display has gone, Qt exits on the spot with a line of its own. Nothing is lost by that:
/// preferences are in their file as soon as they change. Qt's other messages may contain names of
/// files and services that others have chosen.
void hear(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const bool isDisplayGone = message.startsWith(QLatin1String("The X11 connection broke"));
    if (isDisplayGone)
        JournalLog().write("Velmor Quit: senza server X11 non posso continuare, termino");
    else if (usualHandler && (type == QtFatalMsg || JournalLog::isRoomForLine()))
        usualHandler(type, context, QString::fromStdString(shownText(message.toStdString())));
}

/// The autostart entry starts the program; if the session restarted it too, it would start twice.
void neverRestart(const QGuiApplication& application) {
    const auto answer = [](QSessionManager& session) {
        session.setRestartHint(QSessionManager::RestartNever);
    };
    for (const auto request :
         {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest})
        QObject::connect(&application, request, &application, answer, Qt::DirectConnection);
}

} // namespace

// With few descriptors the X server's answer that passes one over may be lost, and Qt would wait
// for it forever.
QtStart::QtStart(const Windowing& windowing)
    : isPlatformChosen_(std::getenv("QT_QPA_PLATFORM") != nullptr),
      sharesNoPictures_(isShortOfDescriptors()) {
    if (!isPlatformChosen_)
        ::setenv("QT_QPA_PLATFORM", windowing.toolkitPlatform(), 1);
    if (sharesNoPictures_)
        ::setenv("QT_XCB_NO_MITSHM", "1", 1);
    usualHandler = qInstallMessageHandler(hear);
}

void QtStart::finish(QGuiApplication& application) const {
    if (sharesNoPictures_)
        ::unsetenv("QT_XCB_NO_MITSHM");
    if (!isPlatformChosen_)
        ::unsetenv("QT_QPA_PLATFORM");
    QGuiApplication::setApplicationName(QStringLiteral("velmorquit"));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.velmorquit.VelmorQuit"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    neverRestart(application);
}

} // namespace velmorquit
