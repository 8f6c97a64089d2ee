#pragma once

#include "Services/QuitController/OpenApp.h"

#include <string>
#include <variant>
#include <vector>

/// Which applications a person means by a name.
namespace velmorquit::AppNames {

/// Those that are called so, by the first way of reading it that fits any: the key of its
/// exclusion, its name, its process. They may be different applications.
[[nodiscard]] std::vector<OpenApp> called(const std::string& name,
                                          const std::vector<OpenApp>& apps);

/// The same, else those whose names begin like that.
[[nodiscard]] std::vector<OpenApp> named(const std::string& name, const std::vector<OpenApp>& apps);

/// Those found by a name that has to mean one application, which may run more than once. A text
/// says among which ones it leaves the choice.
[[nodiscard]] std::variant<std::vector<OpenApp>, std::string> one(const std::string& name,
                                                                  std::vector<OpenApp> found);

[[nodiscard]] bool areCalledAlike(const std::vector<OpenApp>& apps);

/// Their names in a list, as a part of a sentence; each of them once.
[[nodiscard]] std::string list(const std::vector<OpenApp>& apps);

/// What to say of a name that fits several, or none.
[[nodiscard]] std::string severalBegin(const std::string& name, const std::string& list);
[[nodiscard]] std::string severalAreCalled(const std::string& name);
[[nodiscard]] std::string noneIsOpen(const std::string& name);

} // namespace velmorquit::AppNames
