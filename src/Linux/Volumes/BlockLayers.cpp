#include "Linux/Volumes/BlockLayers.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace velmorquit {

namespace {

namespace fs = std::filesystem;
using MountText::deviceNumber;
using MountText::partsOfOverlay;
using MountText::split;
using MountText::unescaped;

std::string firstLine(const fs::path& file) {
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

std::vector<fs::path> entriesOf(const fs::path& directory) {
    std::vector<fs::path> entries;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error))
        entries.push_back(entry->path());
    return entries;
}

bool isOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, name) != names.end();
}

} // namespace

bool isPlaceOfSystem(std::string_view mountPoint) {
    const std::vector<std::string> parts = split(mountPoint, '/');
    if (parts.empty())
        return true;
    // A user's whole home is part of the system, a drive mounted inside it is not.
    if (parts[0] == "home")
        return parts.size() <= 2;
    if (parts[0] == "run")
        return parts.size() == 1 || !isOf(parts[1], {"media", "user"});
    return parts[0].starts_with("lib") ||
           isOf(parts[0],
                {"bin",  "boot", "cdrom", "dev",  "efi", "etc", "gnu",     "nix", "opt", "ostree",
                 "proc", "root", "sbin",  "snap", "srv", "sys", "sysroot", "tmp", "usr", "var"});
}

BlockLayers::BlockLayers(std::string root) : root_(std::move(root)) {
    readPools();
    readMounts();
    findSystem();
    readSwaps();
}

bool BlockLayers::isMounted(std::string_view path) const {
    return std::ranges::any_of(mounts_, [&](const Mount& mount) { return mount.path == path; });
}

Devices BlockLayers::beneath(dev_t device) const {
    Devices found;
    collect(device, Images::asDevices, found);
    return found;
}

Devices BlockLayers::beneathFileSystem(dev_t device) const {
    Devices found;
    collectFileSystem(device, Images::asDevices, found);
    return found;
}

Devices BlockLayers::beneathAll(dev_t device) const {
    Devices found;
    collectFileSystem(device, Images::withTheirFiles, found);
    return found;
}

void BlockLayers::collectFileSystem(dev_t device, Images images, Devices& found) const {
    collect(device, images, found);
    for (const Devices& pool : pools_) {
        if (pool.contains(device)) {
            for (const dev_t member : pool)
                collect(member, images, found);
        }
    }
}

void BlockLayers::collect(dev_t device, Images images, Devices& found) const {
    if (device == 0 || !found.insert(device).second)
        return;
    const std::string link = root_ + "/sys/dev/block/" + std::to_string(major(device)) + ':' +
                             std::to_string(minor(device));
    std::error_code error;
    const fs::path directory = fs::canonical(link, error);
    if (error)
        return;
    if (fs::exists(directory / "partition", error))
        collect(numberIn(directory.parent_path()), images, found);
    for (const fs::path& slave : entriesOf(directory / "slaves"))
        collect(numberIn(slave), images, found);
    const std::string image = firstLine(directory / "loop/backing_file");
    if (images == Images::withTheirFiles && !image.empty()) {
        std::set<const MountLine*> seen;
        found.merge(devicesOfFile(image, seen));
    }
}

dev_t BlockLayers::numberIn(const std::string& directory) const {
    return deviceNumber(firstLine(fs::path(directory) / "dev"));
}

// Nothing below /dev is a file system that could hang.
dev_t BlockLayers::deviceOfNode(const std::string& node) const {
    if (!node.starts_with("/dev/"))
        return 0;
    struct stat status{};
    if (::stat((root_ + node).c_str(), &status) == 0 && S_ISBLK(status.st_mode))
        return status.st_rdev;
    std::error_code error;
    const fs::path real = fs::weakly_canonical(root_ + node, error);
    return error ? 0 : numberIn(root_ + "/sys/class/block/" + real.filename().string());
}

std::vector<std::string> BlockLayers::linesOf(const std::string& file) const {
    std::ifstream stream(root_ + file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

void BlockLayers::readPools() {
    for (const fs::path& pool : entriesOf(root_ + "/sys/fs/btrfs")) {
        Devices members;
        for (const fs::path& member : entriesOf(pool / "devices"))
            members.insert(numberIn(member));
        members.erase(0);
        if (!members.empty())
            pools_.push_back(std::move(members));
    }
}

void BlockLayers::readMounts() {
    for (const std::string& text : linesOf("/proc/self/mountinfo")) {
        if (auto line = MountLine::from(text))
            lines_.push_back(*std::move(line));
    }
    for (const MountLine& line : lines_) {
        std::set<const MountLine*> seen;
        mounts_.push_back({line.path, devicesOf(line, seen), line.isWhole});
    }
}

Devices BlockLayers::devicesOf(const MountLine& line, std::set<const MountLine*>& seen) const {
    Devices found;
    if (!seen.insert(&line).second)
        return found;
    // A file system without a device number of its own names the devices that it was made of.
    if (major(line.device) != 0)
        collectFileSystem(line.device, Images::withTheirFiles, found);
    for (const std::string& node : split(line.source, ':'))
        collectFileSystem(deviceOfNode(node), Images::withTheirFiles, found);
    if (line.type == "overlay") {
        for (const std::string& part : partsOfOverlay(line.options))
            found.merge(devicesOfFile(part, seen));
    }
    return found;
}

Devices BlockLayers::devicesOfFile(std::string_view path, std::set<const MountLine*>& seen) const {
    const MountLine* line = lineCovering(path);
    return line ? devicesOf(*line, seen) : Devices();
}

const MountLine* BlockLayers::lineCovering(std::string_view path) const {
    const MountLine* covering = nullptr;
    for (const MountLine& line : lines_) {
        const bool covers = line.path == "/" || path == line.path ||
                            (path.starts_with(line.path) && path[line.path.size()] == '/');
        // Of several mounts at the same place the last one is on top.
        if (path.starts_with('/') && covers &&
            (!covering || line.path.size() >= covering->path.size()))
            covering = &line;
    }
    return covering;
}

void BlockLayers::findSystem() {
    isSystemHidden_ = true;
    bool isWhole = true;
    for (std::size_t index = 0; index < lines_.size(); ++index) {
        const MountLine& line = lines_[index];
        if (!isPlaceOfSystem(line.path))
            continue;
        const Devices& devices = mounts_[index].devices;
        ofSystem_.insert(devices.begin(), devices.end());
        isSystemInPool_ |= line.type == "zfs";
        if (line.path == "/")
            isSystemHidden_ = false;
        // File systems of other types are in memory or on a network, or have a device.
        if (devices.empty() && isOf(line.type, {"aufs", "bcachefs", "btrfs"}))
            isWhole = false;
        if (devices.empty() && line.type == "overlay" && line.path == "/")
            isWhole = false;
    }
    isSystemHidden_ |= !isWhole;
}

void BlockLayers::readSwaps() {
    for (const std::string& text : linesOf("/proc/swaps")) {
        if (!text.starts_with('/'))
            continue;
        const std::string path = unescaped(text.substr(0, text.find_first_of(" \t")));
        std::set<const MountLine*> seen;
        const dev_t device = deviceOfNode(path);
        const Devices devices = device != 0 ? beneathAll(device) : devicesOfFile(path, seen);
        ofSystem_.insert(devices.begin(), devices.end());
    }
}

} // namespace velmorquit
