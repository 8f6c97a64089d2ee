#include "Services/ControllerStory.h"

namespace velmorquit {
namespace {

using RunningApplications = ControllerStory;

TEST_F(RunningApplications, AreListedLargestFirstAndStablyWithoutAgentsOrOurselves) {
    desktop.open("Small", 1);
    desktop.open("TwinA", 5);
    desktop.open("Agent", 900).withoutWindows();
    desktop.open("TwinB", 5);
    desktop.open("Big", 9);
    start();
    EXPECT_EQ(names(controller->apps), "Big TwinA TwinB Small");

    auto self = std::make_shared<SimulatedApplication>(
        1, "Velmor Quit", 7,
        SimulatedApplication::Surroundings{desktop.loop, [](auto) {}, [] {}, [] {}});
    desktop.workspace.add(self);
    EXPECT_EQ(names(controller->apps), "Big TwinA TwinB Small");
}

TEST_F(RunningApplications, FollowLaunchesEndsAndWindows) {
    auto& note = desktop.open("Note");
    start();
    auto& tray = desktop.open("Tray").livesOnWithoutWindows();
    EXPECT_EQ(names(controller->apps), "Note Tray");
    note.end();
    EXPECT_EQ(names(controller->apps), "Tray");
    tray.terminate(AskedBy::run);
    EXPECT_EQ(names(controller->apps), "");
}

TEST_F(RunningApplications, HaveAFallbackForEveryMissingFigureOrName) {
    desktop.open("x").withoutName().identified("org.example.Only");
    desktop.open("y").withoutName();
    desktop.kernel.isBlind = true;
    start();
    EXPECT_EQ(names(controller->apps), "org.example.Only App");
    EXPECT_EQ(app("App").memory, 0U);
    EXPECT_EQ(app("App").exclusionKey(), "App");
}

TEST_F(RunningApplications, AreRefreshedEvery2500MillisecondsByOneTimerOnly) {
    auto& note = desktop.open("Note", 1);
    start().startLiveUpdates();
    controller->startLiveUpdates();
    int tellings = 0;
    const Handle watch = controller->apps.subscribe([&] { ++tellings; });
    desktop.loop.settle();
    tellings = 0;
    for (const std::uint64_t bytes : {2, 3}) {
        note.setMemory(bytes);
        desktop.advance(2400ms);
        EXPECT_EQ(app("Note").memory, bytes - 1);
        desktop.advance(100ms);
        EXPECT_EQ(app("Note").memory, bytes);
    }
    EXPECT_EQ(tellings, 2);
    controller->stopLiveUpdates();
    note.setMemory(4);
    desktop.advance(1min);
    EXPECT_EQ(app("Note").memory, 3U);
}

class Exclusions : public ControllerStory {
protected:
    Value stored() const { return desktop.preferences.object("excludedApps").value_or("nothing"); }
};

TEST_F(Exclusions, AreTheDefaultOnesUntilTheUserSaysOtherwiseAndAStartWritesNothing) {
    desktop.open("Files").identified("org.example.Files");
    desktop.open("Note");
    desktop.workspace.setDefaultExclusions({"org.example.Files"});
    start();
    EXPECT_EQ(controller->excluded.get(),
              (std::set<std::string>{"com.apple.finder", "org.example.Files"}));
    EXPECT_EQ(names(controller->quittable()), "Note");
    EXPECT_EQ(names(controller->apps), "Files Note");
    EXPECT_TRUE(desktop.preferences.values().empty());
}

TEST_F(Exclusions, AnEmptyListExcludesNothingAndOneThatHoldsANumberIsNone) {
    desktop.preferences.set("excludedApps", Value::Array{});
    EXPECT_TRUE(start().excluded->empty());
    desktop.preferences.set("excludedApps", Value::Array{"a", 1});
    EXPECT_EQ(start().excluded.get(), std::set<std::string>{"com.apple.finder"});
    desktop.preferences.set("excludedApps", "a");
    EXPECT_EQ(start().excluded.get(), std::set<std::string>{"com.apple.finder"});
}

TEST_F(Exclusions, AreToggledByIdentifierOrNameAndStoredSorted) {
    desktop.preferences.set("excludedApps", Value::Array{});
    desktop.open("Zeta");
    desktop.open("Alfa").identified("org.example.alfa");
    desktop.open("Éclair");
    start();
    for (const char* name : {"Éclair", "Alfa", "Zeta"})
        controller->toggleExclusion(app(name));
    EXPECT_EQ(stored(), (Value::Array{"Zeta", "org.example.alfa", "Éclair"}));
    EXPECT_TRUE(controller->quittable().empty());
    controller->toggleExclusion(app("Zeta"));
    EXPECT_EQ(stored(), (Value::Array{"org.example.alfa", "Éclair"}));
    EXPECT_TRUE(controller->includeAgain("org.example.alfa"));
    EXPECT_FALSE(controller->includeAgain("org.example.alfa"));
    EXPECT_EQ(stored(), (Value::Array{"Éclair"}));
}

TEST_F(Exclusions, OfOnePartOfAnOfficeSuiteHoldForItsProcess) {
    desktop.open("Writer").identified("writer").alsoKnownAs("calc");
    desktop.preferences.set("excludedApps", Value::Array{"calc"});
    start();
    EXPECT_TRUE(controller->quittable().empty());
    controller->quitAll(PowerAction::none);
    desktop.advance(10s);
    EXPECT_EQ(desktop.log().find("quit Writer"), std::string::npos);
    controller->toggleExclusion(app("Writer"));
    EXPECT_EQ(names(controller->quittable()), "Writer");
}

TEST_F(Exclusions, OfAnotherProgramHoldAtOnceAndAreNotWrittenOver) {
    desktop.open("Note");
    desktop.open("Mail");
    desktop.open("Files");
    desktop.preferences.set("excludedApps", Value::Array{"Files"});
    start();
    desktop.preferences.set("excludedApps", Value::Array{"Files", "Note"});
    desktop.preferences.set("backupFirst", true);
    desktop.preferences.set("afterQuit", "restart");
    desktop.loop.settle();
    EXPECT_EQ(names(controller->quittable()), "Mail");
    EXPECT_TRUE(controller->backupFirst);
    EXPECT_EQ(controller->afterQuit.get(), PowerAction::restart);
    // What nobody has told of yet.
    desktop.preferences.onRefresh = [this] {
        desktop.preferences.set("excludedApps", Value::Array{"Letter", "Mail", "Note"});
    };
    controller->toggleExclusion(app("Mail"));
    EXPECT_EQ(stored(), (Value::Array{"Letter", "Mail", "Note"})) << "as the user wanted it";
    controller->toggleExclusion(app("Note"));
    EXPECT_EQ(stored(), (Value::Array{"Letter", "Mail"}));
}

TEST_F(Exclusions, TheStoredPowerActionIsReadExactlyAndWrittenOnChange) {
    desktop.preferences.set("afterQuit", "Restart");
    EXPECT_EQ(start().afterQuit.get(), PowerAction::none);
    desktop.preferences.set("afterQuit", true);
    EXPECT_EQ(start().afterQuit.get(), PowerAction::none);
    desktop.preferences.set("afterQuit", "logOut");
    EXPECT_EQ(start().afterQuit.get(), PowerAction::logOut);
    controller->chooseAfterQuit(PowerAction::shutDown);
    EXPECT_EQ(desktop.preferences.text("afterQuit"), "shutDown");
}

TEST(PreferencesReading, ABooleanIsABoolean) {
    VirtualLoop loop;
    SimulatedPreferences preferences(loop);
    preferences.set("text", "false");
    preferences.set("integer", 0);
    preferences.set("false", false);
    EXPECT_TRUE(preferences.boolean("text", true));
    EXPECT_TRUE(preferences.boolean("integer", true));
    EXPECT_TRUE(preferences.boolean("absent", true));
    EXPECT_FALSE(preferences.boolean("integer", false));
    EXPECT_FALSE(preferences.boolean("false", true));
    int told = 0;
    const Handle observer = preferences.observe([&] { ++told; });
    preferences.remove("text");
    preferences.remove("absent");
    loop.settle();
    EXPECT_EQ(told, 1);
}

} // namespace
} // namespace velmorquit
