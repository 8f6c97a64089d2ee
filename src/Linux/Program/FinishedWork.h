#pragma once

#include <QThreadPool>

#include <cstdlib>

namespace velmorquit {

/// Waits, when destroyed, for work on other threads, which may use anything declared before this. A
/// disk that doesn't respond may take minutes; nobody waits for that, so the program then exits on
/// the spot: everything that must survive is on disk already.
struct FinishedWork {
    FinishedWork() = default;
    FinishedWork(const FinishedWork&) = delete;
    FinishedWork& operator=(const FinishedWork&) = delete;
    ~FinishedWork() {
        constexpr int patience = 3000;
        if (!QThreadPool::globalInstance()->waitForDone(patience))
            std::_Exit(EXIT_SUCCESS);
    }
};

} // namespace velmorquit
