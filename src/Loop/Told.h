#pragma once

#include "Loop/Handle.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace velmorquit {

/// An event that listeners hear of at once, in the order in which they were added. The owner should
/// keep it private, since only the owner may tell, and expose `hear`.
///
/// A callback may do anything: remove itself or others, who are then no longer called; add others,
/// who are called from the next time on; tell again; destroy this object.
template <class... What> class Told {
public:
    /// Calls `heard` every time, until the handle is reset.
    [[nodiscard]] Handle hear(std::function<void(const What&...)> heard) {
        const std::uint64_t id = ++list_->lastId;
        list_->byId.emplace(id, std::make_shared<const Heard>(std::move(heard)));
        return {list_, id};
    }

    void tell(const What&... what) const {
        const auto list = list_;
        const std::uint64_t last = list->lastId;
        for (auto next = list->byId.begin(); next != list->byId.end() && next->first <= last;) {
            const std::uint64_t id = next->first;
            // Keeps the callback alive during the call, which may remove it.
            const auto heard = next->second;
            (*heard)(what...);
            next = list->byId.upper_bound(id);
        }
    }

private:
    using Heard = std::function<void(const What&...)>;

    struct List final : Handle::Source {
        void cancel(std::uint64_t id) noexcept override { byId.erase(id); }

        std::map<std::uint64_t, std::shared_ptr<const Heard>> byId;
        std::uint64_t lastId = 0;
    };

    std::shared_ptr<List> list_ = std::make_shared<List>();
};

} // namespace velmorquit
