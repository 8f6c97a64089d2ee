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

    void kill() {
        manager_.reset();
        await("the end of the window manager", [] { return sign().empty(); });
    }

    void startAnother() {
        manager_ = std::make_unique<Child>(std::vector<std::string>{"openbox", "--sm-disable"});
        await("a new window manager", [] { return !sign().empty(); });
    }

    /// What comes late should not come at all.
    void letThingsHappen() {
        linger(500);
        EXPECT_THAT(names("applications"), UnorderedElementsAre("Kept", "Ignorant", "L3afpad"));
    }

private:
    std::unique_ptr<Child> manager_;
};

TEST_F(WindowManager, ItsEndIsNobodyElses) {
    startProgram();
    Watch watch;
    openRude({"--class", "Kept"});
    EXPECT_EQ(control({"exclude", "Kept"}).status, 0);
    Child& ignorant = openRude({"--class", "Ignorant", "--ignore"});
    replace();
    open({"l3afpad"});
    EXPECT_EQ(control({"exclude", "L3afpad"}).status, 0);
    letThingsHappen();

    const auto quitAll = beginQuitAll();
    kill();
    letThingsHappen();
    startAnother();
    letThingsHappen();
    awaitStubborn({"Ignorant"});
    EXPECT_THAT(watch.changes(),
                ElementsAre("opened Kept", "excluded Kept", "opened Ignorant", "opened L3afpad",
                            "excluded l3afpad", "phase quitting", "event stubbornApps",
                            "stubborn Ignorant", "phase waiting"));

    ignorant.send(SIGKILL);
    const Outcome answer = outcomeOf(*quitAll);
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(names("applications"), UnorderedElementsAre("Kept", "L3afpad"));
}

TEST_F(WindowManager, IsNotNeededToAsk) {
    startProgram();
    Child& rude = openRude();
    Child& editor = open({"mousepad"});
    replace();
    kill();
    const Outcome answer = control({"quit-all"});
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Finito: 2 app chiuse"));
    EXPECT_FALSE(rude.isRunning());
    EXPECT_FALSE(editor.isRunning());
    EXPECT_THAT(names("applications"), IsEmpty());
}

} // namespace
} // namespace velmorquit
