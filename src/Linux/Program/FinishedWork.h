#pragma once

#include <QThreadPool>

#include <cstdlib>

namespace velmorquit {

/// Work on other threads uses what is made before this: it is done when this goes. A disk that does
/// not let go may take minutes, and nobody waits for it any more: the program ends on the spot
/// then, as all that must outlive it is on disk already.
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
