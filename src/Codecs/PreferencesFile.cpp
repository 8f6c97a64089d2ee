#include "Codecs/PreferencesFile.h"

#include "Codecs/PropertyList.h"
#include "Codecs/SmallFile.h"

#include <cstdlib>

namespace velmorquit {

namespace fs = std::filesystem;

namespace {

std::optional<Value> decoded(const fs::path& file) {
    const auto content = readSmallFile(file);
    return content ? PropertyList::decode(*content) : std::nullopt;
}

} // namespace

fs::path defaultPreferencesFile() {
    const char* configured = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    fs::path directory = configured ? configured : "";
    if (!directory.is_absolute())
        directory = fs::path(home ? home : "/") / ".config";
    return directory / "velmorquit" / "preferences.plist";
}

fs::path defaultBackupDestinationsFile() {
    return defaultPreferencesFile().replace_filename("backups.plist");
}

fs::path previousPreferencesFile(const fs::path& file) {
    fs::path previous = file;
    previous += "~";
    return previous;
}

std::optional<Value> storedPreference(const fs::path& file, const std::string& key) {
    std::error_code missing;
    const fs::path target = fs::canonical(file, missing);
    if (missing)
        return std::nullopt;
    for (const fs::path& state : {target, previousPreferencesFile(target)}) {
        const auto list = decoded(state);
        const auto* values = list ? list->as<Value::Dictionary>() : nullptr;
        if (!values)
            continue;
        const auto found = values->find(key);
        return found == values->end() ? std::nullopt : std::optional(found->second);
    }
    return std::nullopt;
}

} // namespace velmorquit
