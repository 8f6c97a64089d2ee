#pragma once

#include <cstdint>
#include <memory>
#include <utility>

namespace velmorquit {

/// Keeps something going (a timer, a subscription, work elsewhere) for as long as it is held.
///
/// Destroying or resetting it ends that at once: the callback is never called afterwards. It may be
/// reset from within its own callback, and it may outlive its source.
class Handle {
public:
    /// Base class of everything that gives out handles.
    class Source {
    public:
        virtual ~Source() = default;
        /// Ends what `id` stands for; does nothing if that is already over.
        virtual void cancel(std::uint64_t id) noexcept = 0;
    };

    Handle() = default;
    /// `id` is not 0.
    Handle(std::weak_ptr<Source> source, std::uint64_t id) : source_(std::move(source)), id_(id) {}
    Handle(Handle&& other) noexcept { swap(other); }
    Handle& operator=(Handle&& other) noexcept {
        Handle moved(std::move(other));
        swap(moved);
        return *this;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { reset(); }

    void reset() noexcept {
        const auto source = std::exchange(source_, {}).lock();
        const auto id = std::exchange(id_, 0);
        if (source)
            source->cancel(id);
    }

    /// True until it is reset or moved from, even after what it stood for is over.
    [[nodiscard]] bool isSet() const { return id_ != 0; }

private:
    void swap(Handle& other) noexcept {
        std::swap(source_, other.source_);
        std::swap(id_, other.id_);
    }

    std::weak_ptr<Source> source_;
    std::uint64_t id_ = 0;
};

} // namespace velmorquit
