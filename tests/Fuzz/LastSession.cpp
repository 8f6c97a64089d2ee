#include "Fuzz/Fuzz.h"
#include "Model/SavedApp.h"

/// The stored list of what the last run has closed, and names and paths that are stored.
void velmorquit::fuzz::examine(std::string_view bytes) {
    if (const auto apps = SavedApps::decode(bytes)) {
        require(apps->size() <= bytes.size(), "there are no more than there is room for");
        require(SavedApps::decode(SavedApps::encode(*apps)) == apps,
                "what was read is stored as it is");
    }
    constexpr std::size_t mostPaths = 3;
    std::vector<SavedApp> apps;
    for (const std::string& path : split(bytes, '\n')) {
        if (apps.size() == mostPaths)
            break;
        apps.push_back({.name = path, .path = path});
        const auto back = SavedApps::decode(SavedApps::encode({apps.back()}));
        require(back && back->size() == 1, "what is stored can be read");
        require(SavedApps::canBeStored(apps.back()) == isUtf8(path),
                "a path comes back if it is a text");
    }
    const std::string text = SavedApps::encode(apps);
    require(isUtf8(text), "what is stored is a text");
    // A byte that is no text takes three, a control character six.
    require(text.size() <= 12 * bytes.size() + 24 * apps.size() + 2,
            "and no longer than it must be");
}
