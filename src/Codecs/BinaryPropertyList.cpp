#include "Codecs/BinaryPropertyList.h"

#include "Codecs/PropertyListLimits.h"
#include "Platform/Dates.h"

#include <QString>
#include <algorithm>
#include <bit>
#include <cmath>
#include <string>
#include <utility>

namespace velmorquit::PropertyList {
namespace {

constexpr std::string_view magic = "bplist00";
constexpr std::size_t trailerSize = 32;
constexpr std::chrono::sys_seconds dateEpoch{
    std::chrono::sys_days{std::chrono::year{2001} / 1 / 1}};

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (const char byte : bytes)
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

// Every offset, count and reference comes from the list, so none is trusted: bytes are only read
// through `bytes`, and anything that doesn't fit makes the list a damaged one.
class Reader {
public:
    explicit Reader(std::string_view list) : list_(list) {}

    std::optional<Value> root() {
        if (list_.size() < magic.size() + trailerSize)
            return std::nullopt;
        const std::string_view trailer = list_.substr(list_.size() - trailerSize);
        offsetSize_ = static_cast<unsigned char>(trailer[6]);
        referenceSize_ = static_cast<unsigned char>(trailer[7]);
        const std::uint64_t count = bigEndian(trailer.substr(8, 8));
        const std::uint64_t table = bigEndian(trailer.substr(24, 8));
        list_.remove_suffix(trailerSize);
        if (!isWidth(offsetSize_) || !isWidth(referenceSize_) || table > list_.size() ||
            count > (list_.size() - table) / offsetSize_)
            return std::nullopt;
        offsets_ = list_.substr(table, count * offsetSize_);
        list_ = list_.substr(0, table);
        auto value = valueAt(bigEndian(trailer.substr(16, 8)));
        return isDamaged_ ? std::nullopt : value;
    }

private:
    static bool isWidth(std::size_t size) { return size >= 1 && size <= 8; }

    std::nullopt_t damaged() {
        isDamaged_ = true;
        return std::nullopt;
    }

    std::string_view bytes(std::uint64_t at, std::uint64_t count) {
        if (at > list_.size() || count > list_.size() - at) {
            isDamaged_ = true;
            return {};
        }
        return list_.substr(at, count);
    }

    bool isPaidFor(std::uint64_t size) {
        if (isDamaged_ || size > bytesLeft_) {
            isDamaged_ = true;
            return false;
        }
        bytesLeft_ -= size;
        return true;
    }

    // None without damage means that the value is left out.
    std::optional<Value> valueAt(std::uint64_t index) {
        // The list contains itself.
        if (std::ranges::find(around_, index) != around_.end() ||
            index >= offsets_.size() / offsetSize_ || valuesLeft_-- <= 0)
            return damaged();
        if (around_.size() > deepestNesting)
            return std::nullopt;
        const auto at = bigEndian(offsets_.substr(index * offsetSize_, offsetSize_));
        const std::string_view marker = bytes(at, 1);
        if (marker.empty())
            return damaged();
        around_.push_back(index);
        auto value = valueWith(static_cast<unsigned char>(marker.front()), at + 1);
        around_.pop_back();
        return value;
    }

    std::optional<Value> valueWith(unsigned char marker, std::uint64_t at) {
        const unsigned low = marker & 0x0F;
        switch (marker >> 4) {
        case 0x0:
            return low == 8 || low == 9 ? std::optional<Value>(low == 9) : damaged();
        case 0x1:
            return integer(low, at);
        case 0x2:
            return real(low, at);
        case 0x3:
            return date(low, at);
        case 0x8:
            return std::nullopt;
        default:
            return counted(marker, at);
        }
    }

    std::optional<Value> counted(unsigned char marker, std::uint64_t at) {
        std::uint64_t count = marker & 0x0F;
        if (count == 0x0F) {
            const std::string_view width = bytes(at, 1);
            if (width.empty() || width.front() < 0x10 || width.front() > 0x13)
                return damaged();
            const std::uint64_t size = 1U << (width.front() & 0x0F);
            count = bigEndian(bytes(at + 1, size));
            at += 1 + size;
        }
        switch (marker >> 4) {
        case 0x4:
            return data(bytes(at, count));
        case 0x5:
            return text(bytes(at, count));
        case 0x6:
            return count <= list_.size() ? wideText(bytes(at, 2 * count)) : damaged();
        case 0xA:
        case 0xC:
            return array(at, count);
        case 0xD:
            return dictionary(at, count);
        default:
            return damaged();
        }
    }

    std::optional<Value> integer(unsigned power, std::uint64_t at) {
        if (power > 4)
            return damaged();
        // Of sixteen bytes, the upper eight are only sign or overflow.
        const std::uint64_t size = 1U << power;
        const std::string_view digits = bytes(at, size);
        return Value(static_cast<std::int64_t>(
            bigEndian(digits.substr(digits.size() - std::min<std::size_t>(digits.size(), 8)))));
    }

    std::optional<Value> real(unsigned power, std::uint64_t at) {
        if (power == 2)
            return Value(static_cast<double>(
                std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(bytes(at, 4))))));
        if (power == 3)
            return Value(std::bit_cast<double>(bigEndian(bytes(at, 8))));
        return damaged();
    }

    std::optional<Value> date(unsigned power, std::uint64_t at) {
        const auto number = power == 3 ? real(power, at) : damaged();
        const double seconds = number ? std::floor(*number->as<double>()) : std::nan("");
        if (std::isnan(seconds))
            return damaged();
        // Beyond all dates in either direction, and small enough for sums.
        constexpr double far = 1e11;
        return Value(dateAt(dateEpoch + std::chrono::seconds(static_cast<std::int64_t>(
                                            std::clamp(seconds, -far, far)))));
    }

    std::optional<Value> data(std::string_view content) {
        if (!isPaidFor(content.size()))
            return std::nullopt;
        const auto* first = reinterpret_cast<const std::byte*>(content.data());
        return Value(Value::Data(first, first + content.size()));
    }

    std::optional<Value> text(std::string_view content) {
        return isPaidFor(content.size()) ? std::optional<Value>(std::string(content))
                                         : std::nullopt;
    }

    std::optional<Value> wideText(std::string_view content) {
        if (!isPaidFor(content.size()))
            return std::nullopt;
        std::u16string units;
        for (std::size_t at = 0; at < content.size(); at += 2)
            units += static_cast<char16_t>(bigEndian(content.substr(at, 2)));
        return Value(QString::fromStdU16String(units).toStdString());
    }

    std::optional<Value> valueReferredTo(std::string_view references, std::uint64_t number) {
        return valueAt(bigEndian(references.substr(number * referenceSize_, referenceSize_)));
    }

    // The references of so many values; none for a damaged list.
    std::string_view references(std::uint64_t at, std::uint64_t count) {
        if (count > list_.size()) {
            isDamaged_ = true;
            return {};
        }
        return bytes(at, count * referenceSize_);
    }

    std::optional<Value> array(std::uint64_t at, std::uint64_t count) {
        const std::string_view elements = references(at, count);
        Value::Array array;
        for (std::uint64_t number = 0; number < count && !isDamaged_; ++number) {
            if (auto value = valueReferredTo(elements, number))
                array.push_back(*std::move(value));
        }
        return array;
    }

    std::optional<Value> dictionary(std::uint64_t at, std::uint64_t count) {
        const std::string_view keys = references(at, count);
        const std::string_view elements = references(at + keys.size(), count);
        Value::Dictionary dictionary;
        for (std::uint64_t number = 0; number < count && !isDamaged_; ++number) {
            const auto key = valueReferredTo(keys, number);
            const auto* name = key ? key->as<std::string>() : nullptr;
            if (!name && around_.size() <= deepestNesting)
                return damaged();
            if (auto value = valueReferredTo(elements, number); value && name)
                dictionary.insert_or_assign(*name, *std::move(value));
        }
        return dictionary;
    }

    std::string_view list_;
    std::string_view offsets_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::vector<std::uint64_t> around_;
    int valuesLeft_ = mostValues;
    std::uint64_t bytesLeft_ = mostBytes;
    bool isDamaged_ = false;
};

} // namespace

bool isBinary(std::string_view list) { return list.starts_with("bplist"); }

std::optional<Value> decodeBinary(std::string_view list) {
    return list.starts_with(magic) ? Reader(list).root() : std::nullopt;
}

} // namespace velmorquit::PropertyList
