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

/// The sources of a window system; null where it lacks one.
struct WindowSources {
    ToplevelSource* toplevels = nullptr; ///< the windows of all programs
    WindowSystem* own = nullptr;         ///< the program's own windows, and presses outside them
    EmbeddingTray* tray = nullptr;       ///< the place for icons that are windows
    SettingsManager* settings = nullptr; ///< how the desktop should look
    IdleSource* idle = nullptr;          ///< how long there has been no input
};

/// The session's window system, with this program as its client.
class Windowing {
public:
    /// Connects to the session's window system. Null, with a line in the log, without one in which
    /// the program can show its windows; all supported ones have the sources `toplevels` and
    /// `own`.
    static std::unique_ptr<Windowing> choose(SystemLog& log);

    virtual ~Windowing() = default;

    /// The toolkit's name for it.
    [[nodiscard]] virtual const char* toolkitPlatform() const = 0;

    /// Creates the sources, once, on a thread with an event loop. They end with this object; the
    /// references must outlive it.
    virtual WindowSources begin(MainLoop& loop, SystemLog& log) = 0;
};

} // namespace velmorquit
