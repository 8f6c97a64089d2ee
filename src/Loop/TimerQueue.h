#pragma once

#include "Loop/Handle.h"
#include "Loop/Time.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace velmorquit {

/// The timers of a main loop in the order in which they fall due, independent of what drives it.
class TimerQueue {
public:
    [[nodiscard]] Handle add(Uptime due, std::function<void()> work) {
        return add(due, Duration::zero(), std::move(work));
    }

    [[nodiscard]] Handle addRepeating(Uptime armedAt, Duration interval,
                                      std::function<void()> work) {
        return add(armedAt + interval, interval, std::move(work));
    }

    /// When the next timer falls due, none without timers.
    [[nodiscard]] std::optional<Uptime> nextDue() const {
        if (timers_->byDue.empty())
            return std::nullopt;
        return timers_->byDue.begin()->first.due;
    }

    /// Calls the first timer that is due at `now`; false when none is.
    bool fireNext(Uptime now) {
        if (timers_->byDue.empty() || now < timers_->byDue.begin()->first.due)
            return false;
        auto node = timers_->byDue.extract(timers_->byDue.begin());
        const std::uint64_t id = node.mapped().id;
        timers_->dueOf.erase(id);
        if (node.mapped().interval > Duration::zero()) {
            rearm(node, now);
            return true;
        }
        (*node.mapped().work)();
        return true;
    }

private:
    struct Key {
        Uptime due;
        std::uint64_t id;
        friend auto operator<=>(const Key&, const Key&) = default;
    };
    struct Timer {
        std::uint64_t id;
        Duration interval;
        /// Shared with a call in progress: a callback may cancel its own timer, and may run an
        /// event loop in which the timer falls due again.
        std::shared_ptr<const std::function<void()>> work;
    };
    struct Timers final : Handle::Source {
        void cancel(std::uint64_t id) noexcept override {
            const auto found = dueOf.find(id);
            if (found == dueOf.end())
                return;
            byDue.erase({found->second, id});
            dueOf.erase(found);
        }

        std::map<Key, Timer> byDue;
        std::map<std::uint64_t, Uptime> dueOf;
    };

    Handle add(Uptime due, Duration interval, std::function<void()> work) {
        const std::uint64_t id = ++lastId_;
        timers_->byDue.emplace(
            Key{due, id},
            Timer{id, interval, std::make_shared<const std::function<void()>>(std::move(work))});
        timers_->dueOf.emplace(id, due);
        return {timers_, id};
    }

    void rearm(std::map<Key, Timer>::node_type& node, Uptime now) {
        const Uptime due = node.key().due;
        const Duration interval = node.mapped().interval;
        const Uptime next = due + interval * ((now - due) / interval + 1);
        const std::uint64_t id = node.mapped().id;
        const auto work = node.mapped().work;
        node.key() = {next, id};
        timers_->dueOf.emplace(id, next);
        timers_->byDue.insert(std::move(node));
        (*work)();
    }

    std::shared_ptr<Timers> timers_ = std::make_shared<Timers>();
    std::uint64_t lastId_ = 0;
};

} // namespace velmorquit
