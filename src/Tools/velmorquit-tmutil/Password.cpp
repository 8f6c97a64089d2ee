#include "Password.h"

#include "Folders.h"
#include "Linux/Files/PrivateFiles.h"
#include "Texts/Localized.h"

#include <QRandomGenerator>
#include <QUuid>

#include <array>
#include <csignal>
#include <fstream>
#include <iostream>
#include <string_view>

#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace velmorquit::tmutil::Password {

namespace fs = std::filesystem;

namespace {

/// The only thing that a signal handler can reach.
termios shownBefore;

/// Hides typed characters during its life, and no longer than that even after Ctrl+C.
class HiddenInput {
public:
    HiddenInput() {
        ::tcgetattr(STDIN_FILENO, &shownBefore);
        termios hidden = shownBefore;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        hidden.c_lflag |= ECHONL;
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
        struct sigaction showing{};
        showing.sa_handler = show;
        showing.sa_flags = SA_RESETHAND;
        for (std::size_t index = 0; index < signals.size(); ++index)
            ::sigaction(signals[index], &showing, &former_[index]);
    }
    HiddenInput(const HiddenInput&) = delete;
    HiddenInput& operator=(const HiddenInput&) = delete;
    ~HiddenInput() {
        for (std::size_t index = 0; index < signals.size(); ++index)
            ::sigaction(signals[index], &former_[index], nullptr);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &shownBefore);
    }

private:
    static void show(int signal) {
        ::tcsetattr(STDIN_FILENO, TCSANOW, &shownBefore);
        ::raise(signal);
    }

    static constexpr std::array signals{SIGINT, SIGTERM};
    std::array<struct sigaction, 2> former_{};
};

std::string trimmed(const std::string& text) {
    constexpr const char* blanks = " \t\r\n\v\f";
    const auto begin = text.find_first_not_of(blanks);
    if (begin == text.npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

} // namespace

std::string make() {
    constexpr std::string_view alphabet = "abcdefghijkmnpqrstuvwxyz23456789";
    constexpr int groups = 5;
    constexpr int length = 5;
    std::string password;
    for (int index = 0; index < groups * length; ++index) {
        if (index > 0 && index % length == 0)
            password += '-';
        password +=
            alphabet[QRandomGenerator::system()->bounded(static_cast<quint32>(alphabet.size()))];
    }
    return password;
}

std::optional<std::string> ask(const std::string& question) {
    std::cout << question << ' ' << std::flush;
    const HiddenInput hidden;
    std::string line;
    if (!std::getline(std::cin, line))
        return std::nullopt;
    return trimmed(line);
}

Outcome<std::string> read(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    // Not to the end: it may be a pipe, or a device without an end.
    constexpr std::size_t longest = 1 << 16;
    std::string content(longest, '\0');
    stream.read(content.data(), longest);
    content.resize(static_cast<std::size_t>(stream.gcount()));
    if (!stream.eof() || stream.bad())
        return Problem{localized("Non posso leggere il file della password %@.", file)};
    std::string password = trimmed(content);
    if (password.empty())
        return Problem{localized("Il file della password %@ è vuoto.", file)};
    return password;
}

Outcome<fs::path> keep(const std::string& password) {
    const fs::path folder = Folders::configuration() / "passwords";
    const bool isPrivate = !PrivateFiles::makeFolder(folder) && ::chmod(folder.c_str(), 0700) == 0;
    const fs::path file =
        folder / (QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString() + ".txt");
    if (!isPrivate ||
        PrivateFiles::replace(file, password + '\n', PrivateFiles::Durability::onDisk))
        return Problem{localized("Non posso scrivere nella cartella %@.", folder.string())};
    return file;
}

} // namespace velmorquit::tmutil::Password
