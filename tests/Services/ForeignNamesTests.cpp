#include "Services/RemoteStory.h"
#include "Services/RunNotice.h"
#include "Services/SessionEndTest.h"

namespace velmorquit {
namespace {

const std::string hostile = "A\u202e\x1b[2J\nB\xff" + std::string(1 << 20, 'x');
/// In `hostile` as it may be shown.
constexpr std::string_view harmless = "A [2J B\ufffdxxx";

void expectHarmless(const std::string& text) {
    EXPECT_NE(text.find(harmless), std::string::npos) << text.substr(0, 500);
    for (const std::string_view harm : {"\x1b", "\u202e", "J\n", "\xff"})
        EXPECT_EQ(text.find(harm), std::string::npos) << text.substr(0, 500);
    EXPECT_LT(text.size(), 2000U);
}

TEST_F(RemoteStory, ANameThatHarmsIsShownOtherwiseAndStaysAnIdentity) {
    auto& hidden = desktop.open(hostile).ignoresAsking();
    desktop.open("A\u200b").identified("a");
    desktop.open("A").identified("b");
    desktop.open("\u200b\n").identified("org.example.Blank");
    desktop.preferences.set("excludedApps", Value::Array{hostile});
    serve();
    EXPECT_EQ(names(controller->apps).substr(0, 12), std::string(harmless).substr(0, 12));
    EXPECT_TRUE(names(controller->apps).ends_with("… A A org.example.Blank"));
    SimulatedNotice notice([](std::string_view) {});
    const RunNotice told(*controller, notice, desktop.formats);

    const std::string name = controller->apps->front().name;
    EXPECT_TRUE(controller->isExcluded(controller->apps->front())) << "as before";
    EXPECT_EQ(give("include", {name}), "");
    controller->toggleExclusion(controller->apps->front());
    hidden.withoutWindows();
    controller->refresh();
    EXPECT_EQ(give("include", {name}), "") << "as it was called while it ran";
    hidden.withWindows();
    controller->refresh();
    EXPECT_TRUE(controller->excluded->empty());
    EXPECT_THAT(give("exclude", {"A"}), testing::StartsWith("refused")) << "two look like that";
    controller->quitAll(PowerAction::none);
    desktop.advance(10s);
    ASSERT_TRUE(notice.shown);
    expectHarmless(notice.shown->text);
    expectHarmless(status()["stubborn"][0]["name"]);
    for (const SavedApp& saved : controller->lastSession.get())
        EXPECT_NE(saved.name, "");
}

TEST_F(ControllerStory, WhatDrivesAndToolsAreCalledAndSayIsShownHarmlessly) {
    desktop.volumes.mountStick(hostile, 9);
    desktop.preferences.set("backupFirst", true);
    desktop.backupTool.configure();
    desktop.backupTool.launchError = hostile;
    start();
    expectHarmless(controller->externalDrives->front().name);
    controller->quitAll(PowerAction::shutDown);
    desktop.advance(2s);
    const auto* failed = std::get_if<phases::BackupFailed>(&controller->phase.get());
    ASSERT_TRUE(failed);
    expectHarmless(failed->reason);
}

TEST_F(SessionEndTest, WhatIsInTheWayIsNamedHarmlessly) {
    desktop.registry.account = SessionAccount{};
    desktop.registry.account->inhibitors = {
        {Inhibitor::Against::sessionEnd, hostile, hostile, 0, {}}};
    request(LoginRequest::shutDown);
    desktop.advance(5s);
    ASSERT_TRUE(notice.shown);
    expectHarmless(notice.shown->text);
    ASSERT_FALSE(desktop.systemLog.lines.empty());
    expectHarmless(desktop.systemLog.lines.back());
}

} // namespace
} // namespace velmorquit
