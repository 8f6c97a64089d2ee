#include "Codecs/PropertyList.h"
#include "Fuzz/Fuzz.h"

#include <bit>
#include <chrono>
#include <cmath>
#include <limits>

namespace velmorquit::fuzz {
namespace {

WallTime dateFrom(Input& input) {
    const auto seconds = static_cast<std::int32_t>(input.number());
    return WallTime(std::chrono::sys_days{std::chrono::year{2001} / 1 / 1}) +
           std::chrono::seconds(seconds);
}

Value::Data dataOf(const std::string& text) {
    const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
    return {bytes, bytes + text.size()};
}

/// Of what a list can hold as it is.
Value valueFrom(Input& input, int nesting) {
    constexpr int deepest = 90;
    constexpr std::uint8_t kinds = 8;
    const std::uint8_t kind = input.byte() % kinds;
    if (kind == 0)
        return static_cast<std::int64_t>(input.number());
    if (kind == 1)
        return input.byte() % 2 == 1;
    if (kind == 2) {
        const auto real = std::bit_cast<double>(input.number());
        return std::isnan(real) ? 0.5 : real;
    }
    if (kind == 3)
        return input.text();
    if (kind == 4)
        return dateFrom(input);
    if (kind == 5)
        return dataOf(input.text());
    Value::Array array;
    Value::Dictionary dictionary;
    for (int count = nesting < deepest ? input.byte() % 16 : 0; count > 0; --count) {
        if (kind == 6)
            array.push_back(valueFrom(input, nesting + 1));
        else
            dictionary.insert_or_assign(input.text(), valueFrom(input, nesting + 1));
    }
    return kind == 6 ? Value(std::move(array)) : Value(std::move(dictionary));
}

} // namespace

/// Values of every kind, texts of any bytes among them, come back as they were.
void examine(std::string_view bytes) {
    Input input(bytes);
    const Value value = valueFrom(input, 0);
    const auto back = PropertyList::decode(PropertyList::encode(value));
    require(back == value, "a value comes back as it was");
}

} // namespace velmorquit::fuzz
