#pragma once

#include <cstdint>
#include <string>

namespace velmorquit {

/// Writes settings as a settings manager does.
class XSettingsBytes {
public:
    enum class Order : std::uint8_t { little = 0, big = 1 };
    explicit XSettingsBytes(Order order = Order::little) : order_(order) {}

    XSettingsBytes& add(const std::string& name, std::int32_t value) {
        begin(0, name).number(static_cast<std::uint32_t>(value), 4);
        return *this;
    }
    XSettingsBytes& add(const std::string& name, const std::string& value) {
        begin(1, name).number(static_cast<std::uint32_t>(value.size()), 4).text(value);
        return *this;
    }
    XSettingsBytes& addColour(const std::string& name) {
        begin(2, name).text("rrggbbaa");
        return *this;
    }

    [[nodiscard]] std::string bytes() const {
        XSettingsBytes head(order_);
        head.number(static_cast<std::uint32_t>(order_), 1).number(0, 3);
        head.number(7, 4).number(count_, 4);
        return head.bytes_ + bytes_;
    }

private:
    XSettingsBytes& begin(std::uint32_t type, const std::string& name) {
        ++count_;
        number(type, 1).number(0, 1).number(static_cast<std::uint32_t>(name.size()), 2);
        return text(name).number(7, 4);
    }
    XSettingsBytes& number(std::uint32_t value, std::size_t size) {
        for (std::size_t index = 0; index < size; ++index) {
            const std::size_t shift = 8 * (order_ == Order::big ? size - 1 - index : index);
            bytes_ += static_cast<char>(value >> shift);
        }
        return *this;
    }
    XSettingsBytes& text(const std::string& text) {
        bytes_ += text;
        bytes_.append((4 - text.size() % 4) % 4, '\0');
        return *this;
    }

    Order order_;
    std::string bytes_;
    std::uint32_t count_ = 0;
};

} // namespace velmorquit
