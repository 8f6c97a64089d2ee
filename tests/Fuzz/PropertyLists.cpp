#include "Codecs/PropertyList.h"
#include "Codecs/PropertyListLimits.h"
#include "Fuzz/Fuzz.h"

namespace velmorquit::fuzz {
namespace {

std::size_t countIn(const Value& value) {
    std::size_t count = 1;
    if (const auto* array = value.as<Value::Array>()) {
        for (const Value& element : *array)
            count += countIn(element);
    } else if (const auto* dictionary = value.as<Value::Dictionary>()) {
        for (const auto& [key, element] : *dictionary)
            count += countIn(element);
    }
    return count;
}

} // namespace

/// A list in either form, as another program may leave it in a file or on a pipe.
void examine(std::string_view bytes) {
    const auto value = PropertyList::decode(bytes);
    if (!value)
        return;
    require(countIn(*value) <= PropertyList::mostValues, "a list holds what is allowed");
    const std::string text = PropertyList::encode(*value);
    if (text.size() > PropertyList::largestList)
        return;
    const auto back = PropertyList::decode(text);
    require(back.has_value(), "what was encoded can be decoded");
    require(PropertyList::encode(*back) == text, "and is the same then");
}

} // namespace velmorquit::fuzz
