#include "Sources.h"

#include "Repository.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>

namespace velmorquit::tmutil::Sources {

namespace fs = std::filesystem;

namespace {

bool liesIn(const std::string& path, const std::string& folder) {
    return path == folder || folder == "/" || path.starts_with(folder + '/');
}

std::string home() {
    const char* home = std::getenv("HOME");
    return home ? home : "";
}

/// Below the home folder: things that can be regenerated, or that were thrown away.
constexpr std::array inHome{".cache",
                            ".local/share/Trash",
                            ".local/share/gvfs-metadata",
                            ".local/share/baloo",
                            ".local/share/tracker",
                            ".local/share/flatpak/repo",
                            ".gvfs",
                            ".thumbnails",
                            ".xsession-errors"};
/// The same with wildcards.
constexpr std::array inHomePatterns{".var/app/*/cache", ".config/*/Cache", ".config/*/Code Cache",
                                    ".config/*/GPUCache", "snap/*/*/.cache"};
constexpr std::array inSystem{"/proc",    "/sys",       "/dev",     "/run",      "/tmp",
                              "/var/tmp", "/var/cache", "/var/run", "/swapfile", "/swap.img"};
/// In any folder.
constexpr std::array anywhere{".Trash-[0-9]*", "lost+found"};

} // namespace

Outcome<std::vector<std::string>> resolve(const std::vector<std::string>& names,
                                          const std::string& place) {
    std::vector<std::string> sources;
    for (const std::string& name : names.empty() ? std::vector{home()} : names) {
        std::error_code error;
        const fs::path path = fs::canonical(name, error);
        if (error)
            return Problem{localized("La cartella da salvare %@ non c’è.", name)};
        if (liesIn(path.string(), place))
            return Problem{localized("%@ è nella destinazione stessa: i backup non possono stare "
                                     "dove sta ciò che salvano.",
                                     path.string())};
        if (std::ranges::find(sources, path.string()) == sources.end())
            sources.push_back(path.string());
    }
    return sources;
}

std::vector<std::string> excludes(const Destination& destination,
                                  const std::vector<Destination>& all) {
    std::vector<std::string> patterns(anywhere.begin(), anywhere.end());
    const auto isWanted = [&](const std::string& folder) {
        return std::ranges::any_of(
            destination.sources, [&](const std::string& source) { return liesIn(source, folder); });
    };
    const auto leaveOut = [&](const std::string& folder) {
        if (!isWanted(folder))
            patterns.push_back(escapedPattern(folder));
    };
    std::ranges::for_each(inSystem, leaveOut);
    std::error_code error;
    const fs::path canonical = fs::canonical(home(), error);
    const std::string base = error ? home() : canonical.string();
    if (!base.empty()) {
        for (const char* name : inHome)
            leaveOut(base + '/' + name);
        for (const char* name : inHomePatterns)
            patterns.push_back(escapedPattern(base) + '/' + name);
    }
    for (const Destination& other : all)
        patterns.push_back(escapedPattern(other.path));
    patterns.insert(patterns.end(), destination.excludes.begin(), destination.excludes.end());
    return patterns;
}

} // namespace velmorquit::tmutil::Sources
