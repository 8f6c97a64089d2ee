#include "Linux/Volumes/DriveClaims.h"

#include <algorithm>

namespace velmorquit {

DriveClaims::Claim::Claim(DriveClaims& claims, std::set<QString> drives)
    : claims_(claims), drives_(std::move(drives)) {
    std::unique_lock lock(claims_.mutex_);
    claims_.released_.wait(lock, [this] {
        return std::ranges::none_of(
            drives_, [this](const QString& drive) { return claims_.claimed_.contains(drive); });
    });
    claims_.claimed_.insert(drives_.begin(), drives_.end());
}

DriveClaims::Claim::~Claim() {
    {
        const std::lock_guard lock(claims_.mutex_);
        for (const QString& drive : drives_)
            claims_.claimed_.erase(drive);
    }
    claims_.released_.notify_all();
}

std::set<QString> DriveClaims::unfinished(const std::string& path) const {
    const std::lock_guard lock(mutex_);
    const auto found = unfinished_.find(path);
    return found == unfinished_.end() ? std::set<QString>() : found->second;
}

void DriveClaims::note(const std::vector<std::string>& paths, const std::set<QString>& drives) {
    const std::lock_guard lock(mutex_);
    for (const std::string& path : paths) {
        if (drives.empty())
            unfinished_.erase(path);
        else
            unfinished_[path] = drives;
    }
}

} // namespace velmorquit
