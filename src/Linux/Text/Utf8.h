#pragma once

#include <string>
#include <string_view>

namespace velmorquit {

/// `bytes` as valid UTF-8: unchanged if they are valid, else read as Latin-1.
[[nodiscard]] std::string utf8(std::string_view bytes);

} // namespace velmorquit
