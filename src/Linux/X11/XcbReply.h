#pragma once

#include <cstdlib>
#include <memory>

namespace velmorquit {

/// Frees what xcb allocated.
struct XcbFree {
    void operator()(void* memory) const noexcept { std::free(memory); }
};

/// A reply of the X server, null when the request failed (the window has gone).
template <class Reply> using XcbReply = std::unique_ptr<Reply, XcbFree>;

template <class Reply> [[nodiscard]] XcbReply<Reply> owned(Reply* reply) {
    return XcbReply<Reply>(reply);
}

} // namespace velmorquit
