#pragma once

#include "Platform/Localization.h"

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace velmorquit {

/// Makes a string table the one that `localized` reads, for as long as this lives; then it is the
/// one from before again. The table outlives this.
///
/// The language is a property of the process, as its locale is: the program makes one of these at
/// its start, before there are other threads, a test one where it needs one.
class LocalizationScope {
public:
    explicit LocalizationScope(const Localization& localization);
    LocalizationScope(const LocalizationScope&) = delete;
    LocalizationScope& operator=(const LocalizationScope&) = delete;
    ~LocalizationScope();

private:
    const Localization* previous_;
};

/// What takes a placeholder's place. A text is formatted already, and outlives the call.
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

/// The text for `key` in the interface's language, with the arguments in it; without a table, or
/// one that has the key, the key is the text.
///
/// Placeholders are `%lld` for an integer, `%@` for a text and `%%` for a per cent sign; `%2$@` and
/// `%1$lld` take the argument of that number. A translation that asks for an argument that isn't
/// there or is of the other kind is not used; in a key such a placeholder stays as it is.
/// Arguments that nothing asks for are left out. On any thread.
[[nodiscard]] std::string localizedText(std::string_view key,
                                        std::span<const TextArgument> arguments);

/// The same for arguments one by one: `localized("Chiudi %lld app", count)`. The key is a literal
/// at the call, or one marked with `textKey`: that is how the keys are found for the translators.
template <class... Arguments>
[[nodiscard]] std::string localized(std::string_view key, const Arguments&... arguments) {
    if constexpr (sizeof...(arguments) == 0) {
        return localizedText(key, {});
    } else {
        const TextArgument list[]{TextArgument(arguments)...};
        return localizedText(key, list);
    }
}

/// Marks a literal that is handed to `localized` later, in a table.
[[nodiscard]] constexpr const char* textKey(const char* key) { return key; }

} // namespace velmorquit
