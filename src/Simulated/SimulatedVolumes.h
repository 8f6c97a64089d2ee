#pragma once

#include "Loop/Subscribers.h"
#include "Platform/Volumes.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace velmorquit {

/// The volumes of the simulated desktop.
class SimulatedVolumes final : public Volumes {
public:
    explicit SimulatedVolumes(std::function<void(std::string_view)> log) : log_(std::move(log)) {}

    /// Mounts a volume that is in use for so many attempts to eject it.
    void mount(Volume volume, int busyTimes = 0) {
        busy_[volume.path] = busyTimes;
        volumes_.push_back(std::move(volume));
        observers_.tell();
    }
    /// Mounts a stick.
    void mountStick(const std::string& name, int busyTimes = 0) {
        Volume stick;
        stick.path = "/media/" + name;
        stick.name = name;
        stick.capacity = 1 << 20;
        stick.isInternal = false;
        mount(std::move(stick), busyTimes);
    }
    void unmount(const std::string& path) {
        std::erase_if(volumes_, [&](const Volume& volume) { return volume.path == path; });
        observers_.tell();
    }

    [[nodiscard]] std::vector<Volume> mounted() const override { return volumes_; }
    bool unmountAndEject(const std::string& path) override {
        log_("eject " + path);
        if (busy_[path]-- > 0)
            return false;
        unmount(path);
        return true;
    }
    [[nodiscard]] Handle observe(std::function<void()> told) override {
        return observers_.add(std::move(told));
    }

private:
    std::function<void(std::string_view)> log_;
    std::vector<Volume> volumes_;
    std::map<std::string, int> busy_;
    Subscribers observers_;
};

} // namespace velmorquit
