#include "Linux/Proc/ProcFile.h"

#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace velmorquit {

std::string readProcFile(ProcessId id, std::string_view name) {
    const std::string path = "/proc/" + std::to_string(id) + '/' + std::string(name);
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return {};
    std::string content;
    std::array<char, 4096> buffer;
    for (;;) {
        const ssize_t count = ::read(file, buffer.data(), buffer.size());
        if (count <= 0)
            break;
        content.append(buffer.data(), static_cast<std::size_t>(count));
    }
    ::close(file);
    return content;
}

} // namespace velmorquit
