#include "Linux/Proc/ProcDirectory.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace velmorquit {

namespace {

/// Room for "2147483647/" and the name of any of a process's files.
using Path = std::array<char, 64>;

Path pathOf(ProcessId id, const char* name) {
    Path path{};
    std::snprintf(path.data(), path.size(), "%d/%s", id, name);
    return path;
}

} // namespace

ProcDirectory::ProcDirectory(const std::string& path)
    : directory_(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

ProcDirectory::~ProcDirectory() {
    if (directory_ >= 0)
        ::close(directory_);
}

std::vector<ProcessId> ProcDirectory::processes() const {
    std::vector<ProcessId> ids;
    if (directory_ < 0 || ::lseek(directory_, 0, SEEK_SET) != 0)
        return ids;
    alignas(dirent64) std::array<char, 32768> entries;
    for (;;) {
        const ssize_t size = ::getdents64(directory_, entries.data(), entries.size());
        if (size <= 0)
            return ids;
        for (ssize_t at = 0; at < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(entries.data() + at);
            const std::string_view name(entry->d_name);
            ProcessId id = 0;
            const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
            if (error == std::errc{} && end == name.data() + name.size())
                ids.push_back(id);
            at += entry->d_reclen;
        }
    }
}

std::string ProcDirectory::read(const std::string& name) const {
    std::string content;
    readInto(name.c_str(), content);
    return content;
}

std::string ProcDirectory::read(ProcessId id, const char* name) const {
    std::string content;
    read(id, name, content);
    return content;
}

void ProcDirectory::read(ProcessId id, const char* name, std::string& content) const {
    readInto(pathOf(id, name).data(), content);
}

std::string ProcDirectory::link(ProcessId id, const char* name) const {
    std::array<char, 4096> target;
    const ssize_t length =
        ::readlinkat(directory_, pathOf(id, name).data(), target.data(), target.size());
    return length <= 0 ? std::string() : std::string(target.data(), std::size_t(length));
}

void ProcDirectory::readInto(const char* name, std::string& content) const {
    constexpr std::size_t usual = 4096;
    content.clear();
    const int file = ::openat(directory_, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return;
    std::size_t length = 0;
    for (;;) {
        content.resize(std::max(content.capacity(), length + usual));
        const ssize_t count = ::read(file, content.data() + length, content.size() - length);
        length += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        // The kernel returns its short generated files in one piece.
        if (count <= 0 || length < content.size())
            break;
    }
    content.resize(length);
    ::close(file);
}

} // namespace velmorquit
