#pragma once

namespace velmorquit {

class EndService;
class InputActivity;
class MainLoop;
class Processes;
class SessionRegistry;
class SleepHold;
class SystemLog;
class Windows;
class Workspace;

/// Everything that must be known and asked before a session may end. The members must outlive every
/// user of it.
struct SessionPorts {
    MainLoop& loop;
    SystemLog& log;
    Workspace& workspace;
    Windows& windows;
    const Processes& processes;
    SessionRegistry& registry;
    InputActivity& input;
    SleepHold& sleepHold;
    EndService& service;
};

} // namespace velmorquit
