#include "Linux/Appearance/PortalSettings.h"
#include "support/PrivateBus.h"
#include "support/StandInPortal.h"
#include "support/Waiting.h"

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

TEST_F(PortalSettingsTest, KnowsWhatItWantsWithoutWaitingFollowsItAndKeepsIt) {
    begin();
    portal.isSlow = true;
    portal.appear();
    EXPECT_TRUE(values().empty());
    portal.tell("look", "scheme", 9U);
    EXPECT_TRUE(values().empty()) << "what comes before the answer is in the answer";
    portal.answer();
    EXPECT_EQ(values(), all());
    portal.isSlow = false;
    portal.change("look", "scheme", 2U);
    portal.change("motion", "is-on", false);
    for (const char* uninteresting : {"scheme", "accent"})
        portal.change("look", uninteresting, 2U);
    portal.change("motion", "style", QVariantList{1, 2});
    EXPECT_EQ(values(), all(2, 0));
    EXPECT_EQ(changes, 3);

    portal.disappear();
    portal.tell("look", "scheme", 5U);
    portal.groups["look"]["scheme"] = 3U;
    portal.groups["motion"]["style"] = "quick";
    EXPECT_EQ(values(), all(2, 0));
    portal.appear();
    EXPECT_EQ(values(), all(3, 0));
    EXPECT_EQ(portal.calls.size(), 2);
}

} // namespace
} // namespace velmorquit
