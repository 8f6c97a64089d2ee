#include "Linux/Appearance/PortalSettings.h"
#include "support/PrivateBus.h"
#include "support/StandInPortal.h"
#include "support/Waiting.h"

#include <filesystem>
#include <memory>

namespace velmorquit {
namespace {

class PortalSettingsTest : public testing::Test {
protected:
    PortalSettingsTest() {
        portal.groups = {
            {"look", {{"scheme", 1U}, {"accent", 7U}, {"frames", QVariantList{1.0, 2.0}}}},
            {"motion", {{"is-on", true}, {"style", "quick"}, {"scheme", 4}}},
            {"secret", {{"scheme", 3}}}};
    }

    void begin() {
        settings = std::make_unique<PortalSettings>(
            session,
            std::set<std::string>{"look scheme", "look frames", "motion is-on", "motion style",
                                  "absent key"},
            [this] { ++changes; });
    }
    DesktopSettings values() {
        // The portal is asked only so often.
        linger(250);
        settle({session, portal.bus});
        return settings->values();
    }
    static DesktopSettings all(int scheme = 1, int isOn = 1) {
        return {{"look scheme", scheme}, {"motion is-on", isOn}, {"motion style", "quick"}};
    }

    PrivateBus bus;
    QDBusConnection session = bus.connect();
    StandInPortal portal{bus.connect()};
    int changes = 0;
    std::unique_ptr<PortalSettings> settings;
};

TEST_F(PortalSettingsTest, KnowsWhatItWantsWithoutWaitingAndFollowsIt) {
    portal.appear();
    portal.isSlow = true;
    begin();
    EXPECT_TRUE(values().empty());
    portal.tell("look", "scheme", 9U);
    EXPECT_TRUE(values().empty()) << "what comes before the answer is in the answer";
    portal.answer();
    EXPECT_EQ(values(), all());
    EXPECT_EQ(changes, 1);

    portal.change("look", "scheme", 2U);
    portal.change("motion", "is-on", false);
    EXPECT_EQ(values(), all(2, 0));
    EXPECT_EQ(changes, 3);
    portal.change("look", "scheme", 2U);
    portal.change("look", "accent", 8U);
    portal.change("secret", "scheme", 8U);
    portal.change("motion", "style", QVariantList{1, 2});
    EXPECT_EQ(values(), all(2, 0));
    EXPECT_EQ(changes, 3) << "nothing else is of interest";
}

TEST_F(PortalSettingsTest, AsksOneThatComesLaterOrAgainAndKeepsWhatItSaid) {
    begin();
    EXPECT_TRUE(values().empty());
    portal.appear();
    EXPECT_EQ(values(), all());
    portal.disappear();
    EXPECT_EQ(values(), all());
    portal.tell("look", "scheme", 5U);
    portal.groups["look"]["scheme"] = 2U;
    EXPECT_EQ(values(), all());
    portal.appear();
    EXPECT_EQ(values(), all(2));
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(portal.calls.size(), 2);
}

TEST_F(PortalSettingsTest, StartsThePortalWhereItCanBeStarted) {
    const std::filesystem::path marker = bus.folder() / "started";
    bus.offer(StandInPortal::service, "/usr/bin/touch " + marker.string());
    begin();
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(marker); }));
    EXPECT_TRUE(values().empty());
}

} // namespace
} // namespace velmorquit
