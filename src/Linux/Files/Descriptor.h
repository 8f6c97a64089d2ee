#pragma once

#include <unistd.h>
#include <utility>

namespace velmorquit {

/// A file descriptor, closed with this object; a negative number means none.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0)
            close(number_);
    }
    [[nodiscard]] int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

private:
    int number_;
};

} // namespace velmorquit
