#include "Codecs/PropertyList.h"
#include "Codecs/PropertyListLimits.h"
#include "Fuzz/Fuzz.h"

using namespace velmorquit;

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
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view list(reinterpret_cast<const char*>(data), size);
    const auto value = PropertyList::decode(list);
    if (!value)
        return 0;
    fuzz::require(countIn(*value) <= PropertyList::mostValues, "a list holds what is allowed");
    const std::string text = PropertyList::encode(*value);
    if (text.size() > PropertyList::largestList)
        return 0;
    const auto back = PropertyList::decode(text);
    fuzz::require(back.has_value(), "what was encoded can be decoded");
    fuzz::require(PropertyList::encode(*back) == text, "and is the same then");
    return 0;
}
