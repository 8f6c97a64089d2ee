#include "Services/ControllerStory.h"
#include "Services/Remote/RemoteControl.h"

#include <nlohmann/json.hpp>

#include <span>

namespace velmorquit {
namespace {

using nlohmann::json;

constexpr std::chrono::seconds week{604800};

std::string pathOf(const std::string& id) { return "/applications/" + id + ".desktop"; }

Value dataOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return Value::Data(bytes.begin(), bytes.end());
}

class LastSession : public ControllerStory {
protected:
    /// Opens an application with an identifier, whose file is there.
    SimulatedApplication& openInstalled(const std::string& id, std::uint64_t memory = 0) {
        desktop.files.paths.insert(pathOf(id));
        return desktop.open(id, memory).identified(id);
    }

    void quitAll() {
        controller->quitAll(PowerAction::none);
        desktop.advance(20s);
    }

    /// A start of the program that finds this stored.
    QuitController& startWith(const Value& list, const Value& date) {
        desktop.preferences.set("lastSession", list);
        desktop.preferences.set("lastSessionDate", date);
        return start();
    }

    static std::string names(const std::vector<SavedApp>& apps) {
        std::string text;
        for (const SavedApp& app : apps)
            text += (text.empty() ? "" : " ") + app.name;
        return text;
    }

    Value storedDate() const { return desktop.preferences.object("lastSessionDate").value_or("-"); }
    std::string storedText() const {
        const auto stored = desktop.preferences.object("lastSession");
        const auto* data = stored ? stored->as<Value::Data>() : nullptr;
        std::string text;
        for (const std::byte byte : data ? *data : Value::Data())
            text += static_cast<char>(byte);
        return text;
    }
};

TEST_F(LastSession, IsWhatQuitLargestFirstEachApplicationOnceAndSurvivesAStart) {
    openInstalled("small", 1);
    openInstalled("twin", 5);
    openInstalled("twin", 4);
    openInstalled("big", 9).quitsAfter(3s);
    openInstalled("stubborn", 99).ignoresAsking();
    desktop.open("pathless", 50);
    start();
    controller->quitAll(PowerAction::none);
    desktop.advance(10s);
    EXPECT_EQ(names(controller->lastSession), "");
    controller->leaveStubbornOpen();
    const WallTime end = desktop.loop.now();
    desktop.advance(1min);
    const std::vector<SavedApp> expected{
        {"big", pathOf("big")}, {"twin", pathOf("twin")}, {"small", pathOf("small")}};
    EXPECT_EQ(controller->lastSession.get(), expected);
    EXPECT_EQ(json::parse(storedText()), json::parse(R"([
        {"name": "big", "path": "/applications/big.desktop"},
        {"name": "twin", "path": "/applications/twin.desktop"},
        {"name": "small", "path": "/applications/small.desktop"}])"));
    EXPECT_EQ(storedDate(), end);
    EXPECT_EQ(start().lastSession.get(), expected);
}

TEST_F(LastSession, IsKnownBeforeAnythingFollowsTheRun) {
    openInstalled("note");
    start();
    desktop.loginWindow.onRequest = [&] { desktop.write("known " + storedText().substr(0, 15)); };
    controller->quitAll(PowerAction::shutDown);
    desktop.advance(20s);
    EXPECT_NE(desktop.log().find("known [{\"name\":\"note\""), std::string::npos) << desktop.log();
}

TEST_F(LastSession, HasWhatAnApplicationTurnedOutToBe) {
    desktop.files.paths.insert(pathOf("writer"));
    SimulatedApplication& office = desktop.open("Soffice").unsettled();
    start();
    controller->quitAll(PowerAction::none);
    desktop.advance(1s);
    EXPECT_FALSE(office.isTerminated()) << "it may be excluded";
    office.settled("Writer", "writer");
    desktop.advance(1s);
    EXPECT_TRUE(office.isTerminated());
    const std::vector<SavedApp> expected{{"Writer", pathOf("writer")}};
    EXPECT_EQ(controller->lastSession.get(), expected);
}

TEST_F(LastSession, LacksWhatTurnedOutToBeExcluded) {
    desktop.preferences.set("excludedApps", Value::Array{"writer", "Earlier"});
    SimulatedApplication& office = desktop.open("Soffice").unsettled();
    SimulatedApplication& player = desktop.open("Earlier").unsettled();
    openInstalled("note").quitsAfter(2s);
    start();
    int drawn = 0;
    const Handle list = controller->apps.subscribe([&] { ++drawn; });
    controller->quitAll(PowerAction::none);
    desktop.advance(1s);
    drawn = 0;
    office.settled("Writer", "writer");
    player.settled("Player", "player");
    desktop.advance(500ms);
    EXPECT_GT(drawn, 0);
    EXPECT_EQ(ControllerStory::names(controller->quittable()), "note");
    desktop.advance(5s);
    EXPECT_NE(desktop.log().find("quitting 1"), std::string::npos) << desktop.log();
    EXPECT_NE(desktop.log().find("done 1 "), std::string::npos) << desktop.log();
    EXPECT_FALSE(office.isTerminated() || player.isTerminated());
}

TEST_F(LastSession, IsReplacedOnlyByARunThatClosedSomethingThatCanBeReopened) {
    openInstalled("one");
    start();
    quitAll();
    const Value date = storedDate();
    quitAll();
    desktop.open("pathless");
    openInstalled("stubborn").ignoresAsking();
    controller->quitAll(PowerAction::none);
    desktop.advance(7s);
    controller->leaveStubbornOpen();
    EXPECT_EQ(names(controller->lastSession), "one");
    EXPECT_EQ(storedDate(), date);

    openInstalled("two");
    controller->quitAll(PowerAction::none);
    desktop.advance(7s);
    controller->forceQuitStubborn();
    desktop.advance(1s);
    EXPECT_EQ(names(controller->lastSession), "stubborn two");
    EXPECT_NE(storedDate(), date);
}

TEST_F(LastSession, IsOfferedForLessThanAWeekToAProgramThatStarts) {
    const Value list = dataOf(R"([{"path": "/p", "name": "n"}])");
    const WallTime now = desktop.loop.now();
    EXPECT_TRUE(startWith(list, now - week).lastSession->empty());
    EXPECT_EQ(names(startWith(list, now - week + 1ns).lastSession), "n");
    desktop.advance(2 * week);
    EXPECT_EQ(names(controller->lastSession), "n") << "what is loaded stays";
    EXPECT_EQ(names(startWith(list, desktop.loop.now() + 1h).lastSession), "n");
    EXPECT_TRUE(startWith(list, WallTime::min()).lastSession->empty());
    EXPECT_TRUE(startWith(list, "yesterday").lastSession->empty());
    desktop.preferences.remove("lastSessionDate");
    EXPECT_TRUE(start().lastSession->empty());
}

TEST_F(LastSession, ThatIsDamagedIsNoneAndStaysStoredUntilItIsReplaced) {
    const std::string deep(100000, '[');
    for (const std::string& damaged :
         {std::string(), std::string("["), std::string("null"), std::string("{}"),
          std::string(R"([{"name": "n", "path": "/p"}, {"name": "n"}])"),
          std::string(R"([{"name": "n", "path": 1}])"), std::string(R"(["n", "/p"])"),
          std::string("[{\"name\": \"n\", \"path\": \"/\xff\"}]"), deep}) {
        EXPECT_TRUE(startWith(dataOf(damaged), desktop.loop.now()).lastSession->empty());
        EXPECT_EQ(storedText(), damaged);
    }
    startWith(R"([{"name": "n", "path": "/p"}])", desktop.loop.now());
    EXPECT_TRUE(controller->lastSession->empty()) << "a text is no data";
    openInstalled("one");
    quitAll();
    EXPECT_EQ(names(start().lastSession), "one");
}

TEST_F(LastSession, HoldsWhatJsonCanHold) {
    desktop.open("\"Quoted\"\n").identified("back\\slash \"é\"");
    desktop.open("Bad path").identified("\xff");
    desktop.open("Ca\xff").identified("name");
    start();
    quitAll();
    EXPECT_EQ(names(controller->lastSession), "\"Quoted\" Ca\uFFFD");
    const std::vector<SavedApp> expected{{"\"Quoted\"", pathOf("back\\slash \"é\"")},
                                         {"Ca\uFFFD", pathOf("name")}};
    EXPECT_EQ(start().lastSession.get(), expected);

    desktop.preferences.remove("lastSession");
    desktop.open("Only a bad path").identified("\xff");
    start();
    quitAll();
    EXPECT_EQ(storedText(), "");
}

TEST_F(LastSession, IsReopenedButForWhatRunsOrHasGoneAndIsForgotten) {
    for (const char* id : {"gone", "tray", "one", "two"})
        openInstalled(id);
    start();
    quitAll();
    desktop.files.paths.erase(pathOf("gone"));
    openInstalled("tray").withoutWindows();
    EXPECT_EQ(names(controller->reopenable()), "one two");
    desktop.workspace.onOpen = [this](const std::string& path) {
        if (path == pathOf("one"))
            openInstalled("one");
    };
    desktop.startLog();
    controller->reopenLastSession();
    EXPECT_EQ(desktop.log(), "0.00 open /applications/one.desktop\n"
                             "0.00 open /applications/two.desktop\n");
    EXPECT_TRUE(controller->lastSession->empty());
    EXPECT_EQ(storedText(), "");
    EXPECT_EQ(storedDate(), Value("-"));
    controller->reopenLastSession();
    EXPECT_EQ(desktop.log().find("two"), desktop.log().rfind("two"));
}

TEST_F(LastSession, IsForgottenAlsoWhenNothingOfItCanBeOpened) {
    openInstalled("one");
    start();
    quitAll();
    desktop.files.paths.clear();
    controller->reopenLastSession();
    EXPECT_EQ(desktop.log().find("open"), std::string::npos);
    EXPECT_TRUE(start().lastSession->empty());
}

TEST_F(LastSession, IsReopenedAndForgottenByOthers) {
    openInstalled("one");
    openInstalled("two");
    start();
    ActionRunner actions(desktop.loop, desktop.kernel, desktop.formats);
    RemoteControl control(*controller, actions, desktop.ports());
    const auto give = [this](const char* verb) {
        return json::parse(desktop.remote.give(verb).text);
    };
    EXPECT_EQ(give("reopen")["text"], "Non ci sono app da riaprire.");
    quitAll();
    const json two = json::parse(R"([{"name": "one", "path": "/applications/one.desktop"},
                                     {"name": "two", "path": "/applications/two.desktop"}])");
    EXPECT_EQ(give("status")["reopenable"], two);
    EXPECT_EQ(give("reopen"), (json{{"reopened", two}, {"text", "Riapro 2 app."}}));
    EXPECT_EQ(give("status")["reopenable"], json::array());
    openInstalled("one");
    quitAll();
    EXPECT_EQ(give("reopen")["text"], "Riapro 1 app.");
    openInstalled("one");
    quitAll();
    EXPECT_TRUE(give("forget").is_object());
    EXPECT_EQ(give("reopen")["text"], "Non ci sono app da riaprire.");
}

TEST_F(LastSession, WhatNoFileStartsIsNamedBesideWhatComesBack) {
    openInstalled("one");
    for (const char* name : {"Lost", "Lost", "Back"})
        desktop.open(name);
    start();
    ActionRunner actions(desktop.loop, desktop.kernel, desktop.formats);
    RemoteControl control(*controller, actions, desktop.ports());
    const auto reopen = [this] { return desktop.remote.give("reopen"); };
    controller->quitAll(PowerAction::none);
    EXPECT_EQ(reopen().status, RemoteAnswer::Status::refused);
    desktop.advance(20s);
    desktop.open("Back");
    controller->refresh();
    EXPECT_EQ(json::parse(reopen().text)["text"], "Riapro 1 app. Non si può riaprire: Lost.");
    EXPECT_EQ(json::parse(reopen().text)["text"], "Non ci sono app da riaprire.");
    desktop.open("Gone");
    quitAll();
    EXPECT_EQ(json::parse(reopen().text)["text"],
              "Non ci sono app da riaprire. Non si possono riaprire: Back, Gone.");
}

} // namespace
} // namespace velmorquit
