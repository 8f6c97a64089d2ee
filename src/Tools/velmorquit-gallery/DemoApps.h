#pragma once

#include "Model/SavedApp.h"
#include "Simulated/SimulatedDesktop.h"
#include "Texts/Language.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Applications that nobody has, for pictures.
namespace velmorquit::DemoApps {

/// Lets the desktop know the files that start them, whether they are open or not.
void install(SimulatedDesktop& desktop);

/// Opens those of which the English names are given, all with different figures.
void open(SimulatedDesktop& desktop, Language language, const std::vector<std::string>& names);

/// Opens so many, of every kind several.
void openMany(SimulatedDesktop& desktop, Language language, int count);

/// Starts the one of that English name.
SimulatedApplication& start(SimulatedDesktop& desktop, Language language, std::string_view name);

/// Those of which the English names are given, as a run that has closed them keeps them.
[[nodiscard]] std::vector<SavedApp> saved(Language language, const std::vector<std::string>& names);

/// What the one of that English name is called.
[[nodiscard]] std::string nameOf(Language language, std::string_view name);

/// The key by which the exclusions know it.
[[nodiscard]] std::string key(std::string_view name);

} // namespace velmorquit::DemoApps
