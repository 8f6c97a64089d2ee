#include "DemoApps.h"

#include <algorithm>
#include <array>
#include <memory>
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

Icon iconOf(const DemoApp& app) {
    return {.name = {}, .file = ":/gallery/" + std::string(app.icon) + ".svg", .image = {}};
}

const DemoApp& find(std::string_view name) {
    const auto app = std::ranges::find(apps, name, &DemoApp::english);
    if (app == apps.end())
        throw std::out_of_range(std::string(name));
    return *app;
}

SimulatedApplication& openOne(SimulatedDesktop& desktop, const DemoApp& app, std::string name,
                              std::uint64_t memory) {
    return desktop.open(std::move(name), memory).identified(key(app.english)).withIcon(iconOf(app));
}

std::string pathOf(const DemoApp& app) { return "/applications/" + key(app.english) + ".desktop"; }

std::string nameOf(const DemoApp& app, Language language) {
    return language == Language::italian ? app.italian : app.english;
}

} // namespace

std::string key(std::string_view name) { return "org.example." + std::string(name); }

SimulatedApplication& start(SimulatedDesktop& desktop, Language language, std::string_view name) {
    const DemoApp& app = find(name);
    return openOne(desktop, app, nameOf(app, language), bytes(app.mebibytes));
}

std::string nameOf(Language language, std::string_view name) {
    return nameOf(find(name), language);
}

void install(SimulatedDesktop& desktop) {
    for (const DemoApp& app : apps) {
        desktop.files.paths.insert(pathOf(app));
        desktop.workspace.icons[pathOf(app)] = std::make_shared<Icon>(iconOf(app));
    }
}

std::vector<SavedApp> saved(Language language, const std::vector<std::string>& names) {
    std::vector<SavedApp> closed;
    for (const std::string& name : names)
        closed.push_back({nameOf(find(name), language), pathOf(find(name))});
    return closed;
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
