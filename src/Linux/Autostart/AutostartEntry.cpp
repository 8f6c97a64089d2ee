#include "Linux/Autostart/AutostartEntry.h"

#include "Linux/Files/PrivateFiles.h"

#include <algorithm>
#include <cstdlib>
#include <glib.h>
#include <memory>
#include <string_view>

namespace velmorquit {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view fileName = "org.velmorquit.VelmorQuit.desktop";

struct Free {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
    void operator()(char* text) const { g_free(text); }
    void operator()(char** list) const { g_strfreev(list); }
};
using KeyFile = std::unique_ptr<GKeyFile, Free>;
using Text = std::unique_ptr<char, Free>;

KeyFile load(const fs::path& file) {
    KeyFile keys(g_key_file_new());
    if (!g_key_file_load_from_file(keys.get(), file.c_str(), G_KEY_FILE_NONE, nullptr))
        return nullptr;
    return keys;
}

/// Whether every session starts exactly this path. systemd refuses a program with quotes or a
/// backslash in its name, and reads the escapes that other characters need differently from
/// everybody else.
bool isUnderstood(const std::string& path) {
    constexpr std::string_view special = "\\%$`\"'";
    return g_utf8_validate(path.c_str(), -1, nullptr) &&
           std::ranges::none_of(path, [&](char letter) {
               return special.find(letter) != special.npos || g_ascii_iscntrl(letter);
           });
}

bool isInstalled(const std::string& program) {
    return Text(g_find_program_in_path(program.c_str())) != nullptr;
}

/// Whether the entry's program exists.
bool hasProgram(GKeyFile* keys) {
    const Text tried(g_key_file_get_string(keys, "Desktop Entry", "TryExec", nullptr));
    if (tried && !isInstalled(tried.get()))
        return false;
    const Text line(g_key_file_get_string(keys, "Desktop Entry", "Exec", nullptr));
    char** words = nullptr;
    int count = 0;
    if (!line || !g_shell_parse_argv(line.get(), &count, &words, nullptr))
        return false;
    const std::unique_ptr<char*, Free> owned(words);
    std::string program = words[0];
    for (auto at = program.find("%%"); at != std::string::npos; at = program.find("%%", at + 1))
        program.erase(at, 1);
    return isInstalled(program);
}

} // namespace

AutostartEntry::Folders AutostartEntry::Folders::fromEnvironment() {
    Folders folders;
    folders.own = fs::path(g_get_user_config_dir()) / "autostart";
    for (const char* const* folder = g_get_system_config_dirs(); *folder; ++folder)
        folders.system.push_back(fs::path(*folder) / "autostart");
    return folders;
}

AutostartEntry::AutostartEntry(Folders folders, fs::path program)
    : folders_(std::move(folders)), program_(std::move(program)) {}

std::optional<std::string> AutostartEntry::add() {
    if (program_.empty())
        return "percorso del programma sconosciuto";
    if (!isUnderstood(program_))
        return "il percorso del programma contiene caratteri che non tutte le sessioni "
               "capiscono: " +
               program_.string();
    return write("Type=Application\nName=Velmor Quit\nExec=\"" + program_.string() +
                 "\"\nIcon=org.velmorquit.VelmorQuit\n");
}

std::optional<std::string> AutostartEntry::remove() {
    if (systemFile())
        return write("Type=Application\nName=Velmor Quit\nHidden=true\n");
    std::error_code error;
    fs::remove(ownFile(), error);
    return error ? std::optional(error.message()) : std::nullopt;
}

LoginItemStatus AutostartEntry::status() const {
    std::error_code error;
    const bool hasOwn = fs::exists(ownFile(), error);
    const auto file = hasOwn ? ownFile() : systemFile();
    if (error)
        return LoginItemStatus::unknown;
    if (!file)
        return LoginItemStatus::notRegistered;
    const KeyFile keys = load(*file);
    if (!keys)
        return LoginItemStatus::unknown;
    const auto isSet = [&](const char* key) {
        return g_key_file_get_boolean(keys.get(), "Desktop Entry", key, nullptr) != 0;
    };
    const char* switched = "X-GNOME-Autostart-enabled";
    const bool isSwitchedOff =
        g_key_file_has_key(keys.get(), "Desktop Entry", switched, nullptr) && !isSet(switched);
    if (isSet("Hidden") || isSwitchedOff)
        return LoginItemStatus::notRegistered;
    return hasProgram(keys.get()) ? LoginItemStatus::enabled : LoginItemStatus::notFound;
}

fs::path AutostartEntry::ownFile() const { return folders_.own / fileName; }

std::optional<fs::path> AutostartEntry::systemFile() const {
    for (const fs::path& folder : folders_.system) {
        std::error_code error;
        if (fs::exists(folder / fileName, error))
            return folder / fileName;
    }
    return std::nullopt;
}

// A session that starts meanwhile reads either the old or the new entry.
std::optional<std::string> AutostartEntry::write(const std::string& lines) const {
    auto error = PrivateFiles::makeFolder(folders_.own);
    // A link may lead to the entry that menus use, or into a system folder.
    std::error_code ignored;
    if (!error && fs::is_symlink(ownFile(), ignored))
        fs::remove(ownFile(), error);
    if (!error)
        error = PrivateFiles::replace(ownFile(), "[Desktop Entry]\n" + lines,
                                      PrivateFiles::Durability::untilShutdown);
    return error ? std::optional(error.message()) : std::nullopt;
}

} // namespace velmorquit
