#pragma once

namespace velmorquit {

class Application;
class Formats;
class Kernel;
class MainLoop;
class Preferences;
class RemoteCommands;
class SystemLog;
class Workspace;

/// All that the program asks of a desktop. Whoever makes it outlives whoever is handed it.
struct Desktop {
    MainLoop& loop;
    Preferences& preferences;
    Workspace& workspace;
    Kernel& kernel;
    SystemLog& log;
    RemoteCommands& remote;
    Application& application;
    const Formats& formats;
};

} // namespace velmorquit
