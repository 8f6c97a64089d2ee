#include "Linux/Applications/RunProgram.h"

#include "Linux/Text/Utf8.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

namespace velmorquit {

namespace {

namespace fs = std::filesystem;

constexpr auto isDigit = [](char letter) { return letter >= '0' && letter <= '9'; };

/// How to read the arguments of an interpreter.
struct Interpreter {
    std::string_view name;
    /// Options that take the next argument as their value, each with a blank around it.
    std::string_view withValue = "";
    /// Options that are followed by code instead of a file to read.
    std::string_view code = "";
    /// Options that are followed by the name of a module or a class.
    std::string_view module = "";
    /// Without any option it takes such a name instead of a file.
    bool readsNames = false;
};

// Java: the archive after "-jar" is the first argument that isn't an option.
constexpr std::array<Interpreter, 26> interpreters{{
    {"python", " -W -X -Q --check-hash-based-pycs ", " -c ", " -m "},
    {"pypy", " -W -X ", " -c ", " -m "},
    {"perl", " -I ", " -e -E "},
    {"ruby", " -I -r -C -E ", " -e "},
    {"java",
     " -cp -classpath --class-path -p --module-path --upgrade-module-path --add-modules "
     "--add-opens --add-exports --add-reads --limit-modules --patch-module ",
     "", " -m --module ", true},
    {"node", " -r --require --import --loader ", " -e --eval -p --print "},
    {"gjs", " -I --include-path ", " -c --command "},
    {"lua", " -l ", " -e "},
    {"luajit", " -l ", " -e "},
    {"php", " -c -d -z ", " -r "},
    {"mono", " --config "},
    {"mono-sgen", " --config "},
    {"guile", " -L -C -l ", " -c "},
    {"tclsh"},
    {"wish"},
    {"sh", " -o ", " -c "},
    {"bash", " -o -O --rcfile --init-file ", " -c "},
    {"dash", " -o ", " -c "},
    {"ash", " -o ", " -c "},
    {"ksh", " -o ", " -c "},
    {"mksh", " -o ", " -c "},
    {"zsh", " -o ", " -c "},
    {"fish", "", " -c "},
    {"csh", "", " -c "},
    {"tcsh", "", " -c "},
    {"qml", " -I -P -f "},
}};

constexpr std::array<std::string_view, 22> launchers{"env",
                                                     "flatpak",
                                                     "snap",
                                                     "snap-exec",
                                                     "bwrap",
                                                     "wine",
                                                     "wine64",
                                                     "busybox",
                                                     "sudo",
                                                     "pkexec",
                                                     "gksu",
                                                     "dbus-launch",
                                                     "xdg-open",
                                                     "exo-open",
                                                     "gio",
                                                     "gtk-launch",
                                                     "electron",
                                                     "firejail",
                                                     "dbus-run-session",
                                                     "systemd-run",
                                                     "setsid",
                                                     "nohup"};

std::string fileName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// "python" of "python3.11", "wish" of "wish8.6".
std::string_view withoutVersion(std::string_view name) {
    while (!name.empty() && (isDigit(name.back()) || name.back() == '.' || name.back() == '-'))
        name.remove_suffix(1);
    return name;
}

const Interpreter* interpreterOf(const std::string& executable) {
    const std::string name = lowered(fileName(executable));
    const auto found =
        std::ranges::find(interpreters, withoutVersion(withoutExtension(name)), &Interpreter::name);
    return found == interpreters.end() ? nullptr : &*found;
}

bool isLauncher(const std::string& executable) {
    const std::string name = lowered(fileName(executable));
    return name.starts_with("wine-") || name.starts_with("wine64-") ||
           std::ranges::find(launchers, withoutVersion(name)) != launchers.end();
}

bool holds(std::string_view options, std::string_view option) {
    return options.find(' ' + std::string(option) + ' ') != std::string_view::npos;
}

/// A file's name may say nothing where its folder does. A user's own folder never does.
std::string nameOfFile(const fs::path& path) {
    std::string_view part = path.native();
    while (!part.empty() && part != "/") {
        const std::size_t slash = part.rfind('/');
        const std::string name = withoutExtension(part.substr(slash + 1));
        const std::string_view folder = slash == part.npos ? "" : part.substr(0, slash + 1);
        const std::size_t end = folder.find_last_not_of('/');
        const std::string_view parent =
            end == folder.npos ? folder.substr(0, 1) : folder.substr(0, end + 1);
        if (parent == "/" || parent == "/home" || part == "/root")
            break;
        if (!name.empty() && !isCommonName(name))
            return utf8(name);
        part = parent;
    }
    return utf8(withoutExtension(path.filename().string()));
}

std::vector<std::string> since(const std::vector<std::string>& arguments, std::size_t first) {
    if (first >= arguments.size())
        return {};
    return {arguments.begin() + static_cast<std::ptrdiff_t>(first), arguments.end()};
}

RunProgram fileIn(const std::string& file, const std::string& folder,
                  std::vector<std::string> arguments) {
    // Longer paths don't exist, but a process may have been given megabytes.
    if (file.empty() || file.size() >= PATH_MAX || file.find('\0') != std::string::npos)
        return {};
    const fs::path path = fs::path(folder) / file;
    std::error_code error;
    fs::path real = fs::canonical(path, error);
    if (error)
        real = path.lexically_normal();
    // By the name used to call it: the target of a link may serve several programs.
    return {real.is_absolute() ? real.string() : "", nameOfFile(path), std::move(arguments)};
}

/// The last part of "a.b.c"; for "a.__main__" that is "a".
std::string moduleNamed(std::string name) {
    name = name.substr(0, name.find('\0'));
    name = name.substr(name.rfind('/') + 1);
    constexpr std::string_view whole = ".__main__";
    if (name.ends_with(whole))
        name.resize(name.size() - whole.size());
    return utf8(name.substr(name.rfind('.') + 1));
}

RunProgram readBy(const Interpreter& interpreter, const std::vector<std::string>& arguments,
                  const std::string& folder) {
    bool isArchive = false;
    for (std::size_t at = 1; at < arguments.size(); ++at) {
        const std::string& argument = arguments[at];
        if (holds(interpreter.code, argument))
            return {};
        if (holds(interpreter.module, argument)) {
            if (++at == arguments.size())
                return {};
            return {"", moduleNamed(arguments[at]), since(arguments, at + 1)};
        }
        isArchive |= argument == "-jar";
        if (holds(interpreter.withValue, argument))
            ++at;
        else if (!argument.empty() && argument.front() != '-' && interpreter.readsNames &&
                 !isArchive)
            return {"", moduleNamed(argument), since(arguments, at + 1)};
        else if (!argument.empty() && argument.front() != '-')
            return fileIn(argument, folder, since(arguments, at + 1));
    }
    return {};
}

} // namespace

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char letter) {
        return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter;
    });
    return text;
}

std::string withoutExtension(std::string_view fileName) {
    static constexpr std::array<std::string_view, 18> extensions{
        ".py", ".pyw", ".pyz", ".pl",  ".rb",  ".jar",  ".js",     ".sh",       ".tcl",
        ".tk", ".lua", ".php", ".bin", ".exe", ".real", ".x86_64", ".AppImage", ".qml"};
    for (const std::string_view extension : extensions) {
        if (fileName.size() > extension.size() && fileName.ends_with(extension))
            return std::string(fileName.substr(0, fileName.size() - extension.size()));
    }
    return std::string(fileName);
}

bool isCommonName(std::string_view name) {
    static constexpr std::array<std::string_view, 26> common{
        "__main__", "main",    "app",         "run",      "start",         "launcher",      "index",
        "apprun",   "gui",     "bin",         "src",      "lib",           "libexec",       "share",
        "local",    "tmp",     ".",           "toplevel", "dist-packages", "site-packages", "tk",
        "sdl_app",  "unknown", "vclsalframe", "gtk",      "untitled"};
    const std::string wanted = lowered(withoutExtension(name));
    return std::ranges::find(common, wanted) != common.end() || interpreterOf(wanted) ||
           isLauncher(wanted);
}

RunProgram programOf(const std::string& executable, const std::vector<std::string>& arguments,
                     const std::string& folder) {
    if (const Interpreter* interpreter = interpreterOf(executable))
        return readBy(*interpreter, arguments, folder);
    if (isLauncher(executable))
        return {};
    return fileIn(executable, folder, since(arguments, 1));
}

} // namespace velmorquit
