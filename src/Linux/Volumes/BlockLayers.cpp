#include "Linux/Volumes/BlockLayers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace velmorquit {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    std::stringstream stream{std::string(text)};
    for (std::string part; std::getline(stream, part, separator);) {
        if (!part.empty())
            parts.push_back(part);
    }
    return parts;
}

/// The kernel writes spaces and the like as three octal digits.
std::string unescaped(std::string_view text) {
    const auto isOctal = [](char digit) { return digit >= '0' && digit <= '7'; };
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && at + 3 < text.size() &&
            std::all_of(&text[at + 1], &text[at + 3] + 1, isOctal)) {
            plain += static_cast<char>((text[at + 1] - '0') * 64 + (text[at + 2] - '0') * 8 +
                                       (text[at + 3] - '0'));
            at += 3;
        } else {
            plain += text[at];
        }
    }
    return plain;
}

/// "8:1"; 0 where it is none.
dev_t numberFrom(std::string_view text) {
    unsigned int major = 0;
    unsigned int minor = 0;
    const char* end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, major);
    if (first.ec != std::errc{} || first.ptr == end || *first.ptr != ':')
        return 0;
    const auto second = std::from_chars(first.ptr + 1, end, minor);
    return second.ec == std::errc{} ? makedev(major, minor) : 0;
}

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

/// The directories that an overlay was made of.
std::vector<std::string> partsOfOverlay(std::string_view options) {
    std::vector<std::string> parts;
    for (const std::string& option : split(options, ',')) {
        const std::size_t equals = option.find('=');
        const std::string name = option.substr(0, equals);
        if (equals == std::string::npos || (!name.starts_with("lowerdir") && name != "upperdir"))
            continue;
        for (const std::string& part : split(std::string_view(option).substr(equals + 1), ':'))
            parts.push_back(unescaped(part));
    }
    return parts;
}

bool isOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, name) != names.end();
}

} // namespace

bool isPlaceOfSystem(std::string_view mountPoint) {
    const std::vector<std::string> parts = split(mountPoint, '/');
    if (parts.empty())
        return true;
    // Somebody's whole home is, a drive that he put into it is not.
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
        std::set<const Line*> seen;
        found.merge(devicesOfFile(image, seen));
    }
}

dev_t BlockLayers::numberIn(const std::string& directory) const {
    return numberFrom(firstLine(fs::path(directory) / "dev"));
}

// What lies below /dev is never a file system that could hang.
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
        const std::vector<std::string> fields = split(text, ' ');
        const auto dash = std::ranges::find(fields, "-");
        // Before the dash there are six fields and then optional ones, after it three.
        if (std::distance(fields.begin(), dash) < 6 || std::distance(dash, fields.end()) < 3)
            continue;
        lines_.push_back({.path = unescaped(fields[4]),
                          .type = dash[1],
                          .source = unescaped(dash[2]),
                          .options = std::distance(dash, fields.end()) > 3 ? dash[3] : "",
                          .device = numberFrom(fields[2]),
                          .isWhole = fields[3] == "/"});
    }
    for (const Line& line : lines_) {
        std::set<const Line*> seen;
        mounts_.push_back({line.path, devicesOf(line, seen), line.isWhole});
    }
}

Devices BlockLayers::devicesOf(const Line& line, std::set<const Line*>& seen) const {
    Devices found;
    if (!seen.insert(&line).second)
        return found;
    // A file system that has no device number of its own says which devices it was made of.
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

Devices BlockLayers::devicesOfFile(std::string_view path, std::set<const Line*>& seen) const {
    const Line* line = lineCovering(path);
    return line ? devicesOf(*line, seen) : Devices();
}

const BlockLayers::Line* BlockLayers::lineCovering(std::string_view path) const {
    const Line* covering = nullptr;
    for (const Line& line : lines_) {
        const bool covers = line.path == "/" || path == line.path ||
                            (path.starts_with(line.path) && path[line.path.size()] == '/');
        // Of several at the same place the last one is on top.
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
        const Line& line = lines_[index];
        if (!isPlaceOfSystem(line.path))
            continue;
        const Devices& devices = mounts_[index].devices;
        ofSystem_.insert(devices.begin(), devices.end());
        isSystemInPool_ |= line.type == "zfs";
        if (line.path == "/")
            isSystemHidden_ = false;
        // Others are in memory or on a network, or have a device.
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
        std::set<const Line*> seen;
        const dev_t device = deviceOfNode(path);
        const Devices devices = device != 0 ? beneathAll(device) : devicesOfFile(path, seen);
        ofSystem_.insert(devices.begin(), devices.end());
    }
}

} // namespace velmorquit
