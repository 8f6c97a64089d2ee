#include "Services/Settings.h"
#include "Simulated/SimulatedDesktop.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

class SettingsTest : public testing::Test {
protected:
    SimulatedDesktop desktop;
    SimulatedPreferences& preferences = desktop.preferences;
    Settings settings{desktop.loop, desktop.preferences};
};

TEST_F(SettingsTest, ComeBackAsTheyWereStored) {
    const std::vector<SavedApp> apps{{"Note", "/applications/note.desktop"}};
    settings.excludedApps.store(std::set<std::string>{"b", "a"});
    settings.afterQuit.store(PowerAction::restart);
    settings.confirmScheduled.store(false);
    settings.lastSession.store(apps);
    settings.lastSessionDate.store(desktop.loop.now());
    settings.language.store(AppLanguage::english);
    const Settings later(desktop.loop, preferences);
    EXPECT_EQ(later.excludedApps.get(), (std::set<std::string>{"a", "b"}));
    EXPECT_EQ(later.afterQuit.get(), PowerAction::restart);
    EXPECT_FALSE(later.confirmScheduled);
    EXPECT_EQ(later.lastSession.get(), apps);
    EXPECT_EQ(later.lastSessionDate.get(), desktop.loop.now());
    EXPECT_EQ(later.language.get(), AppLanguage::english);

    settings.lastSession.store(std::nullopt);
    settings.lastSessionDate.store(std::nullopt);
    settings.language.store(AppLanguage::system);
    EXPECT_EQ(preferences.values(), (Value::Dictionary{{"excludedApps", Value::Array{"a", "b"}},
                                                       {"afterQuit", "restart"},
                                                       {"confirmScheduled", false}}));
}

TEST_F(SettingsTest, WhatIsNoSuchValueLeavesTheDefault) {
    for (const Value& odd : {Value(1), Value("Restart"), Value(Value::Array{"a", 1})}) {
        for (const char* key : {"excludedApps", "afterQuit", "confirmScheduled", "lastSession",
                                "lastSessionDate", "AppleLanguages"})
            preferences.set(key, odd);
        desktop.loop.settle();
        EXPECT_FALSE(settings.excludedApps.get());
        EXPECT_EQ(settings.afterQuit.get(), PowerAction::none);
        EXPECT_TRUE(settings.confirmScheduled);
        EXPECT_FALSE(settings.lastSession.get());
        EXPECT_FALSE(settings.lastSessionDate.get());
        EXPECT_EQ(settings.language.get(), AppLanguage::system);
    }
    preferences.set("integer", 0);
    preferences.set("false", false);
    EXPECT_TRUE(preferences.boolean("integer", true) && preferences.boolean("absent", true));
    EXPECT_FALSE(preferences.boolean("integer", false) || preferences.boolean("false", true));
}

} // namespace
} // namespace velmorquit
