#include "Services/ExternalDrives.h"

#include "Texts/Shown.h"

#include <algorithm>

namespace velmorquit::ExternalDrives {

namespace {

/// A volume not known to be built in counts as external only if it can be taken away.
bool isExternal(const Volume& volume) {
    return volume.isInternal == false || volume.isRemovable == true || volume.isEjectable == true;
}

bool isListed(const Volume& volume) {
    return volume.path != "/" && !volume.holdsSystem && volume.name &&
           volume.capacity.value_or(0) > 0 && volume.isBrowsable != false &&
           volume.isLocal != false && isExternal(volume);
}

} // namespace

std::vector<Drive> connected(const Volumes& volumes) {
    std::vector<Drive> drives;
    for (const Volume& volume : volumes.mounted()) {
        if (!isListed(volume))
            continue;
        std::string name = shownName(*volume.name);
        drives.push_back({name.empty() ? shownName(volume.path) : std::move(name), volume.path});
    }
    return drives;
}

Task<Ejected> ejectAll(MainLoop& /*loop*/, Volumes& volumes) {
    Ejected result;
    const std::vector<Drive> drives = connected(volumes);
    for (const Drive& drive : drives) {
        bool isGone = false;
        for (int attempt = 1; attempt <= mostAttempts && !isGone; ++attempt) {
            if (attempt > 1)
                co_await sleep(betweenAttempts);
            OffMain ejecting(
                [&volumes, path = drive.url] { return volumes.unmountAndEject(path); });
            isGone = co_await ejecting;
        }
        const std::vector<Drive> left = connected(volumes);
        if (!isGone && std::ranges::find(left, drive) != left.end())
            result.failed.push_back(drive.name);
        else
            ++result.count;
    }

    const std::vector<Drive> left = connected(volumes);
    result.count += static_cast<int>(std::erase_if(result.failed, [&](const std::string& name) {
        return std::ranges::find(left, name, &Drive::name) == left.end();
    }));
    co_return result;
}

} // namespace velmorquit::ExternalDrives
