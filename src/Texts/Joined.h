#pragma once

#include <functional>
#include <ranges>
#include <string>
#include <string_view>

namespace velmorquit {

/// The texts one after the other, with `between` between each two; of other values, the text that
/// `textOf` finds in each.
template <std::ranges::input_range Values, class TextOf = std::identity>
[[nodiscard]] std::string joined(const Values& values, std::string_view between = ", ",
                                 TextOf textOf = {}) {
    std::string all;
    for (const auto& value : values) {
        if (!all.empty())
            all += between;
        all += std::invoke(textOf, value);
    }
    return all;
}

} // namespace velmorquit
