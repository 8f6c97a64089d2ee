#pragma once

#include "Loop/Time.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace velmorquit {

/// A value of the preferences store. Types are never converted: an integer 0 is no Boolean, a text
/// no number.
class Value {
public:
    using Data = std::vector<std::byte>;
    using Array = std::vector<Value>;
    using Dictionary = std::map<std::string, Value>;

    Value(bool value) : value_(value) {}
    Value(int value) : value_(std::int64_t{value}) {}
    Value(std::int64_t value) : value_(value) {}
    Value(double value) : value_(value) {}
    Value(const char* text) : value_(std::string(text)) {}
    Value(std::string text) : value_(std::move(text)) {}
    Value(WallTime date) : value_(date) {}
    Value(Data data) : value_(std::move(data)) {}
    Value(Array array) : value_(std::move(array)) {}
    Value(Dictionary dictionary) : value_(std::move(dictionary)) {}

    /// The value as a `T`, null if it is of another type.
    template <class T> [[nodiscard]] const T* as() const { return std::get_if<T>(&value_); }

    friend bool operator==(const Value&, const Value&) = default;

private:
    std::variant<bool, std::int64_t, double, std::string, WallTime, Data, Array, Dictionary> value_;
};

} // namespace velmorquit
