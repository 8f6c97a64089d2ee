#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// All that the harnesses share. Each of them is a program that is run over and over with bytes as
/// somebody else might write them, and that ends where something isn't as it should be.
namespace velmorquit::fuzz {

/// Written by each harness: looks at one input.
void examine(std::string_view bytes);

/// Ends the program, saying what is broken, unless it holds.
void require(bool holds, const char* what);

[[nodiscard]] bool isUtf8(std::string_view text);

/// The parts between the separators, the empty ones included.
[[nodiscard]] std::vector<std::string> split(std::string_view text, char separator);

/// Takes an input apart, from its front. Where it has run out everything is 0 or empty.
class Input {
public:
    explicit Input(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool isEmpty() const { return rest_.empty(); }
    std::uint8_t byte();
    /// Of eight bytes, the lowest first.
    std::uint64_t number();
    /// At most `longest` bytes; the byte in front of them says how many.
    std::string text(std::size_t longest = 255);
    /// All before the next end of a line, which is passed.
    std::string line();
    [[nodiscard]] std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
};

} // namespace velmorquit::fuzz
