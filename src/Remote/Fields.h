#pragma once

#include "Loop/Time.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmorquit::remote {

using Json = nlohmann::ordered_json;

/// JSON as it goes over the bus. Names come from other programs and are told whatever bytes they
/// hold: those that are no UTF-8 are replaced.
[[nodiscard]] std::string textOf(const Json& json);

/// What another process has sent. Null for anything but JSON, and deeply nested parts are left out:
/// nothing that the program says is that deep.
[[nodiscard]] Json parsed(std::string_view text);

/// In whole seconds since 1970, and back; dates that there aren't become the nearest that there is.
[[nodiscard]] std::int64_t secondsOf(WallTime date);
[[nodiscard]] WallTime dateOf(std::int64_t seconds);
[[nodiscard]] Json encode(const std::optional<WallTime>& date);
/// Null without one.
[[nodiscard]] Json encode(const std::optional<std::string>& text);

/// Reads an object that another process has sent: a field that isn't there or is of another kind
/// has the neutral value. Nothing here throws. The JSON outlives this.
class Fields {
public:
    explicit Fields(const Json& json) : json_(json) {}

    /// Null when there is none.
    [[nodiscard]] const Json& at(const char* key) const;

    /// As it may be shown on one line, so that no name makes lines or columns of its own.
    [[nodiscard]] std::string text(const char* key) const { return optionalText(key).value_or(""); }
    [[nodiscard]] std::optional<std::string> optionalText(const char* key) const;
    /// Several lines, as they were sent.
    [[nodiscard]] std::string lines(const char* key) const;
    [[nodiscard]] std::vector<std::string> texts(const char* key) const;
    [[nodiscard]] bool flag(const char* key) const;
    [[nodiscard]] std::optional<double> fraction(const char* key) const;
    [[nodiscard]] std::optional<WallTime> date(const char* key) const;

    /// 0 for a number that the type doesn't have.
    template <std::integral Number> [[nodiscard]] Number number(const char* key) const {
        const Json& value = at(key);
        if (value.is_number_unsigned())
            return converted<Number>(value.get<std::uint64_t>());
        return value.is_number_integer() ? converted<Number>(value.get<std::int64_t>()) : Number{};
    }

    /// What `read` makes of each element of an array.
    template <class Read> [[nodiscard]] auto list(const char* key, Read read) const {
        std::vector<decltype(read(std::declval<const Json&>()))> elements;
        if (const Json& array = at(key); array.is_array()) {
            for (const Json& element : array)
                elements.push_back(read(element));
        }
        return elements;
    }

private:
    template <class Number, class From> static Number converted(From value) {
        return std::in_range<Number>(value) ? static_cast<Number>(value) : Number{};
    }

    const Json& json_;
};

} // namespace velmorquit::remote
