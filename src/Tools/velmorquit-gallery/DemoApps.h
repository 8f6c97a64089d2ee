#pragma once

#include "Model/SavedApp.h"
#include "Simulated/SimulatedDesktop.h"
#include "Texts/Language.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Fictitious applications for pictures.
namespace velmorquit::DemoApps {

/// Adds the files that start them to the desktop, whether they are open or not.
void install(SimulatedDesktop& desktop);

/// Opens those with these English names, each with different figures.
void open(SimulatedDesktop& desktop, Language language, const std::vector<std::string>& names);

/// Opens so many of them, several of each kind.
void openMany(SimulatedDesktop& desktop, Language language, int count);

/// Starts the application with that English name.
SimulatedApplication& start(SimulatedDesktop& desktop, Language language, std::string_view name);

/// Those with these English names, as saved by a run that has closed them.
[[nodiscard]] std::vector<SavedApp> saved(Language language, const std::vector<std::string>& names);

/// The displayed name of the application with that English name.
[[nodiscard]] std::string nameOf(Language language, std::string_view name);

/// Its key for exclusions.
[[nodiscard]] std::string key(std::string_view name);

} // namespace velmorquit::DemoApps
