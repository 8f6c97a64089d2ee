#pragma once

#include "Desktop/Watch.h"
#include "Platform/Value.h"
#include "support/Child.h"

#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// How a command ended, and all that it printed.
struct Outcome {
    int status = -1;
    std::string text;
};

/// A desktop of its own, with the whole program on it and what a user does there.
class DesktopStory : public testing::Test {
protected:
    DesktopStory() { prefer({}); }
    ~DesktopStory() override;

    /// Stores settings for the program's next start, which isn't its first one.
    static void prefer(Value::Dictionary settings);

    /// Waits, very patiently, until `isSo`; the test fails and ends when that doesn't happen.
    static void await(const std::string& what, const std::function<bool()>& isSo);

    /// Runs a command to its end.
    static Outcome run(const std::vector<std::string>& command);
    static Outcome control(const std::vector<std::string>& words);

    /// Starts the program and waits until it answers.
    void startProgram();
    /// Ends it without giving it the time to do anything more.
    void killProgram() { program.reset(); }

    /// Starts an application and waits until the program, when it runs, lists it.
    Child& open(const std::vector<std::string>& command);
    /// Waits until the program lists the application.
    static void awaitListed(const Child& application);
    /// Opens a window whose manners are the arguments; its name is Rude unless they say otherwise.
    Child& openRude(std::vector<std::string> manners = {});

    /// Opens a terminal in the home folder, whose shell finds the program's commands, and waits for
    /// its prompt.
    Child& openTerminal();
    /// The shell of the terminal that was opened last.
    [[nodiscard]] static pid_t shell();

    /// Starts `velmorctl quit-all` and waits until the run has begun.
    std::unique_ptr<Child> beginQuitAll();
    static Outcome outcomeOf(Child& command);

    [[nodiscard]] static QJsonObject status();
    [[nodiscard]] static std::string phase();
    /// Names of the applications in a list of the status: "applications" or "stubborn".
    [[nodiscard]] static std::vector<std::string> names(const char* list);
    static void awaitStubborn(const std::vector<std::string>& expected);

    /// Gives the keyboard to the newest window of that class.
    static void focus(const std::string& windowClass);
    /// Types with the keyboard, in the window that has it; "\n" is the return key.
    static void type(const std::string& text);

    [[nodiscard]] static std::filesystem::path home();
    [[nodiscard]] static std::filesystem::path preferencesFile();
    [[nodiscard]] static std::string contents(const std::filesystem::path& file);
    static void write(const std::filesystem::path& file, const std::string& contents);
    [[nodiscard]] static bool isAlive(pid_t process);

    std::unique_ptr<Child> program;

private:
    std::list<Child> applications_;
};

/// An editor with a text that nobody has saved.
class UnsavedLetter : public DesktopStory {
protected:
    static constexpr auto text = "The meeting is on Friday at ten.";

    [[nodiscard]] static std::filesystem::path letter() { return home() / "letter.txt"; }
    /// Types the text into the editor, in which the letter is open.
    static void writeText();
    /// Waits for the editor's question and answers it with Save.
    static void answerWithSave();
};

} // namespace velmorquit
