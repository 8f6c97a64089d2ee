#pragma once

#include "Platform/Value.h"
#include "support/Outcome.h"

#include <QJsonArray>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

using testing::AllOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

/// A desktop of its own, with the whole program on it and what a user does there.
class DesktopStory : public testing::Test {
protected:
    DesktopStory() { prefer({}); }
    ~DesktopStory() override;

    /// Stores settings for the program's next start, which isn't its first one.
    static void prefer(Value::Dictionary settings);

    /// Waits, very patiently, until `isSo`; the test fails and ends when that doesn't happen.
    static void await(const std::string& what, const std::function<bool()>& isSo);
    static void awaitText(Child& command, const std::string& text);
    static void awaitEnd(Child& command) { static_cast<void>(outcomeOf(command)); }

    /// Runs `velmorctl` to its end.
    static Outcome control(const Words& words);

    /// Starts the program, by that command, and waits until it answers.
    void startProgram(const Words& command = {VELMORQUIT});
    /// Ends it without giving it the time to do anything more.
    void killProgram() { program.reset(); }

    /// Starts an application and waits until the program, when it runs, lists it.
    Child& open(const Words& command);
    /// Opens a window whose manners are the arguments; its name is Rude unless they say otherwise.
    Child& openRude(const Words& manners = {});
    /// The same for one that the program doesn't list.
    Child& openUnlisted(const Words& manners);

    /// Opens a terminal in the home folder, whose shell finds the program's commands, and waits for
    /// its prompt.
    Child& openTerminal();

    /// Starts `velmorctl quit-all` and waits until the run has begun.
    static std::unique_ptr<Child> beginQuitAll();

    [[nodiscard]] static QJsonObject status();
    [[nodiscard]] static std::string phase() { return status()["phase"].toString().toStdString(); }
    /// The names in a list of the status: "applications", "stubborn", "excluded" or "reopenable".
    [[nodiscard]] static Words names(const char* list);
    static void awaitStubborn(const Words& expected);

    /// The windows on the screen of which that is so: "--class" or "--name" and a pattern.
    [[nodiscard]] static Words windows(const std::string& option, const std::string& pattern);
    [[nodiscard]] static bool isPanelShown() { return !windows("--name", "Velmor Quit").empty(); }
    static void awaitPanel(bool isShown = true);
    /// Gives the keyboard to the newest window of that class.
    static void focus(const std::string& windowClass);
    [[nodiscard]] static std::string titleWithKeyboard();
    /// Types with the keyboard, in the window that has it; "\n" is the return key.
    static void type(const std::string& text);
    static void press(const Words& keys);
    static void clickAt(int x, int y);

    [[nodiscard]] static std::filesystem::path home() { return folder("HOME"); }
    [[nodiscard]] static std::filesystem::path folder(const char* variable);
    [[nodiscard]] static std::filesystem::path preferencesFile();
    [[nodiscard]] static bool isAlive(pid_t process);

    std::unique_ptr<Child> program;

private:
    std::list<Child> applications_;
};

} // namespace velmorquit
