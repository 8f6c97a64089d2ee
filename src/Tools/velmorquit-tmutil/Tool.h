#pragma once

/// A backup tool over restic, with the calls that the engine makes.
namespace velmorquit::tmutil {

/// Carries out the command line, and returns the exit status.
int run(int argc, char** argv);

} // namespace velmorquit::tmutil
