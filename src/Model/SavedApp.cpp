#include "Model/SavedApp.h"

#include "Texts/Shown.h"

#include <nlohmann/json.hpp>

namespace velmorquit::SavedApps {

namespace {

using Json = nlohmann::ordered_json;

std::optional<std::string> textAt(const Json& record, const char* key) {
    const auto found = record.find(key);
    if (found == record.end() || !found->is_string())
        return std::nullopt;
    return found->get<std::string>();
}

} // namespace

std::string encode(const std::vector<SavedApp>& apps) {
    Json list = Json::array();
    for (const SavedApp& app : apps)
        list.push_back({{"name", app.name}, {"path", app.path}});
    return list.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<std::vector<SavedApp>> decode(std::string_view json) {
    const Json list = Json::parse(json, nullptr, false);
    if (!list.is_array())
        return std::nullopt;
    std::vector<SavedApp> apps;
    for (const Json& record : list) {
        if (!record.is_object())
            return std::nullopt;
        auto name = textAt(record, "name");
        auto path = textAt(record, "path");
        if (!name || !path)
            return std::nullopt;
        const std::string shown = shownName(*name);
        apps.push_back({shown.empty() ? shownName(*path) : shown, std::move(*path)});
    }
    return apps;
}

bool canBeStored(const SavedApp& app) {
    const auto back = decode(encode({app}));
    return back && back->size() == 1 && back->front().path == app.path;
}

} // namespace velmorquit::SavedApps
