#include "Fuzz/Fuzz.h"
#include "Services/Remote/RemoteControl.h"
#include "Simulated/SimulatedDesktop.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace velmorquit::fuzz {
namespace {

void requireJson(const std::string& text) {
    require(isUtf8(text), "what is said on the bus is a text");
    require(nlohmann::json::accept(text), "and is JSON");
}

/// A person and other programs do something meanwhile.
void act(SimulatedDesktop& desktop, const std::vector<std::string>& words) {
    if (words[0] == "+open") {
        auto& app = desktop.open(words.back(), 7);
        if (words.size() > 2)
            app.identified(words[1]);
        if (words.size() > 3)
            app.ignoresAsking();
    } else if (words[0] == "+wait") {
        const auto seconds = words.back().empty() ? 1 : words.back().front() - '0';
        desktop.advance(std::clamp(seconds, 0, 80) * 1s);
    } else if (words[0] == "+confined") {
        desktop.remote.caller = {.isConfined = true, .name = words.back()};
    } else if (words[0] == "+own") {
        desktop.remote.caller = {};
    } else if (words[0] == "+backups") {
        desktop.backupTool.configure();
    }
}

} // namespace

/// A line is a command and its arguments, or with a plus in front what happens on the desktop;
/// tabs between the words.
void examine(std::string_view bytes) {
    constexpr int mostLines = 12;
    SimulatedDesktop desktop;
    Settings settings(desktop.loop, desktop.preferences);
    QuitController controller(desktop.ports(), settings);
    ActionRunner actions(desktop.loop, desktop.kernel, desktop.formats);
    actions.setController(&controller);
    RemoteControl control(controller, actions, desktop.ports());
    desktop.loop.settle();
    Input input(bytes);
    std::function<void(bool)> question;
    control.callerQuestion().screen = {
        .ask =
            [&](const std::string& text, const std::string&, std::function<void(bool)> answer) {
                require(isUtf8(text), "what is asked is a text");
                question = std::move(answer);
            },
        .withdraw = [&] { question = nullptr; }};
    for (int line = 0; line < mostLines && !input.isEmpty(); ++line) {
        std::vector<std::string> words = split(input.line(), '\t');
        if ((words[0] == "+yes" || words[0] == "+no") && question) {
            std::exchange(question, nullptr)(words[0] == "+yes");
            continue;
        }
        if (words[0].starts_with('+')) {
            act(desktop, words);
            continue;
        }
        const RemoteAnswer answer = desktop.remote.give(words[0], {words.begin() + 1, words.end()});
        if (answer.status == RemoteAnswer::Status::done)
            requireJson(answer.text);
        require(!answer.text.empty(), "nobody is left without an answer");
        desktop.loop.settle();
    }
    requireJson(desktop.remote.give("status").text);
    for (const std::string& change : desktop.remote.changes)
        requireJson(change);
}

} // namespace velmorquit::fuzz
