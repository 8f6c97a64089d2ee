#include "Desktop/DesktopStory.h"

#include "Codecs/PropertyList.h"

#include <QJsonDocument>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <sstream>

namespace velmorquit {

namespace {

Words joined(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

bool has(Child& command, const std::string& text) {
    return command.output().find(text) != std::string::npos;
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

void DesktopStory::awaitText(Child& command, const std::string& text) {
    await("«" + text + "»", [&] { return has(command, text); });
}

Outcome DesktopStory::control(const Words& words) { return run(joined({VELMORCTL}, words)); }

void DesktopStory::startProgram(const Words& command) {
    program = std::make_unique<Child>(command);
    await("an answer of the program", [this] {
        if (!program->isRunning())
            throw std::runtime_error("the program has ended");
        return control({"status"}).status == 0;
    });
}

// The language is fixed because questions and their shortcuts are translated.
Child& DesktopStory::open(const Words& command) {
    Child& application = applications_.emplace_back(joined({"env", "LC_ALL=C.UTF-8"}, command));
    if (program)
        await("an application in the list", [&] {
            const QJsonArray listed = status()["applications"].toArray();
            return std::ranges::any_of(listed, [&](const auto& one) {
                return one.toObject()["process"].toInt() == application.id();
            });
        });
    return application;
}

Child& DesktopStory::openRude(const Words& manners) {
    Child& application = open(joined({RUDE_CLIENT}, manners));
    awaitText(application, "ready");
    return application;
}

Child& DesktopStory::openUnlisted(const Words& manners) {
    Child& application = applications_.emplace_back(joined({RUDE_CLIENT}, manners));
    awaitText(application, "ready");
    linger(200);
    return application;
}

// A shell that is still starting runs commands of its own, which nobody may lose either.
Child& DesktopStory::openTerminal() {
    write(home() / ".bashrc", "PROMPT_COMMAND='echo $$ >~/shell'\n");
    const auto folder = [](const char* program) {
        return std::filesystem::path(program).parent_path().string();
    };
    const std::string path =
        folder(VELMORQUIT) + ':' + folder(VELMORCTL) + ':' + std::getenv("PATH");
    Child& terminal = open({"env", "-C", home(), "PATH=" + path, "xterm"});
    await("the prompt of a shell", [] { return contents(home() / "shell").ends_with('\n'); });
    return terminal;
}

std::unique_ptr<Child> DesktopStory::beginQuitAll() {
    auto command = std::make_unique<Child>(Words{VELMORCTL, "quit-all"});
    awaitText(*command, "Chiedo a ");
    return command;
}

QJsonObject DesktopStory::status() {
    const Outcome answer = control({"status", "--json"});
    const auto json = QJsonDocument::fromJson(QByteArray::fromStdString(answer.text));
    if (answer.status != 0 || !json.isObject())
        throw std::runtime_error("no status: " + answer.text);
    return json.object();
}

Words DesktopStory::names(const char* list) {
    Words names;
    for (const auto& one : status()[list].toArray()) {
        const QJsonValue name = one.isObject() ? one.toObject()["name"] : QJsonValue(one);
        names.push_back(name.toString().toStdString());
    }
    return names;
}

void DesktopStory::awaitStubborn(const Words& expected) {
    await("the end of the grace period", [] { return phase() == "waiting"; });
    EXPECT_THAT(names("stubborn"), testing::UnorderedElementsAreArray(expected));
}

Words DesktopStory::windows(const std::string& option, const std::string& pattern) {
    const Outcome search = run({"xdotool", "search", "--onlyvisible", option, '^' + pattern + '$'});
    // It complains of a window that vanishes meanwhile.
    std::istringstream found(search.status == 0 ? search.text : "");
    return {std::istream_iterator<std::string>(found), {}};
}

void DesktopStory::awaitPanel(bool isShown) {
    await(isShown ? "the panel" : "its end", [&] { return isPanelShown() == isShown; });
}

void DesktopStory::focus(const std::string& windowClass) {
    await("the keyboard's focus for " + windowClass, [&] {
        const Words found = windows("--class", windowClass);
        if (found.empty())
            return false;
        run({"xdotool", "windowactivate", found.back()});
        linger(50);
        return run({"xdotool", "getactivewindow"}).text == found.back() + '\n';
    });
}

std::string DesktopStory::titleWithKeyboard() {
    return run({"xdotool", "getactivewindow", "getwindowname"}).text;
}

void DesktopStory::type(const std::string& text) {
    EXPECT_EQ(run({"xdotool", "type", "--delay", "5", text}).status, 0);
}

void DesktopStory::press(const Words& keys) { run(joined({"xdotool", "key"}, keys)); }

void DesktopStory::clickAt(int x, int y) {
    run({"xdotool", "mousemove", std::to_string(x), std::to_string(y), "click", "1"});
}

std::filesystem::path DesktopStory::folder(const char* variable) {
    const char* path = std::getenv(variable);
    return path ? path : "";
}

std::filesystem::path DesktopStory::preferencesFile() {
    return folder("XDG_CONFIG_HOME") / "velmorquit" / "preferences.plist";
}

void DesktopStory::prefer(Value::Dictionary settings) {
    settings.emplace("didShowWelcome", true);
    write(preferencesFile(), PropertyList::encode(settings));
}

bool DesktopStory::isAlive(pid_t process) { return process > 0 && ::kill(process, 0) == 0; }

} // namespace velmorquit
