#pragma once

class QGuiApplication;

namespace velmorquit {

class Windowing;

/// Prepares the creation of the toolkit's application object, and cleans up afterwards.
class QtStart {
public:
    /// To be created before that object: chooses the toolkit's platform, unless the user has, and
    /// sends Qt's messages to the log.
    explicit QtStart(const Windowing& windowing);
    QtStart(const QtStart&) = delete;
    QtStart& operator=(const QtStart&) = delete;

    /// To be called with that object: sets its names, and restores the environment for programs
    /// started from here, which choose their own platform.
    void finish(QGuiApplication& application) const;

private:
    bool isPlatformChosen_;
    bool sharesNoPictures_;
};

} // namespace velmorquit
