#pragma once

/// A backup tool over restic, by the calls that `tmutil` has elsewhere.
namespace velmorquit::tmutil {

/// Does what the words of the command line say, and returns the exit status.
int run(int argc, char** argv);

} // namespace velmorquit::tmutil
