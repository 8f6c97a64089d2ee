#pragma once

#include "Loop/Subscribers.h"

#include <functional>
#include <type_traits>
#include <utility>

namespace velmorquit {

/// A field that tells subscribers of its changes. Members of `Owner` may write it, everybody else
/// may read it; without an owner anybody may write it.
///
/// Subscribers are told in a later turn of the loop, once for all changes of one turn, and read the
/// value that is current then: nothing is ever called back from within an
/// assignment.
template <class T, class Owner = void> class Published {
public:
    explicit Published(MainLoop& loop, T initial = {}) : loop_(loop), value_(std::move(initial)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    /// Assigning an equal value tells nobody.
    Published& operator=(T value)
        requires std::is_void_v<Owner>
    {
        return write(std::move(value));
    }

    [[nodiscard]] const T& get() const { return value_; }
    operator const T&() const { return value_; }
    const T* operator->() const { return &value_; }

    /// Calls `told` in a later turn for the present value, then after every change, until the
    /// handle is reset.
    [[nodiscard]] Handle subscribe(std::function<void()> told) const {
        return subscribers_.addAndTellFirst(loop_, std::move(told));
    }

private:
    friend Owner;

    Published& operator=(T value)
        requires(!std::is_void_v<Owner>)
    {
        return write(std::move(value));
    }

    Published& write(T value) {
        const bool isChange = !(value_ == value);
        value_ = std::move(value);
        if (isChange)
            subscribers_.tellLater(loop_);
        return *this;
    }

    MainLoop& loop_;
    T value_;
    mutable Subscribers subscribers_;
};

} // namespace velmorquit
