#include "X11/WorkspaceTest.h"

namespace velmorquit {
namespace {

using testing::Not;

class KnownProgramsTest : public WorkspaceTest {
protected:
    /// As "entry: name", with a word on those that aren't for the user.
    static std::string described(const App& app) {
        return app->bundleIdentifier().value_or("") + ": " + app->localizedName().value_or("") +
               (app->activationPolicy() == ActivationPolicy::accessory ? " (accessory)" : "");
    }
};

TEST_F(KnownProgramsTest, AreNamedByTheirDesktopEntries) {
    installEntry("org.example.Plain", "Name=Plain Program\nName[it]=Programma semplice\n");
    installEntry("byclass", "Name=By Class\nStartupWMClass=SomethingElse\n");
    installEntry("byinstance", "Name=By Instance\n");
    installEntry("broken", "Name");
    installEntry("agent", "Name=Agent\nNoDisplay=true\n");
    installEntry("helper", "Name=Helper\nNoDisplay=true\nStartupWMClass=Painter\n");
    installEntry("paint", "Name=Paint\nStartupWMClass=Painter\n");
    installEntry("opener", "Name=Opener\nNoDisplay=true\nExec=true %f\n");
    start({"--class", "Elsewhere", "--machine", "some-other-host"});
    start({"--class", "Bar", "--type", "DOCK"});
    start({"--class", "Splash", "--type", "SPLASH", "--type", "NORMAL"});
    struct Case {
        Words manners;
        std::string expected;
    };
    const Case cases[] = {
        {{"SomethingElse"}, "byclass: By Class"},
        {{"ByInstance"}, "byinstance: By Instance"},
        {{"org.example.Plain"}, "org.example.Plain: Plain Program"},
        {{"Broken"}, ": Broken"},
        {{"../../evil"}, ": rude_client"},
        {{"Agent"}, "agent: Agent (accessory)"},
        // Its settings are open, which doesn't make it an application.
        {{"Panel", "--windows", "2", "--dock"}, ": Panel (accessory)"},
        // One that opens files is no helper.
        {{"Opener"}, "opener: Opener"},
        {{"Painter"}, "paint: Paint"},
    };
    for (Case one : cases) {
        one.manners.insert(one.manners.begin(), "--class");
        EXPECT_EQ(described(open(one.manners)), one.expected);
    }
    installEntry("late", "Name=Installed Later\nStartupWMClass=LateComer\n");
    EXPECT_EQ(described(open({"--class", "LateComer"})), "late: Installed Later");
    for (const auto& application : workspace.runningApplications())
        EXPECT_THAT(application->localizedName(),
                    Not(testing::AnyOf("Elsewhere", "Bar", "Splash")));

    const auto both = open({"--class", "Agent", "--next-class", "Paint"});
    EXPECT_TRUE(waitUntil([&] { return both->otherIdentities().size() == 1; }));
    EXPECT_TRUE(waitUntil([&] { return both->activationPolicy() == ActivationPolicy::regular; }));
    const auto app =
        open({"--class", "ByInstance", "--next-class", "Opener", "--next-class", "Nameless"});
    EXPECT_TRUE(waitUntil([&] { return app->otherIdentities().size() == 2; }));
    EXPECT_EQ(app->bundleIdentifier(), "byinstance") << "the first identity is kept";
    EXPECT_TRUE(app->bundlePath()->ends_with("/applications/byinstance.desktop"));
    EXPECT_EQ(app->otherIdentities(), (Words{"Nameless", "opener"}));
}

TEST_F(KnownProgramsTest, AreNamedByTheVariablesOfTheirOwnStart) {
    installEntry("launched", "Name=Launched\n");
    const std::string file =
        std::string(std::getenv("XDG_DATA_HOME")) + "/applications/launched.desktop";
    const auto launch = [&](const std::string& className, const std::string& id) {
        return known(children.emplace_back(Words{"sh", "-c",
                                                 "GIO_LAUNCHED_DESKTOP_FILE=" + file +
                                                     " GIO_LAUNCHED_DESKTOP_FILE_PID=" + id +
                                                     " exec " RUDE_CLIENT " --class " + className}))
            ->bundleIdentifier();
    };
    EXPECT_EQ(launch("Own", "$$"), "launched");
    EXPECT_EQ(launch("Inherited", "1"), std::nullopt);
}

TEST_F(KnownProgramsTest, HaveIconsByNameAndByFileAndBeganAtSomeTime) {
    installEntry("themed", "Name=Themed\nIcon=accessories-text-editor\n");
    installEntry("pictured", "Name=Pictured\nIcon=/usr/share/some picture.png\n");
    EXPECT_EQ(open({"--class", "Themed"})->icon()->name, "accessories-text-editor");
    const auto app = open({"--class", "Pictured"});
    EXPECT_EQ(app->icon()->file, "/usr/share/some picture.png");
    ASSERT_TRUE(app->launchDate());
    EXPECT_LT(std::chrono::abs(loop.now() - *app->launchDate()), 60s);
}

} // namespace
} // namespace velmorquit
