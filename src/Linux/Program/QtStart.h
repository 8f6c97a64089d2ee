#pragma once

class QGuiApplication;

namespace velmorquit {

class Windowing;

/// Prepares the making of the toolkit's application object, and clears up after it.
class QtStart {
public:
    /// To be made before that object: chooses the toolkit's platform, unless the user has, and puts
    /// what Qt says into the log.
    explicit QtStart(const Windowing& windowing);
    QtStart(const QtStart&) = delete;
    QtStart& operator=(const QtStart&) = delete;

    /// To be called with it: gives it its names, and leaves the environment as it was for what is
    /// started from here, which chooses for itself.
    void finish(QGuiApplication& application) const;

private:
    bool isPlatformChosen_;
    bool sharesNoPictures_;
};

} // namespace velmorquit
