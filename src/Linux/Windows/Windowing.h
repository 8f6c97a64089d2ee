#pragma once

#include <memory>

namespace velmorquit {

class EmbeddingTray;
class IdleSource;
class MainLoop;
class SettingsManager;
class SystemLog;
class ToplevelSource;
class WindowSystem;

/// The sources that a window system has; null where it lacks one.
struct WindowSources {
    ToplevelSource* toplevels = nullptr; ///< the windows of all programs
    WindowSystem* own = nullptr;         ///< the program's own windows, and presses outside them
    EmbeddingTray* tray = nullptr;       ///< the place for icons that are windows
    SettingsManager* settings = nullptr; ///< how the desktop is to look
    IdleSource* idle = nullptr;          ///< since when nobody has touched anything
};

/// The window system of the session, which the program is a client of.
class Windowing {
public:
    /// Connects to the one that the session has. Null, with a line in the log, when there is none
    /// in which the program can show its windows: those that there are have the sources
    /// `toplevels` and `own`.
    static std::unique_ptr<Windowing> choose(SystemLog& log);

    virtual ~Windowing() = default;

    /// The toolkit's name for it.
    [[nodiscard]] virtual const char* toolkitPlatform() const = 0;

    /// Makes the sources, once, on a thread with an event loop. They end with this object; the
    /// references outlive it.
    virtual WindowSources begin(MainLoop& loop, SystemLog& log) = 0;
};

} // namespace velmorquit
