#include "Codecs/PropertyList.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <memory>
#include <plist/plist.h>
#include <type_traits>
#include <utility>

namespace velmorquit::PropertyList {
namespace {

constexpr int deepestNesting = 100;
// The library frees its nodes recursively: some hundred thousand nested ones exhaust the stack.
constexpr std::uint64_t mostContainers = 20'000;
constexpr std::chrono::sys_seconds dateEpoch{
    std::chrono::sys_days{std::chrono::year{2001} / 1 / 1}};

struct NodeDeleter {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T> using Allocated = std::unique_ptr<T, FreeDeleter>;

// The library reads reals with the decimal separator of the locale: in Italian 0.5 would become 0.
class PlainLocale {
public:
    PlainLocale() : plain_(newlocale(LC_ALL_MASK, "C", nullptr)), previous_(uselocale(plain_)) {}
    PlainLocale(const PlainLocale&) = delete;
    PlainLocale& operator=(const PlainLocale&) = delete;
    ~PlainLocale() {
        uselocale(previous_);
        freelocale(plain_);
    }

private:
    locale_t plain_;
    locale_t previous_;
};

plist_t dateNode(WallTime date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date) - dateEpoch;
    constexpr std::int64_t earliest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t latest = std::numeric_limits<std::int32_t>::max();
    const std::int64_t kept = std::clamp<std::int64_t>(seconds.count(), earliest, latest);
    return plist_new_date(static_cast<std::int32_t>(kept), 0);
}

plist_t makeNode(const Value& value, int nesting);

plist_t arrayNode(const Value::Array& array, int nesting) {
    const plist_t node = plist_new_array();
    for (const Value& element : array) {
        if (const plist_t child = makeNode(element, nesting + 1))
            plist_array_append_item(node, child);
    }
    return node;
}

plist_t dictionaryNode(const Value::Dictionary& dictionary, int nesting) {
    const plist_t node = plist_new_dict();
    for (const auto& [key, element] : dictionary) {
        if (const plist_t child = makeNode(element, nesting + 1))
            plist_dict_set_item(node, key.c_str(), child);
    }
    return node;
}

// The caller owns the node, which is null for what is nested too deeply.
plist_t makeNode(const Value& value, int nesting) {
    if (nesting > deepestNesting)
        return nullptr;
    if (const auto* flag = value.as<bool>())
        return plist_new_bool(*flag ? 1 : 0);
    if (const auto* integer = value.as<std::int64_t>())
        return plist_new_uint(static_cast<std::uint64_t>(*integer));
    if (const auto* real = value.as<double>())
        return plist_new_real(*real);
    if (const auto* text = value.as<std::string>())
        return plist_new_string(text->c_str());
    if (const auto* date = value.as<WallTime>())
        return dateNode(*date);
    if (const auto* data = value.as<Value::Data>())
        return plist_new_data(reinterpret_cast<const char*>(data->data()), data->size());
    if (const auto* array = value.as<Value::Array>())
        return arrayNode(*array, nesting);
    return dictionaryNode(*value.as<Value::Dictionary>(), nesting);
}

std::optional<Value> valueOf(plist_t node, int nesting);

Value arrayOf(plist_t node, int nesting) {
    plist_array_iter begin = nullptr;
    plist_array_new_iter(node, &begin);
    const Allocated<void> next(begin);
    Value::Array array;
    for (;;) {
        plist_t element = nullptr;
        plist_array_next_item(node, next.get(), &element);
        if (!element)
            return array;
        if (auto value = valueOf(element, nesting + 1))
            array.push_back(*std::move(value));
    }
}

Value dictionaryOf(plist_t node, int nesting) {
    plist_dict_iter begin = nullptr;
    plist_dict_new_iter(node, &begin);
    const Allocated<void> next(begin);
    Value::Dictionary dictionary;
    for (;;) {
        char* text = nullptr;
        plist_t element = nullptr;
        plist_dict_next_item(node, next.get(), &text, &element);
        const Allocated<char> key(text);
        if (!element)
            return dictionary;
        if (auto value = valueOf(element, nesting + 1); value && key)
            dictionary.insert_or_assign(key.get(), *std::move(value));
    }
}

Value dateOf(plist_t node) {
    std::int32_t seconds = 0;
    std::int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return WallTime(dateEpoch + std::chrono::seconds(seconds));
}

Value dataOf(plist_t node) {
    std::uint64_t size = 0;
    const char* first = plist_get_data_ptr(node, &size);
    const auto* bytes = reinterpret_cast<const std::byte*>(first);
    return first ? Value::Data(bytes, bytes + size) : Value::Data();
}

std::string textOf(plist_t node) {
    std::uint64_t size = 0;
    const char* first = plist_get_string_ptr(node, &size);
    return first ? std::string(first, size) : std::string();
}

template <class T> T numberOf(plist_t node, void (*get)(plist_t, T*)) {
    T number{};
    get(node, &number);
    return number;
}

std::optional<Value> valueOf(plist_t node, int nesting) {
    if (nesting > deepestNesting)
        return std::nullopt;
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
        return Value(numberOf<std::uint8_t>(node, plist_get_bool_val) != 0);
    case PLIST_UINT:
        return Value(static_cast<std::int64_t>(numberOf<std::uint64_t>(node, plist_get_uint_val)));
    case PLIST_REAL:
        return Value(numberOf<double>(node, plist_get_real_val));
    case PLIST_STRING:
        return Value(textOf(node));
    case PLIST_DATE:
        return dateOf(node);
    case PLIST_DATA:
        return dataOf(node);
    case PLIST_ARRAY:
        return arrayOf(node, nesting);
    case PLIST_DICT:
        return dictionaryOf(node, nesting);
    default:
        return std::nullopt;
    }
}

bool isBinary(std::string_view list) { return list.starts_with("bplist"); }

// No list nests deeper than this.
std::uint64_t containersAtMost(std::string_view list) {
    std::uint64_t count = 0;
    if (isBinary(list)) {
        // The number of values, big-endian, 24 bytes before the end.
        for (const char byte : list.substr(list.size() - std::min<std::size_t>(list.size(), 24), 8))
            count = count << 8 | static_cast<unsigned char>(byte);
        return count;
    }
    for (const std::string_view opening : {"<array", "<dict"}) {
        for (auto at = list.find(opening); at != list.npos; at = list.find(opening, at + 1))
            ++count;
    }
    return count;
}

} // namespace

std::string encode(const Value& value) {
    const PlainLocale locale;
    const Node node(makeNode(value, 0));
    char* text = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node.get(), &text, &length);
    std::string list(text ? text : "", text ? length : 0);
    plist_to_xml_free(text);
    return list;
}

std::optional<Value> decode(std::string_view list) {
    if (list.size() > std::numeric_limits<std::uint32_t>::max() ||
        containersAtMost(list) > mostContainers)
        return std::nullopt;
    const PlainLocale locale;
    const auto parse = isBinary(list) ? plist_from_bin : plist_from_xml;
    plist_t root = nullptr;
    parse(list.data(), static_cast<std::uint32_t>(list.size()), &root);
    const Node node(root);
    return node ? valueOf(node.get(), 0) : std::nullopt;
}

} // namespace velmorquit::PropertyList
