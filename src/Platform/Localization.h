#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velmorquit {

/// The string table of one language. Its keys are the Italian texts.
class Localization {
public:
    virtual ~Localization() = default;

    /// The text for `key`, still with the key's placeholders; none when the table has no such key,
    /// and the key itself is then the text. Quick, on any thread.
    [[nodiscard]] virtual std::optional<std::string> text(std::string_view key) const = 0;
};

} // namespace velmorquit
