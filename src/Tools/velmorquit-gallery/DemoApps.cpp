#include "DemoApps.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace velmorquit::DemoApps {
namespace {

struct DemoApp {
    const char* italian;
    const char* english;
    const char* icon;
    double mebibytes;
};

constexpr std::array apps{
    DemoApp{"Navigo", "Wayfarer", "navigo", 2191.4},
    DemoApp{"Officina", "Workshop", "officina", 1648.6},
    DemoApp{"Tavolozza", "Palette", "tavolozza", 986.3},
    DemoApp{"Melodia", "Melody", "melodia", 512.4},
    DemoApp{"Contabile", "Ledger", "contabile", 412.5},
    DemoApp{"Archivio", "Archive", "archivio", 301.2},
    DemoApp{"Postale", "Postbox", "postale", 238},
    DemoApp{"Agenda", "Planner", "agenda", 96.7},
    DemoApp{"Fotogrammi", "Frames", "fotogrammi", 604.9},
    DemoApp{"Chiacchiere", "Chatter", "chiacchiere", 377.1},
    DemoApp{"Appunti", "Jottings", "appunti", 142.6},
    DemoApp{"Atlante", "Atlas", "atlante", 284.4},
    DemoApp{"Comandi", "Console", "comandi", 61.5},
};

std::uint64_t bytes(double mebibytes) { return static_cast<std::uint64_t>(mebibytes * (1 << 20)); }

SimulatedApplication& openOne(SimulatedDesktop& desktop, const DemoApp& app, std::string name,
                              std::uint64_t memory) {
    return desktop.open(std::move(name), memory)
        .identified(key(app.english))
        .withIcon({.name = {}, .file = ":/gallery/" + std::string(app.icon) + ".svg", .image = {}});
}

std::string nameOf(const DemoApp& app, Language language) {
    return language == Language::italian ? app.italian : app.english;
}

} // namespace

std::string key(std::string_view name) { return "org.example." + std::string(name); }

SimulatedApplication& start(SimulatedDesktop& desktop, Language language, std::string_view name) {
    const auto app = std::ranges::find(apps, name, &DemoApp::english);
    if (app == apps.end())
        throw std::out_of_range(std::string(name));
    return openOne(desktop, *app, nameOf(*app, language), bytes(app->mebibytes));
}

void open(SimulatedDesktop& desktop, Language language, const std::vector<std::string>& names) {
    for (const std::string& name : names)
        start(desktop, language, name);
}

void openMany(SimulatedDesktop& desktop, Language language, int count) {
    for (int number = 0; number < count; ++number) {
        const DemoApp& app = apps.at(static_cast<std::size_t>(number) % apps.size());
        const std::string name = nameOf(app, language) + ' ' + std::to_string(number + 1);
        openOne(desktop, app, name, bytes(app.mebibytes * 4 / (4 + number)));
    }
}

} // namespace velmorquit::DemoApps
