#include "Texts/Localized.h"

#include <charconv>
#include <optional>
#include <utility>

namespace velmorquit {

namespace {

const Localization* installed = nullptr;

enum class Kind { percent, number, text };

struct Placeholder {
    Kind kind = Kind::percent;
    /// Number of the argument, from 1; 0 for the next one.
    std::size_t position = 0;
    std::size_t length = 0;
};

/// The placeholder at the beginning of `text`, if there is one. `text` begins with '%'.
std::optional<Placeholder> placeholder(std::string_view text) {
    Placeholder found;
    std::string_view rest = text.substr(1);
    std::size_t position = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), position);
    const auto digits = static_cast<std::size_t>(end - rest.data());
    if (error == std::errc() && position > 0 && rest.substr(digits).starts_with('$')) {
        found.position = position;
        rest.remove_prefix(digits + 1);
    }
    const std::pair<std::string_view, Kind> kinds[]{
        {"%", Kind::percent}, {"lld", Kind::number}, {"@", Kind::text}};
    for (const auto& [letters, kind] : kinds) {
        if (rest.starts_with(letters)) {
            found.kind = kind;
            found.length = text.size() - rest.size() + letters.size();
            return found;
        }
    }
    return std::nullopt;
}

std::optional<std::string> valueOf(Kind kind, std::size_t index,
                                   std::span<const TextArgument> arguments) {
    if (kind == Kind::percent)
        return "%";
    if (index >= arguments.size())
        return std::nullopt;
    if (const auto* number = arguments[index].number(); number && kind == Kind::number)
        return std::to_string(*number);
    if (const auto* text = arguments[index].text(); text && kind == Kind::text)
        return std::string(*text);
    return std::nullopt;
}

struct Filled {
    std::string text;
    bool fits = true; ///< every placeholder had its argument
};

Filled filled(std::string_view pattern, std::span<const TextArgument> arguments) {
    Filled result;
    std::size_t next = 0;
    while (!pattern.empty()) {
        const std::size_t plain = std::min(pattern.find('%'), pattern.size());
        result.text += pattern.substr(0, plain);
        pattern.remove_prefix(plain);
        if (pattern.empty())
            break;
        const auto found = placeholder(pattern);
        const std::size_t length = found ? found->length : 1;
        std::optional<std::string> value;
        if (found) {
            const bool takesNext = found->kind != Kind::percent && found->position == 0;
            const std::size_t index = takesNext ? next++ : found->position - 1;
            value = valueOf(found->kind, index, arguments);
            result.fits = result.fits && value;
        }
        result.text += value.value_or(std::string(pattern.substr(0, length)));
        pattern.remove_prefix(length);
    }
    return result;
}

} // namespace

LocalizationScope::LocalizationScope(const Localization& localization)
    : previous_(std::exchange(installed, &localization)) {}

LocalizationScope::~LocalizationScope() { installed = previous_; }

std::string localizedText(std::string_view key, std::span<const TextArgument> arguments) {
    const auto translation = installed ? installed->text(key) : std::nullopt;
    if (translation) {
        if (Filled result = filled(*translation, arguments); result.fits)
            return std::move(result.text);
    }
    return filled(key, arguments).text;
}

} // namespace velmorquit
