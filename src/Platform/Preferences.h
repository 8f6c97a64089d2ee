#pragma once

#include "Loop/Handle.h"
#include "Platform/Value.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// The user's settings and small pieces of remembered state, kept across starts under
/// case-sensitive keys.
class Preferences {
public:
    virtual ~Preferences() = default;

    /// The value stored under `key`, none without one. Read from memory.
    [[nodiscard]] virtual std::optional<Value> object(std::string_view key) const = 0;

    /// Stores `value`; it is saved when this returns. If it can't be saved (a full disk), the value
    /// holds while the program runs and a line in the log says so.
    virtual void set(std::string_view key, Value value) = 0;

    /// Removes the value under `key`, if there is one.
    virtual void remove(std::string_view key) = 0;

    /// Takes over at once what other programs have stored.
    virtual void refresh() = 0;

    /// Calls `changed` in a later turn after any change, by this program or another.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) = 0;

    /// The Boolean under `key`; `fallback` when nothing or another type is stored there.
    [[nodiscard]] bool boolean(std::string_view key, bool fallback) const {
        return read<bool>(key).value_or(fallback);
    }

    /// The text under `key`, none when nothing or another type is stored there.
    [[nodiscard]] std::optional<std::string> text(std::string_view key) const {
        return read<std::string>(key);
    }

    /// The array of texts under `key`; none when nothing or another type is stored there, or when
    /// one of the elements is no text.
    [[nodiscard]] std::optional<std::vector<std::string>> texts(std::string_view key) const {
        const auto array = read<Value::Array>(key);
        if (!array)
            return std::nullopt;
        std::vector<std::string> texts;
        for (const Value& element : *array) {
            const auto* text = element.as<std::string>();
            if (!text)
                return std::nullopt;
            texts.push_back(*text);
        }
        return texts;
    }

private:
    template <class T> [[nodiscard]] std::optional<T> read(std::string_view key) const {
        const auto stored = object(key);
        const T* value = stored ? stored->as<T>() : nullptr;
        return value ? std::optional<T>(*value) : std::nullopt;
    }
};

} // namespace velmorquit
