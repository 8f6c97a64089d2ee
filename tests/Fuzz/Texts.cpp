#include "Fuzz/Fuzz.h"
#include "Language/TranslatedTexts.h"
#include "Texts/Localized.h"

namespace velmorquit::fuzz {
namespace {

class OneText final : public Localization {
public:
    explicit OneText(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] std::optional<std::string> text(std::string_view) const override { return text_; }

private:
    std::string text_;
};

} // namespace

/// The key, its translation and two arguments, a line each.
void examine(std::string_view bytes) {
    const std::size_t size = bytes.size();
    static const TranslatedTexts english(Language::english);
    Input input(bytes);
    const std::string key = input.line();
    const OneText table(input.line());
    const std::string argument = input.line();
    const std::string other(input.rest());
    const auto number = static_cast<std::int64_t>(size * 1'000'003);
    const std::size_t most = (size + 1) * (size + 32);
    const std::string plain = localized(key, argument, number, other);
    require(plain.size() <= most, "a text is made of the key and the arguments");
    require(key.find('%') != std::string::npos || plain == key,
            "without placeholders a key is the text");
    {
        const LocalizationScope scope(table);
        const std::string filled = localized(key, argument, number, other);
        require(filled.size() <= most, "so is a translation");
        require(!isUtf8(bytes) || isUtf8(filled), "no letter is cut apart");
    }
    const LocalizationScope scope(english);
    static_cast<void>(localized(key, argument, number, other));
}

} // namespace velmorquit::fuzz
