#include "Desktop/PowerStory.h"

namespace velmorquit {
namespace {

/// The panel, used with the mouse and the keyboard.
class PanelOnDesktop : public PowerStory {
protected:
    /// Something computed from the place of the panel, once it has stopped changing its size: its
    /// edges are $X, $Y, $RIGHT and $BELOW.
    static std::string computed(const std::string& expression) {
        std::string last;
        await("a panel that rests", [&] {
            const std::string now =
                run({"sh", "-c",
                     "eval $(xdotool search --onlyvisible --name '^Velmor Quit$' getwindowgeometry "
                     "--shell); RIGHT=$((X+WIDTH)) BELOW=$((Y+HEIGHT)); echo \"" +
                         expression + "\" $HEIGHT"})
                    .text;
            return std::exchange(last, now) == now && isPanelShown();
        });
        return last.substr(0, last.rfind(' '));
    }
    static void clickPanel(const std::string& x, const std::string& y) {
        run({"sh", "-c",
             "xdotool mousemove " + computed("$((" + x + ")) $((" + y + "))") + " click 1"});
    }
    static void openPanel() {
        ASSERT_EQ(control({"show"}).status, 0);
        awaitPanel();
        linger(700); // until it takes Return
    }
};

TEST_F(PanelOnDesktop, ExcludesWithAClickQuitsWithReturnAndStaysWhileThatRunWaits) {
    startProgram();
    Child& application = openRude({"--ignore"});
    openPanel();
    press({"Tab", "Tab", "Tab", "Right", "Right"});
    await("the choice", [] { return status()["afterQuit"] == "restart"; });
    press({"Left", "Left"});
    await("the choice", [] { return status()["afterQuit"] == "none"; });
    press({"Escape"});
    awaitPanel(false);
    openPanel();
    for (const bool isExcluded : {true, false}) {
        clickPanel("X+180", "BELOW-68");
        await("the change", [&] {
            const auto rude = status()["applications"][0].toObject();
            return rude["excluded"].toBool() == isExcluded;
        });
    }
    EXPECT_EQ(computed("$RIGHT"), std::to_string(1280 - 8));
    run({"xrandr", "--output", "screen", "--off", "--fb", "1024x700"});
    await("its place on a smaller screen",
          [&] { return computed("$RIGHT") == std::to_string(1024 - 8); });
    press({"Return"});
    awaitStubborn({"Rude"});
    // The application takes the keyboard, as its question would.
    focus("rude");
    linger(500);
    ASSERT_TRUE(isPanelShown());
    clickPanel("X+62", "BELOW-73");
    await("the end of the run", [] { return phase() != "waiting"; });
    EXPECT_TRUE(application.isRunning());
    clickAt(20, 690);
    awaitPanel(false);
}

// Nobody shows notices on this desktop, so that the panel comes by itself.
TEST_F(PanelOnDesktop, ComesWhenTheSessionsEndWaitsAndLeavingTheProgramIsAskedAbout) {
    startAll();
    Child& application = openRude({"--ignore"});
    EXPECT_EQ(control({"exclude", "Rude"}).status, 0);
    EXPECT_EQ(control({"quit-all", "--then", "shutDown", "--yes", "--no-wait"}).status, 0);
    awaitPanel();
    const auto leaveAndAnswer = [](const Words& keys) {
        openPanel();
        clickPanel("RIGHT-35", "Y+35");
        linger(700);
        press({"Up", "Return"});
        linger(700);
        press(keys);
        linger(700);
    };
    leaveAndAnswer({"Return"});
    EXPECT_EQ(status()["ending"].toObject()["stage"], "waiting") << "Return changes nothing";
    leaveAndAnswer({"Tab", "Return"});
    awaitEnd(*program);
    EXPECT_TRUE(application.isRunning());
    EXPECT_THAT(calls(), IsEmpty());
}

} // namespace
} // namespace velmorquit
