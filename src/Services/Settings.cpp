#include "Services/Settings.h"

#include "Platform/Preferences.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace velmorquit {
namespace {

Value::Data dataOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::string textOf(const Value::Data& data) {
    std::string text(data.size(), '\0');
    std::ranges::transform(data, text.begin(),
                           [](std::byte byte) { return static_cast<char>(byte); });
    return text;
}

/// How a type is stored. Reading gives none for anything that isn't such a value.
template <class T> struct Stored {
    static std::optional<T> read(const Value& stored) {
        const T* value = stored.as<T>();
        return value ? std::optional<T>(*value) : std::nullopt;
    }
    static std::optional<Value> written(const T& value) { return Value(value); }
};

template <> struct Stored<PowerAction> {
    static std::optional<PowerAction> read(const Value& stored) {
        const auto* raw = stored.as<std::string>();
        return raw ? powerActionFromRaw(*raw) : std::nullopt;
    }
    static std::optional<Value> written(PowerAction action) {
        return std::string(rawValue(action));
    }
};

template <> struct Stored<AppLanguage> {
    static std::optional<AppLanguage> read(const Value& stored) { return appLanguageOf(stored); }
    static std::optional<Value> written(AppLanguage language) {
        if (language == AppLanguage::system)
            return std::nullopt;
        return Value::Array{std::string(rawValue(language))};
    }
};

template <> struct Stored<std::set<std::string>> {
    static std::optional<std::set<std::string>> read(const Value& stored) {
        const auto* array = stored.as<Value::Array>();
        if (!array)
            return std::nullopt;
        std::set<std::string> texts;
        for (const Value& element : *array) {
            const auto* text = element.as<std::string>();
            if (!text)
                return std::nullopt;
            texts.insert(*text);
        }
        return texts;
    }
    static std::optional<Value> written(const std::set<std::string>& texts) {
        return Value::Array(texts.begin(), texts.end());
    }
};

template <> struct Stored<std::vector<SavedApp>> {
    static std::optional<std::vector<SavedApp>> read(const Value& stored) {
        const auto* data = stored.as<Value::Data>();
        return data ? SavedApps::decode(textOf(*data)) : std::nullopt;
    }
    static std::optional<Value> written(const std::vector<SavedApp>& apps) {
        return dataOf(SavedApps::encode(apps));
    }
};

template <class T> struct Stored<std::optional<T>> {
    static std::optional<std::optional<T>> read(const Value& stored) {
        return Stored<T>::read(stored);
    }
    static std::optional<Value> written(const std::optional<T>& value) {
        return value ? Stored<T>::written(*value) : std::nullopt;
    }
};

} // namespace

template <class T>
Setting<T>::Setting(Settings& settings, std::string_view key, T initial)
    : preferences_(settings.preferences_), key_(key), initial_(initial),
      value_(settings.loop_, std::move(initial)) {
    settings.all_.push_back(this);
    takeOver();
}

template <class T> void Setting<T>::takeOver() {
    const auto stored = preferences_.object(key_);
    auto value = stored ? Stored<T>::read(*stored) : std::nullopt;
    value_ = value ? std::move(*value) : initial_;
}

template <class T> void Setting<T>::store(T value) {
    if (value_.get() == value)
        return;
    if (const auto written = Stored<T>::written(value))
        preferences_.set(key_, *written);
    else
        preferences_.remove(key_);
    value_ = std::move(value);
}

template class Setting<bool>;
template class Setting<PowerAction>;
template class Setting<AppLanguage>;
template class Setting<std::optional<std::set<std::string>>>;
template class Setting<std::optional<std::vector<SavedApp>>>;
template class Setting<std::optional<WallTime>>;

Settings::Settings(MainLoop& loop, Preferences& preferences)
    : loop_(loop), preferences_(preferences), changes_(preferences.observe([this] {
          for (AnySetting* setting : all_)
              setting->takeOver();
      })) {}

void Settings::refresh() {
    preferences_.refresh();
    for (AnySetting* setting : all_)
        setting->takeOver();
}

} // namespace velmorquit
