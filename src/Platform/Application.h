#pragma once

namespace velmorquit {

/// This program as the system sees it.
class Application {
public:
    virtual ~Application() = default;

    /// Ends the program in a later turn of the loop.
    virtual void terminate() = 0;
};

} // namespace velmorquit
