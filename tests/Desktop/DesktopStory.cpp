#include "Desktop/DesktopStory.h"

#include "Codecs/PropertyList.h"
#include "support/Waiting.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace velmorquit {

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        parts.push_back(line);
    return parts;
}

} // namespace

DesktopStory::~DesktopStory() {
    if (HasFailure() && program)
        std::cerr << "The program has printed:\n" << program->output() << '\n';
}

void DesktopStory::await(const std::string& what, const std::function<bool()>& isSo) {
    constexpr int milliseconds = 60000;
    if (!waitUntil(isSo, milliseconds))
        throw std::runtime_error("this was waited for in vain: " + what);
}

Outcome DesktopStory::run(const std::vector<std::string>& command) {
    Child child(command);
    return outcomeOf(child);
}

Outcome DesktopStory::outcomeOf(Child& command) {
    await("the end of a command", [&] { return !command.isRunning(); });
    return {command.status(), command.output()};
}

Outcome DesktopStory::control(const std::vector<std::string>& words) {
    std::vector<std::string> command{VELMORCTL};
    command.insert(command.end(), words.begin(), words.end());
    return run(command);
}

void DesktopStory::startProgram() {
    program = std::make_unique<Child>(std::vector<std::string>{VELMORQUIT});
    await("an answer of the program", [this] {
        if (!program->isRunning())
            throw std::runtime_error("the program has ended");
        return control({"status"}).status == 0;
    });
}

// The language is fixed because questions and their shortcuts are translated.
Child& DesktopStory::open(const std::vector<std::string>& command) {
    std::vector<std::string> plain{"env", "LC_ALL=C.UTF-8"};
    plain.insert(plain.end(), command.begin(), command.end());
    Child& application = applications_.emplace_back(plain);
    if (program)
        awaitListed(application);
    return application;
}

void DesktopStory::awaitListed(const Child& application) {
    await("an application in the list", [&] {
        const QJsonArray listed = status()["applications"].toArray();
        return std::ranges::any_of(listed, [&](const auto& one) {
            return one.toObject()["process"].toInt() == application.id();
        });
    });
}

Child& DesktopStory::openRude(std::vector<std::string> manners) {
    manners.insert(manners.begin(), RUDE_CLIENT);
    Child& application = open(manners);
    await("the windows of a rude client",
          [&] { return application.output().find("ready") != std::string::npos; });
    return application;
}

// A shell that is still starting runs commands of its own, which nobody may lose either.
Child& DesktopStory::openTerminal() {
    write(home() / ".bashrc", "PROMPT_COMMAND='echo $$ >~/shell'\n");
    std::filesystem::remove(home() / "shell");
    const auto folder = [](const char* program) {
        return std::filesystem::path(program).parent_path().string();
    };
    const std::string path =
        folder(VELMORQUIT) + ':' + folder(VELMORCTL) + ':' + environment("PATH");
    Child& terminal = open({"env", "-C", home(), "PATH=" + path, "xterm"});
    await("the prompt of a shell", [] { return shell() > 0; });
    return terminal;
}

pid_t DesktopStory::shell() {
    const std::string number = contents(home() / "shell");
    return number.ends_with('\n') ? std::stoi(number) : 0;
}

std::unique_ptr<Child> DesktopStory::beginQuitAll() {
    auto command = std::make_unique<Child>(std::vector<std::string>{VELMORCTL, "quit-all"});
    await("the first line of quit-all",
          [&] { return command->output().find("Chiedo a ") != std::string::npos; });
    return command;
}

QJsonObject DesktopStory::status() {
    const Outcome answer = control({"status", "--json"});
    const auto json = QJsonDocument::fromJson(QByteArray::fromStdString(answer.text));
    if (answer.status != 0 || !json.isObject())
        throw std::runtime_error("no status: " + answer.text);
    return json.object();
}

std::string DesktopStory::phase() { return status()["phase"].toString().toStdString(); }

std::vector<std::string> DesktopStory::names(const char* list) {
    std::vector<std::string> names;
    for (const auto& application : status()[list].toArray())
        names.push_back(application.toObject()["name"].toString().toStdString());
    return names;
}

void DesktopStory::awaitStubborn(const std::vector<std::string>& expected) {
    await("the end of the grace period", [] { return phase() == "waiting"; });
    EXPECT_THAT(names("stubborn"), testing::UnorderedElementsAreArray(expected));
}

void DesktopStory::focus(const std::string& windowClass) {
    await("the keyboard's focus for " + windowClass, [&] {
        const auto windows = lines(
            run({"xdotool", "search", "--onlyvisible", "--class", "^" + windowClass + "$"}).text);
        if (windows.empty())
            return false;
        run({"xdotool", "windowactivate", windows.back()});
        linger(50);
        return run({"xdotool", "getactivewindow"}).text == windows.back() + '\n';
    });
}

void DesktopStory::type(const std::string& text) {
    EXPECT_EQ(run({"xdotool", "type", "--delay", "5", text}).status, 0);
}

std::filesystem::path DesktopStory::home() { return environment("HOME"); }

std::filesystem::path DesktopStory::preferencesFile() {
    return std::filesystem::path(environment("XDG_CONFIG_HOME")) / "velmorquit" /
           "preferences.plist";
}

std::string DesktopStory::contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void DesktopStory::write(const std::filesystem::path& file, const std::string& contents) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
}

void DesktopStory::prefer(Value::Dictionary settings) {
    settings.emplace("didShowWelcome", true);
    write(preferencesFile(), PropertyList::encode(settings));
}

bool DesktopStory::isAlive(pid_t process) { return process > 0 && ::kill(process, 0) == 0; }

void UnsavedLetter::writeText() {
    focus("mousepad");
    type(text);
    await("the mark of a text that isn't saved", [] {
        return run({"xdotool", "search", "--onlyvisible", "--name", "^\\*.*letter"}).status == 0;
    });
}

void UnsavedLetter::answerWithSave() {
    await("the text in the file", [] {
        const auto question =
            run({"xdotool", "search", "--onlyvisible", "--name", "^Save Changes$"});
        if (question.status == 0) {
            const auto window = lines(question.text).back();
            run({"xdotool", "windowactivate", window});
            linger(100);
            run({"xdotool", "key", "alt+s"});
        }
        return contents(letter()).find(text) != std::string::npos;
    });
}

} // namespace velmorquit
