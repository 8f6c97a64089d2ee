#pragma once

#include "Services/QuitController/OpenApp.h"

#include <string>
#include <variant>
#include <vector>

/// Which applications the user means by a name.
namespace velmorquit::AppNames {

/// The applications that `name` stands for, read in the first of these ways that fits any:
/// exclusion key, name, process id. They may be different applications.
[[nodiscard]] std::vector<OpenApp> called(const std::string& name,
                                          const std::vector<OpenApp>& apps);

/// The same; if there are none, those whose names begin with `name`.
[[nodiscard]] std::vector<OpenApp> named(const std::string& name, const std::vector<OpenApp>& apps);

/// `found`, if all of it is one application (which may run more than once). Otherwise a text that
/// says between which ones to choose.
[[nodiscard]] std::variant<std::vector<OpenApp>, std::string> one(const std::string& name,
                                                                  std::vector<OpenApp> found);

[[nodiscard]] bool areCalledAlike(const std::vector<OpenApp>& apps);

/// Their names as a list within a sentence, each once.
[[nodiscard]] std::string list(const std::vector<OpenApp>& apps);

/// The replies to a name that fits several, or none.
[[nodiscard]] std::string severalBegin(const std::string& name, const std::string& list);
[[nodiscard]] std::string severalAreCalled(const std::string& name);
[[nodiscard]] std::string noneIsOpen(const std::string& name);

} // namespace velmorquit::AppNames
