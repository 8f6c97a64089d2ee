#include "Desktop/DesktopStory.h"

#include "support/Waiting.h"

namespace velmorquit {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class WindowManager : public DesktopStory {
protected:
    /// The window by which the window manager shows that it lives; empty without one.
    static std::string sign() {
        const std::string said =
            run({"xprop", "-root", "-notype", "_NET_SUPPORTING_WM_CHECK"}).text;
        const std::size_t begin = said.find("0x");
        if (begin == std::string::npos)
            return {};
        const std::string window = said.substr(begin, said.find_first_of(" \n", begin) - begin);
        const Outcome lives = run({"xprop", "-id", window, "-notype", "_NET_SUPPORTING_WM_CHECK"});
        return lives.status == 0 && lives.text.find(window) != std::string::npos ? window : "";
    }

    void replace() {
        const std::string former = sign();
        manager_ = std::make_unique<Child>(
            std::vector<std::string>{"openbox", "--replace", "--sm-disable"});
        await("another window manager", [&] { return !sign().empty() && sign() != former; });
    }

    /// Asked to go, a window manager empties the list of windows; killed, it leaves it behind.
    void end(int signal) {
        manager_->send(signal);
        await("the end of the window manager", [] { return sign().empty(); });
    }

    void startAnother() {
        manager_ = std::make_unique<Child>(std::vector<std::string>{"openbox", "--sm-disable"});
        await("a new window manager", [] { return !sign().empty(); });
    }

    /// What a window manager brings about it does within a moment, if at all.
    static void expectAllOpen() {
        linger(500);
        EXPECT_THAT(names("applications"), UnorderedElementsAre("Kept", "Ignorant", "L3afpad"));
    }

    /// One that will be asked and two that are excluded. So many windows are not all listed at once
    /// by a window manager that takes over.
    Child& openThree() {
        openRude({"--class", "Kept", "--windows", "20"});
        open({"l3afpad"});
        EXPECT_EQ(control({"exclude", "Kept"}).status, 0);
        EXPECT_EQ(control({"exclude", "L3afpad"}).status, 0);
        return openRude({"--class", "Ignorant", "--ignore"});
    }

private:
    std::unique_ptr<Child> manager_;
};

TEST_F(WindowManager, ItsEndIsNobodyElses) {
    startProgram();
    replace();
    Child& ignorant = openThree();
    Watch watch;
    const auto quitAll = beginQuitAll();
    end(SIGKILL);
    expectAllOpen();
    startAnother();
    expectAllOpen();
    awaitStubborn({"Ignorant"});
    await("the phase", [&] { return watch.hasHeard("phase waiting"); });
    EXPECT_THAT(watch.changes(), ElementsAre("phase quitting", "event stubbornApps",
                                             "stubborn Ignorant", "phase waiting"));

    ignorant.send(SIGKILL);
    const Outcome answer = outcomeOf(*quitAll);
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(names("applications"), UnorderedElementsAre("Kept", "L3afpad"));
}

TEST_F(WindowManager, CanBeReplacedWhileApplicationsAreOpen) {
    startProgram();
    openThree();
    Watch watch;
    replace();
    expectAllOpen();
    EXPECT_THAT(watch.changes(), IsEmpty());
}

TEST_F(WindowManager, IsNotNeededToAsk) {
    startProgram();
    Child& rude = openRude();
    Child& editor = open({"mousepad"});
    replace();
    end(SIGTERM);
    const Outcome answer = control({"quit-all"});
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Finito: 2 app chiuse"));
    EXPECT_FALSE(rude.isRunning());
    EXPECT_FALSE(editor.isRunning());
    EXPECT_THAT(names("applications"), IsEmpty());
    EXPECT_THAT(control({"status"}).text, HasSubstr("Non vedo che cosa è aperto"));
    startAnother();
    EXPECT_THAT(control({"status"}).text, HasSubstr("Nessuna app aperta"));
}

} // namespace
} // namespace velmorquit
