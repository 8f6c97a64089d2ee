#pragma once

#include "Loop/MainLoop.h"

#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace velmorquit {

/// Callbacks that are kept for as long as the handles given for them are held. A callback may end
/// its own subscription, and that of others, or subscribe further ones; those are told from the
/// next time on.
class Subscribers {
public:
    [[nodiscard]] Handle add(std::function<void()> told) {
        const std::uint64_t id = ++list_->lastId;
        list_->byId.emplace(id, std::move(told));
        return {list_, id};
    }

    /// Like `add`, and calls it for a first time in a later turn.
    [[nodiscard]] Handle addAndTellFirst(MainLoop& loop, std::function<void()> told) {
        Handle handle = add(std::move(told));
        loop.post([list = std::weak_ptr(list_), id = list_->lastId] {
            if (const auto alive = list.lock())
                alive->tell(id);
        });
        return handle;
    }

    /// Calls all of them now.
    void tell() {
        const auto alive = list_;
        alive->tellAll();
    }

    /// Calls all of them in a later turn, once however often this is called until then.
    void tellLater(MainLoop& loop) {
        if (std::exchange(list_->isTelling, true))
            return;
        loop.post([list = std::weak_ptr(list_)] {
            if (const auto alive = list.lock()) {
                alive->isTelling = false;
                alive->tellAll();
            }
        });
    }

private:
    struct List final : Handle::Source {
        void cancel(std::uint64_t id) noexcept override { byId.erase(id); }

        void tellAll() {
            const std::uint64_t last = lastId;
            for (auto next = byId.begin(); next != byId.end() && next->first <= last;) {
                const std::uint64_t id = next->first;
                tell(id);
                next = byId.upper_bound(id);
            }
        }
        // A copy is called, since a subscriber may end its own subscription while it is told.
        void tell(std::uint64_t id) {
            const auto found = byId.find(id);
            if (found == byId.end())
                return;
            const auto told = found->second;
            told();
        }

        std::map<std::uint64_t, std::function<void()>> byId;
        std::uint64_t lastId = 0;
        bool isTelling = false;
    };

    std::shared_ptr<List> list_ = std::make_shared<List>();
};

} // namespace velmorquit
