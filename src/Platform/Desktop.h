#pragma once

#include "Platform/BackupTool.h"

namespace velmorquit {

class Application;
class ChildProcesses;
class Files;
class Formats;
class Kernel;
class LoginWindow;
class MainLoop;
class Preferences;
class RemoteCommands;
class SleepHold;
class SystemLog;
class Volumes;
class Workspace;

/// All that the program needs from a desktop. The members must outlive every user of it.
struct Desktop {
    MainLoop& loop;
    Preferences& preferences;
    Workspace& workspace;
    Kernel& kernel;
    SystemLog& log;
    RemoteCommands& remote;
    Application& application;
    const Formats& formats;
    Volumes& volumes;
    LoginWindow& loginWindow;
    SleepHold& sleepHold;
    ChildProcesses& children;
    const Files& files;
    BackupTool backupTool;
};

} // namespace velmorquit
