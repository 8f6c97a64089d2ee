#pragma once

#include "Loop/MainLoop.h"
#include "Loop/Told.h"

#include <functional>
#include <memory>
#include <utility>

namespace velmorquit {

/// Callbacks that hear of changes, at once or in a later turn of the loop. The rules of `Told` hold
/// here as well.
class Subscribers {
public:
    [[nodiscard]] Handle add(std::function<void()> told) {
        return list_->told.hear(std::move(told));
    }

    /// Like `add`, with a first call in a later turn.
    [[nodiscard]] Handle addAndTellFirst(MainLoop& loop, std::function<void()> told) {
        const auto shared = std::make_shared<const std::function<void()>>(std::move(told));
        loop.post([first = std::weak_ptr(shared)] {
            if (const auto alive = first.lock())
                (*alive)();
        });
        return add([shared] { (*shared)(); });
    }

    /// Calls all of them now.
    void tell() { list_->told.tell(); }

    /// Calls all of them in a later turn, only once for any number of calls of this until then.
    void tellLater(MainLoop& loop) {
        if (std::exchange(list_->isTelling, true))
            return;
        loop.post([list = std::weak_ptr(list_)] {
            if (const auto alive = list.lock()) {
                alive->isTelling = false;
                alive->told.tell();
            }
        });
    }

private:
    struct List {
        Told<> told;
        bool isTelling = false;
    };

    std::shared_ptr<List> list_ = std::make_shared<List>();
};

} // namespace velmorquit
