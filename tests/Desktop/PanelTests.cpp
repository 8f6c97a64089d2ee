#include "Desktop/PowerStory.h"

#include "support/Waiting.h"

#include <QJsonArray>

#include <map>
#include <sstream>
#include <utility>

namespace velmorquit {
namespace {

/// The panel, used with the mouse and the keyboard.
class PanelOnDesktop : public PowerStory {
protected:
    struct Place {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };

    static std::string window() {
        std::string id =
            run({"xdotool", "search", "--onlyvisible", "--name", "^Velmor Quit$"}).text;
        id.resize(std::min(id.find('\n'), id.size()));
        return id;
    }

    /// Where it is, once it has stopped changing its size.
    static Place place() {
        std::string last;
        await("a panel that rests", [&] {
            const std::string now = run({"xdotool", "getwindowgeometry", "--shell", window()}).text;
            return std::exchange(last, now) == now && !now.empty();
        });
        Place place;
        const std::map<std::string, int*> fields{
            {"X", &place.x}, {"Y", &place.y}, {"WIDTH", &place.width}, {"HEIGHT", &place.height}};
        std::istringstream lines(last);
        for (std::string line; std::getline(lines, line);) {
            const auto field = fields.find(line.substr(0, line.find('=')));
            if (field != fields.end())
                *field->second = std::stoi(line.substr(line.find('=') + 1));
        }
        return place;
    }

    static void clickAt(int x, int y) {
        run({"xdotool", "mousemove", std::to_string(x), std::to_string(y), "click", "1"});
    }

    /// Clicks a point that is so far from the left and the lower edge.
    static void clickFromBelow(int fromLeft, int fromBelow) {
        const Place panel = place();
        clickAt(panel.x + fromLeft, panel.y + panel.height - fromBelow);
    }

    static bool isExcluded() {
        const auto applications = status()["applications"].toArray();
        return !applications.isEmpty() && applications[0].toObject()["excluded"].toBool();
    }

    static void openPanel() {
        ASSERT_EQ(control({"show"}).status, 0);
        await("the panel", [] { return !window().empty(); });
        linger(700); // until it takes Return
    }
};

TEST_F(PanelOnDesktop, ExcludesWithAClickAndQuitsWithReturn) {
    startProgram();
    Child& application = openRude();
    openPanel();
    run({"xdotool", "key", "Tab", "Tab", "Tab", "Right", "Right"});
    await("the choice", [] { return status()["afterQuit"] == "restart"; });
    run({"xdotool", "key", "Left", "Left"});
    await("the choice", [] { return status()["afterQuit"] == "none"; });
    run({"xdotool", "key", "Escape"});
    await("the end of the panel", [] { return window().empty(); });
    openPanel();
    constexpr int middleOfLastRow = 68;
    clickFromBelow(180, middleOfLastRow);
    await("the exclusion", isExcluded);
    clickFromBelow(180, middleOfLastRow);
    await("its end", [] { return !isExcluded(); });
    run({"xdotool", "key", "Return"});
    await("the end of the application", [&] { return !application.isRunning(); });
    EXPECT_FALSE(window().empty());
    run({"xdotool", "key", "Escape"});
    await("the end of the panel", [] { return window().empty(); });
}

TEST_F(PanelOnDesktop, StaysWhileARunWaitsAndItsCardEndsIt) {
    startProgram();
    Child& application = openRude({"--ignore"});
    openPanel();
    run({"xdotool", "key", "Return"});
    awaitStubborn({"Rude"});
    // The application takes the keyboard, as its question would.
    focus("rude");
    linger(500);
    ASSERT_FALSE(window().empty());
    constexpr int middleOfButtons = 73;
    clickFromBelow(62, middleOfButtons);
    await("the end of the run", [] { return phase() != "waiting"; });
    EXPECT_TRUE(application.isRunning());
    clickAt(20, 700);
    await("the end of the panel", [] { return window().empty(); });
}

TEST_F(PanelOnDesktop, FindsItsPlaceAgainWhenTheScreenBecomesSmaller) {
    startProgram();
    openPanel();
    const auto rightEdge = [] { return place().x + place().width; };
    EXPECT_EQ(rightEdge(), 1280 - 8);
    run({"xrandr", "--output", "screen", "--off", "--fb", "1024x700"});
    await("its place on the other screen", [&] { return rightEdge() == 1024 - 8; });
}

// Nobody shows notices on this desktop, so that the panel comes by itself.
TEST_F(PanelOnDesktop, ComesWhenTheSessionsEndWaitsAndLeavingTheProgramIsAskedAbout) {
    startAll();
    Child& application = openRude({"--ignore"});
    EXPECT_EQ(control({"exclude", "Rude"}).status, 0);
    EXPECT_EQ(control({"quit-all", "--then", "shutDown", "--yes", "--no-wait"}).status, 0);
    await("the panel", [] { return !window().empty(); });
    const auto leaveAndAnswer = [](std::vector<std::string> key) {
        openPanel();
        const Place panel = place();
        constexpr int middleOfSettings = 35;
        clickAt(panel.x + panel.width - middleOfSettings, panel.y + middleOfSettings);
        linger(700);
        run({"xdotool", "key", "Up", "Return"});
        linger(700);
        key.insert(key.begin(), {"xdotool", "key"});
        run(key);
        linger(700);
    };
    leaveAndAnswer({"Return"});
    EXPECT_EQ(status()["ending"].toObject()["stage"], "waiting") << "Return changes nothing";
    leaveAndAnswer({"Tab", "Return"});
    await("the program's end", [] { return control({"status"}).status == 3; });
    EXPECT_TRUE(application.isRunning());
    EXPECT_THAT(calls(), testing::IsEmpty());
}

} // namespace
} // namespace velmorquit
