#include "Fuzz/Fuzz.h"
#include "Model/SavedApp.h"

using namespace velmorquit;

/// The stored list of what the last run has closed, and names and paths that are stored.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view json(reinterpret_cast<const char*>(data), size);
    if (const auto apps = SavedApps::decode(json)) {
        fuzz::require(apps->size() <= size, "there are no more than there is room for");
        fuzz::require(SavedApps::decode(SavedApps::encode(*apps)) == apps,
                      "what was read is stored as it is");
    }
    constexpr std::size_t mostPaths = 3;
    std::vector<SavedApp> apps;
    for (const std::string& path : fuzz::split(json, '\n')) {
        if (apps.size() == mostPaths)
            break;
        apps.push_back({.name = path, .path = path});
        const auto back = SavedApps::decode(SavedApps::encode({apps.back()}));
        fuzz::require(back && back->size() == 1, "what is stored can be read");
        fuzz::require(SavedApps::canBeStored(apps.back()) == fuzz::isUtf8(path),
                      "a path comes back if it is a text");
    }
    const std::string text = SavedApps::encode(apps);
    fuzz::require(fuzz::isUtf8(text), "what is stored is a text");
    // A byte that is no text takes three, a control character six.
    fuzz::require(text.size() <= 12 * size + 24 * apps.size() + 2, "and no longer than it must be");
    return 0;
}
