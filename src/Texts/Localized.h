#pragma once

#include "Platform/Localization.h"

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace velmorquit {

/// Makes `localized` use this string table for as long as this object exists; the former one is
/// then used again. The table must outlive it.
///
/// The language is a property of the process, as its locale is: the program creates one of these at
/// its start, before there are other threads; a test creates one when needed.
class LocalizationScope {
public:
    explicit LocalizationScope(const Localization& localization);
    LocalizationScope(const LocalizationScope&) = delete;
    LocalizationScope& operator=(const LocalizationScope&) = delete;
    ~LocalizationScope();

private:
    const Localization* previous_;
};

/// Replaces a placeholder. A text must already be formatted, and outlive the call.
class TextArgument {
public:
    TextArgument(std::integral auto number) : value_(static_cast<std::int64_t>(number)) {}
    TextArgument(std::string_view text) : value_(text) {}
    TextArgument(const std::string& text) : value_(std::string_view(text)) {}
    TextArgument(const char* text) : value_(std::string_view(text)) {}

    [[nodiscard]] const std::int64_t* number() const { return std::get_if<std::int64_t>(&value_); }
    [[nodiscard]] const std::string_view* text() const {
        return std::get_if<std::string_view>(&value_);
    }

private:
    std::variant<std::int64_t, std::string_view> value_;
};

/// The text for `key` in the interface's language, with the arguments inserted; the key itself if
/// there is no table, or the table has no such key.
///
/// Placeholders are `%lld` for an integer, `%@` for a text and `%%` for a per cent sign; `%2$@` and
/// `%1$lld` take the argument with that number. A translation with a placeholder whose argument is
/// missing or of the other kind isn't used; in a key such a placeholder stays unchanged. Unused
/// arguments are ignored. On any thread.
[[nodiscard]] std::string localizedText(std::string_view key,
                                        std::span<const TextArgument> arguments);

/// The same with separate arguments: `localized("Chiudi %lld app", count)`. The key is a literal at
/// the call, or one marked with `textKey`, so that the keys can be found for the translators.
template <class... Arguments>
[[nodiscard]] std::string localized(std::string_view key, const Arguments&... arguments) {
    if constexpr (sizeof...(arguments) == 0) {
        return localizedText(key, {});
    } else {
        const TextArgument list[]{TextArgument(arguments)...};
        return localizedText(key, list);
    }
}

/// Marks a literal that is passed to `localized` later, in a table.
[[nodiscard]] constexpr const char* textKey(const char* key) { return key; }

} // namespace velmorquit
