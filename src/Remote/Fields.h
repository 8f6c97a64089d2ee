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

/// JSON for the bus. Names come from other programs and may hold any bytes: invalid UTF-8 is
/// replaced.
[[nodiscard]] std::string textOf(const Json& json);

/// JSON from another process. Null for anything else. Deeply nested parts are left out: nothing
/// that the program says is that deep.
[[nodiscard]] Json parsed(std::string_view text);

/// In whole seconds since 1970, and back; out-of-range dates become the nearest possible ones.
[[nodiscard]] std::int64_t secondsOf(WallTime date);
[[nodiscard]] WallTime dateOf(std::int64_t seconds);
[[nodiscard]] Json encode(const std::optional<WallTime>& date);
/// Null without one.
[[nodiscard]] Json encode(const std::optional<std::string>& text);

/// Reads an object from another process: fields that are missing or of another kind have the
/// neutral value. Nothing here throws. The JSON must outlive it.
class Fields {
public:
    explicit Fields(const Json& json) : json_(json) {}

    /// Null when there is none.
    [[nodiscard]] const Json& at(const char* key) const;

    /// Fit for display on one line, so that no name can forge lines or columns.
    [[nodiscard]] std::string text(const char* key) const { return optionalText(key).value_or(""); }
    [[nodiscard]] std::optional<std::string> optionalText(const char* key) const;
    /// Several lines, unchanged.
    [[nodiscard]] std::string lines(const char* key) const;
    [[nodiscard]] std::vector<std::string> texts(const char* key) const;
    [[nodiscard]] bool flag(const char* key) const;
    [[nodiscard]] std::optional<double> fraction(const char* key) const;
    [[nodiscard]] std::optional<WallTime> date(const char* key) const;

    /// 0 for a number outside the type's range.
    template <std::integral Number> [[nodiscard]] Number number(const char* key) const {
        const Json& value = at(key);
        if (value.is_number_unsigned())
            return converted<Number>(value.get<std::uint64_t>());
        return value.is_number_integer() ? converted<Number>(value.get<std::int64_t>()) : Number{};
    }

    /// Applies `read` to each element of an array.
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
