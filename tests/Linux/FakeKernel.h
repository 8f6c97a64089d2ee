#pragma once

#include "support/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

namespace velmorquit {

/// A folder with as much of /proc and /sys as tells of block devices and mounts.
class FakeKernel {
public:
    FakeKernel() {
        for (const char* folder : {"proc/self", "sys/dev/block", "sys/class/block", "dev"})
            std::filesystem::create_directories(root_ / folder);
    }

    [[nodiscard]] std::string root() const { return root_.string(); }

    /// `place` is "sda" for a disk, "sda/sda1" for a partition.
    void device(const std::string& place, const std::string& number,
                const std::vector<std::string>& madeOf = {}, const std::string& image = {}) {
        const std::filesystem::path path = root_ / "sys/devices" / place;
        const std::string name = path.filename();
        folder_.write(path / "dev", number + '\n');
        if (place.find('/') != std::string::npos)
            folder_.write(path / "partition", "1\n");
        if (!image.empty())
            folder_.write(path / "loop/backing_file", image + '\n');
        std::filesystem::create_directory(path / "slaves");
        for (const std::string& lower : madeOf)
            std::filesystem::create_directory_symlink(root_ / "sys/class/block" / lower,
                                                      path / "slaves" / lower);
        std::filesystem::create_directory_symlink(path, root_ / "sys/dev/block" / number);
        std::filesystem::create_directory_symlink(path, root_ / "sys/class/block" / name);
    }

    void pool(const std::vector<std::string>& members) {
        const std::filesystem::path devices = root_ / "sys/fs/btrfs/some-id/devices";
        std::filesystem::create_directories(devices);
        for (const std::string& member : members)
            std::filesystem::create_directory_symlink(root_ / "sys/class/block" / member,
                                                      devices / member);
    }

    /// `what` is "ext4 /dev/sda1 rw": the type, the source and the options.
    void mount(const std::string& number, const std::string& path, const std::string& what) {
        mounts_.push_back("40 1 " + number + " / " + path + " rw shared:1 - " + what);
        writeMounts();
    }
    void unmount(const std::string& path) {
        std::erase_if(mounts_, [&](const std::string& line) {
            return line.find(' ' + path + ' ') != std::string::npos;
        });
        writeMounts();
    }
    void swaps(const std::string& lines) {
        folder_.write("proc/swaps", "Filename\tType\tSize\tUsed\tPriority\n" + lines);
    }

private:
    void writeMounts() {
        std::string all;
        for (const std::string& line : mounts_)
            all += line + '\n';
        folder_.write("proc/self/mountinfo", all);
    }

    const TemporaryFolder folder_;
    const std::filesystem::path& root_ = folder_.path();
    std::vector<std::string> mounts_;
};

} // namespace velmorquit
