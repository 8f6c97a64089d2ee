#include "Codecs/PropertyListLimits.h"
#include "Codecs/XmlBytes.h"
#include "Codecs/XmlPropertyList.h"
#include "Platform/Dates.h"

#include <QByteArray>
#include <QXmlStreamReader>
#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace velmorquit::PropertyList {
namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    return first == text.npos ? std::string_view()
                              : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

template <class T, class... Form> std::optional<T> number(std::string_view text, Form... form) {
    T value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, form...);
    return error == std::errc{} && stop == end ? std::optional(value) : std::nullopt;
}

std::optional<Value> integerOf(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal)
        text.remove_prefix(2);
    const auto size = number<std::uint64_t>(text, isHexadecimal ? 16 : 10);
    if (!size)
        return std::nullopt;
    return Value(static_cast<std::int64_t>(isNegative ? -*size : *size));
}

std::optional<Value> realOf(std::string_view text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    const auto real = number<double>(text);
    return real ? std::optional<Value>(*real) : std::nullopt;
}

// For example 2026-03-02T09:00:00Z.
std::optional<Value> dateOf(std::string_view text) {
    constexpr std::string_view form = "0000-00-00T00:00:00Z";
    if (text.size() != form.size())
        return std::nullopt;
    std::array<int, 6> parts{};
    std::size_t part = 0;
    for (std::size_t at = 0; at < form.size(); ++at) {
        if (form[at] != '0') {
            if (text[at] != form[at])
                return std::nullopt;
            ++part;
            continue;
        }
        if (text[at] < '0' || text[at] > '9')
            return std::nullopt;
        parts.at(part) = parts.at(part) * 10 + (text[at] - '0');
    }
    using namespace std::chrono;
    const auto [y, m, d, hour, minute, second] = parts;
    const year_month_day day = year{y} / month(static_cast<unsigned>(m)) / static_cast<unsigned>(d);
    if (!day.ok() || hour > 23 || minute > 59 || second > 60)
        return std::nullopt;
    return Value(
        dateAt(sys_seconds(sys_days(day)) + hours(hour) + minutes(minute) + seconds(second)));
}

std::optional<Value> dataOf(const std::string& text) {
    QByteArray digits = QByteArray::fromStdString(text);
    digits.removeIf([](char digit) { return trimmed({&digit, 1}).empty(); });
    const auto read =
        QByteArray::fromBase64Encoding(std::move(digits), QByteArray::AbortOnBase64DecodingErrors);
    if (!read)
        return std::nullopt;
    const auto* first = reinterpret_cast<const std::byte*>(read.decoded.constData());
    return Value(Value::Data(first, first + read.decoded.size()));
}

// Tags of lists are short. The reader compares all attributes of a tag with each other, and some
// megabytes of them would keep it busy for hours.
bool areTagsShort(std::string_view list) {
    constexpr std::size_t longestTag = 1000;
    for (auto at = list.find('<'); at != list.npos; at = list.find('<', at + 1)) {
        std::string_view tag = list.substr(at + 1, longestTag);
        // Defines default attributes for every element.
        if (tag.starts_with("!ATTLIST"))
            return false;
        if (!tag.empty() && (tag.front() == '!' || tag.front() == '?'))
            continue;
        char quote = 0;
        const auto isEnd = [&quote](char letter) {
            if (letter == quote)
                quote = 0;
            else if (quote == 0 && (letter == '"' || letter == '\''))
                quote = letter;
            return quote == 0 && letter == '>';
        };
        if (tag.size() == longestTag && std::ranges::none_of(tag, isEnd))
            return false;
    }
    return true;
}

class Reader {
public:
    explicit Reader(std::string_view list) : xml_(XmlBytes::shown(list)) {
        // No list needs entities of its own; a few bytes of them may expand to any length.
        xml_.setEntityExpansionLimit(0);
    }

    std::optional<Value> root() {
        if (!xml_.readNextStartElement())
            return std::nullopt;
        // Some writers write only the value.
        const bool isFramed = xml_.name() == QLatin1String("plist");
        if (isFramed && !xml_.readNextStartElement())
            return std::nullopt;
        auto value = element();
        // Exactly one value up to the end: half a list is none.
        if (isFramed && xml_.readNextStartElement())
            return std::nullopt;
        while (!xml_.atEnd())
            xml_.readNext();
        return xml_.hasError() ? std::nullopt : value;
    }

private:
    std::nullopt_t damaged() {
        xml_.raiseError();
        return std::nullopt;
    }

    // None without an error means that the value is left out.
    std::optional<Value> element() {
        if (valuesLeft_-- <= 0)
            return damaged();
        const std::string name = xml_.name().toString().toStdString();
        if (name == "array" || name == "dict") {
            if (nesting_ > deepestNesting) {
                xml_.skipCurrentElement();
                return std::nullopt;
            }
            ++nesting_;
            auto value = name == "dict" ? dictionary() : array();
            --nesting_;
            return value;
        }
        const std::string content = XmlBytes::hidden(xml_.readElementText());
        if (xml_.hasError())
            return std::nullopt;
        constexpr std::array<std::string_view, 7> known{"string", "true", "false", "integer",
                                                        "real",   "date", "data"};
        if (std::ranges::find(known, name) == known.end())
            return damaged();
        // One mistyped value doesn't cost all the others.
        return nesting_ > deepestNesting ? std::nullopt : plain(name, content);
    }

    static std::optional<Value> plain(std::string_view name, const std::string& content) {
        if (name == "string")
            return Value(content);
        if (name == "true" || name == "false")
            return Value(name == "true");
        if (name == "integer")
            return integerOf(trimmed(content));
        if (name == "real")
            return realOf(trimmed(content));
        if (name == "date")
            return dateOf(trimmed(content));
        if (name == "data")
            return dataOf(content);
        return std::nullopt;
    }

    std::optional<Value> array() {
        Value::Array array;
        while (xml_.readNextStartElement()) {
            if (auto value = element())
                array.push_back(*std::move(value));
        }
        return array;
    }

    std::optional<Value> dictionary() {
        Value::Dictionary dictionary;
        while (xml_.readNextStartElement()) {
            if (xml_.name() != QLatin1String("key"))
                return damaged();
            const std::string key = XmlBytes::hidden(xml_.readElementText());
            if (!xml_.readNextStartElement())
                return damaged();
            if (auto value = element())
                dictionary.insert_or_assign(key, *std::move(value));
        }
        return dictionary;
    }

    QXmlStreamReader xml_;
    int nesting_ = 0;
    int valuesLeft_ = mostValues;
};

} // namespace

std::optional<Value> decodeXml(std::string_view list) {
    list.remove_prefix(std::min(list.find_first_not_of(" \t\r\n"), list.size()));
    return areTagsShort(list) ? Reader(list).root() : std::nullopt;
}

} // namespace velmorquit::PropertyList
