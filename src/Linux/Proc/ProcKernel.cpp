#include "Linux/Proc/ProcKernel.h"

#include "Linux/Proc/ProcFile.h"

#include <algorithm>
#include <charconv>

#include <unistd.h>

namespace velmorquit {

ProcessId ProcKernel::ownProcessId() const { return ::getpid(); }

std::optional<std::uint64_t> ProcKernel::footprint(ProcessId id) const {
    return footprintFromStatus(readProcFile(id, "status"));
}

std::optional<std::uint64_t> footprintFromStatus(std::string_view status) {
    std::optional<std::uint64_t> bytes;
    for (const std::string_view field : {"\nRssAnon:", "\nRssShmem:", "\nVmSwap:"}) {
        const std::size_t found = status.find(field);
        if (found == std::string_view::npos)
            continue;
        std::string_view rest = status.substr(found + field.size());
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
        std::uint64_t kibibytes = 0;
        const auto [end, error] =
            std::from_chars(rest.data(), rest.data() + rest.size(), kibibytes);
        if (error == std::errc{})
            bytes = bytes.value_or(0) + kibibytes * 1024;
    }
    return bytes;
}

} // namespace velmorquit
