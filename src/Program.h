#pragma once

namespace velmorquit {

class Formats;
class SystemLog;

/// Runs the program on the session's desktop until it is ended; returns its exit status.
int runProgram(int argc, char** argv, SystemLog& log, const Formats& formats);

} // namespace velmorquit
