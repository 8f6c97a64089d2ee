#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace velmorquit::tmutil {

/// Why something could not be done.
struct Problem {
    std::string sentence; ///< for a person, on one line
};

/// What an operation gives, or why it gives nothing.
template <class Type> using Outcome = std::variant<Type, Problem>;

/// The reason when there is one, else null.
template <class Type> [[nodiscard]] const Problem* problemOf(const Outcome<Type>& outcome) {
    return std::get_if<Problem>(&outcome);
}

} // namespace velmorquit::tmutil
