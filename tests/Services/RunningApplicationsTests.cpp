#include "Services/ControllerStory.h"

namespace velmorquit {
namespace {

using RunningApplications = ControllerStory;
using Keys = std::set<std::string>;

TEST_F(RunningApplications, AreListedLargestFirstAndStablyWithoutAgentsOrOurselves) {
    desktop.open("Small", 1);
    desktop.open("TwinA", 5);
    desktop.open("Agent", 900).withoutWindows();
    auto& ends = desktop.open("TwinB", 5);
    desktop.open("Big", 9);
    start();
    desktop.workspace.add(std::make_shared<SimulatedApplication>(
        1, "Velmor Quit", 7,
        SimulatedApplication::Surroundings{desktop.loop, [](auto) {}, [] {}, [] {}}));
    EXPECT_EQ(names(controller->apps), "Big TwinA TwinB Small");
    auto& tray = desktop.open("Tray", 2).livesOnWithoutWindows();
    ends.end();
    EXPECT_EQ(names(controller->apps), "Big TwinA Tray Small");
    tray.terminate(AskedBy::run);
    EXPECT_EQ(names(controller->apps), "Big TwinA Small");
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
    const Handle watch = controller->apps.subscribe(
        [this] { desktop.write("memory " + std::to_string(app("Note").memory)); });
    after(0s);
    in(0s, [&] { note.setMemory(2); });
    in(2600ms, [&] { note.setMemory(3); });
    in(5100ms, [&] {
        controller->stopLiveUpdates();
        note.setMemory(4);
    });
    EXPECT_EQ(after(1min), Lines("2.50 memory 2", "5.00 memory 3"));
}

class Exclusions : public ControllerStory {
protected:
    Value stored() const { return desktop.preferences.object("excludedApps").value_or("nothing"); }
};

TEST_F(Exclusions, AreTheDefaultOnesUntilTheUserSaysOtherwiseAndAStartWritesNothing) {
    desktop.open("Files").identified("org.example.Files");
    desktop.open("Note");
    desktop.workspace.setDefaultExclusions({"org.example.Files"});
    EXPECT_EQ(start().excluded.get(), (Keys{"com.apple.finder", "org.example.Files"}));
    EXPECT_EQ(names(controller->quittable()), "Note");
    EXPECT_EQ(names(controller->apps), "Files Note");
    EXPECT_TRUE(desktop.preferences.values().empty());
    desktop.preferences.set("excludedApps", Value::Array{});
    EXPECT_TRUE(start().excluded->empty());
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
    EXPECT_TRUE(controller->includeAgain("org.example.alfa"));
    EXPECT_FALSE(controller->includeAgain("org.example.alfa"));
    EXPECT_EQ(stored(), (Value::Array{"Éclair"}));
}

TEST_F(Exclusions, OfOnePartOfAnOfficeSuiteHoldForItsProcess) {
    desktop.open("Writer").identified("writer").alsoKnownAs("calc");
    desktop.preferences.set("excludedApps", Value::Array{"calc"});
    EXPECT_EQ(run(PowerAction::none, 10s), Lines("0.00 done 0 0", "8.00 idle"));
    controller->toggleExclusion(app("Writer"));
    EXPECT_EQ(names(controller->quittable()), "Writer");
}

TEST_F(Exclusions, OfAnotherProgramHoldAtOnceAndAreNotWrittenOver) {
    for (const char* name : {"Note", "Mail", "Files"})
        desktop.open(name);
    desktop.preferences.set("excludedApps", Value::Array{"Files"});
    start();
    desktop.preferences.set("excludedApps", Value::Array{"Files", "Note"});
    desktop.preferences.set("backupFirst", true);
    desktop.preferences.set("afterQuit", "restart");
    desktop.loop.settle();
    EXPECT_EQ(names(controller->quittable()), "Mail");
    EXPECT_TRUE(controller->backupFirst);
    EXPECT_EQ(controller->afterQuit.get(), PowerAction::restart);
    controller->chooseAfterQuit(PowerAction::shutDown);
    EXPECT_EQ(desktop.preferences.text("afterQuit"), "shutDown");
    // What nobody has told of yet.
    desktop.preferences.onRefresh = [this] {
        desktop.preferences.set("excludedApps", Value::Array{"Letter", "Mail", "Note"});
    };
    controller->toggleExclusion(app("Mail"));
    EXPECT_EQ(stored(), (Value::Array{"Letter", "Mail", "Note"})) << "as the user wanted it";
    controller->toggleExclusion(app("Note"));
    EXPECT_EQ(stored(), (Value::Array{"Letter", "Mail"}));
}

} // namespace
} // namespace velmorquit
