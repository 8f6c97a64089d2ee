#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace velmorquit::tmutil {

/// Why something could not be done.
struct Problem {
    std::string sentence; ///< for the user, on one line
};

/// The result of an operation, or why there is none.
template <class Type> using Outcome = std::variant<Type, Problem>;

/// The reason if there is one, else null.
template <class Type> [[nodiscard]] const Problem* problemOf(const Outcome<Type>& outcome) {
    return std::get_if<Problem>(&outcome);
}

} // namespace velmorquit::tmutil
