#include "Remote/Fields.h"

#include "Platform/Dates.h"
#include "Texts/Shown.h"

namespace velmorquit::remote {

namespace {

constexpr std::size_t longestText = 4000;

const Json& nothing() {
    static const Json null;
    return null;
}

} // namespace

std::string textOf(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json parsed(std::string_view text) {
    constexpr int deepest = 16;
    Json json = Json::parse(
        text, [](int depth, Json::parse_event_t, Json&) { return depth <= deepest; }, false);
    return json.is_discarded() ? Json() : json;
}

std::int64_t secondsOf(WallTime date) {
    return std::chrono::duration_cast<std::chrono::seconds>(date.time_since_epoch()).count();
}

WallTime dateOf(std::int64_t seconds) {
    return dateAt(std::chrono::sys_seconds(std::chrono::seconds(seconds)));
}

Json encode(const std::optional<WallTime>& date) { return date ? Json(secondsOf(*date)) : Json(); }

Json encode(const std::optional<std::string>& text) { return text ? Json(*text) : Json(); }

const Json& Fields::at(const char* key) const {
    if (!json_.is_object())
        return nothing();
    const auto found = json_.find(key);
    return found == json_.end() ? nothing() : *found;
}

std::optional<std::string> Fields::optionalText(const char* key) const {
    const Json& value = at(key);
    if (!value.is_string())
        return std::nullopt;
    return shownText(value.get_ref<const std::string&>(), longestText);
}

std::string Fields::lines(const char* key) const {
    const Json& value = at(key);
    return value.is_string() ? value.get<std::string>() : std::string();
}

std::vector<std::string> Fields::texts(const char* key) const {
    return list(key, [](const Json& element) {
        return element.is_string() ? shownText(element.get_ref<const std::string&>(), longestText)
                                   : std::string();
    });
}

bool Fields::flag(const char* key) const {
    const Json& value = at(key);
    return value.is_boolean() && value.get<bool>();
}

std::optional<double> Fields::fraction(const char* key) const {
    const Json& value = at(key);
    if (!value.is_number())
        return std::nullopt;
    return value.get<double>();
}

std::optional<WallTime> Fields::date(const char* key) const {
    if (!at(key).is_number())
        return std::nullopt;
    return dateOf(number<std::int64_t>(key));
}

} // namespace velmorquit::remote
