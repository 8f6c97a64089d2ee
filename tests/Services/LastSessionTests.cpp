#include "Services/RemoteStory.h"

#include <span>

namespace velmorquit {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::chrono::seconds week{604800};

std::string pathOf(const std::string& id) { return "/applications/" + id + ".desktop"; }

Value dataOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return Value::Data(bytes.begin(), bytes.end());
}

class LastSession : public RemoteStory {
protected:
    /// Opens an application with an identifier, whose file is there.
    SimulatedApplication& openInstalled(const std::string& id, std::uint64_t memory = 0) {
        desktop.files.paths.insert(pathOf(id));
        return desktop.open(id, memory).identified(id);
    }

    std::string quitAll(Duration time = 20s) {
        controller->quitAll(PowerAction::none);
        return after(time);
    }

    /// The names of what a start of the program that finds this stored offers.
    std::string startWith(const Value& list, const Value& date) {
        desktop.preferences.set("lastSession", list);
        desktop.preferences.set("lastSessionDate", date);
        return names(start().lastSession);
    }

    using ControllerStory::names;
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
    quitAll(10s);
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
    desktop.loginWindow.onRequest = [&] { desktop.write("known " + storedText().substr(0, 15)); };
    EXPECT_THAT(run(PowerAction::shutDown, 20s), HasSubstr("known [{\"name\":\"note\""));
}

TEST_F(LastSession, HasWhatApplicationsTurnedOutToBeButForTheExcluded) {
    desktop.preferences.set("excludedApps", Value::Array{"calc", "Earlier"});
    desktop.files.paths = {pathOf("writer"), pathOf("calc"), pathOf("player")};
    SimulatedApplication& office = desktop.open("Soffice").unsettled();
    SimulatedApplication& spared = desktop.open("Soffice2").unsettled();
    SimulatedApplication& player = desktop.open("Earlier").unsettled();
    openInstalled("note").quitsAfter(2s);
    start();
    quitAll(1s);
    EXPECT_FALSE(office.isTerminated()) << "it may be excluded";
    bool isDrawn = false;
    const Handle list = controller->apps.subscribe([&] { isDrawn = true; });
    desktop.loop.settle();
    isDrawn = false;
    office.settled("Writer", "writer");
    spared.settled("Calc", "calc");
    player.settled("Player", "player");
    desktop.advance(500ms);
    EXPECT_TRUE(isDrawn);
    EXPECT_EQ(names(controller->quittable()), "note");
    EXPECT_EQ(after(5s), Lines("0.25 quit Soffice", "0.25 quitting 2", "0.25 ended Soffice",
                               "1.00 ended note", "1.00 event quitDone 2", "1.00 done 2 0"));
    EXPECT_FALSE(spared.isTerminated() || player.isTerminated());
    const std::vector<SavedApp> expected{{"Writer", pathOf("writer")}, {"note", pathOf("note")}};
    EXPECT_EQ(controller->lastSession.get(), expected);
}

TEST_F(LastSession, IsReplacedOnlyByARunThatClosedSomethingThatCanBeReopened) {
    openInstalled("one");
    start();
    quitAll();
    const Value date = storedDate();
    quitAll();
    desktop.open("pathless");
    openInstalled("stubborn").ignoresAsking();
    quitAll(7s);
    controller->leaveStubbornOpen();
    EXPECT_EQ(names(controller->lastSession), "one");
    EXPECT_EQ(storedDate(), date);

    openInstalled("two");
    quitAll(7s);
    controller->forceQuitStubborn();
    desktop.advance(1s);
    EXPECT_EQ(names(controller->lastSession), "stubborn two");
    EXPECT_NE(storedDate(), date);
}

TEST_F(LastSession, IsOfferedForLessThanAWeekToAProgramThatStarts) {
    const Value list = dataOf(R"([{"path": "/p", "name": "n"}])");
    const WallTime now = desktop.loop.now();
    for (const auto& [date, offered] : {std::pair<Value, const char*>(now - week, ""),
                                        {now + 1h, "n"},
                                        {WallTime::min(), ""},
                                        {"yesterday", ""},
                                        {now - week + 1ns, "n"}})
        EXPECT_EQ(startWith(list, date), offered);
    desktop.advance(2 * week);
    EXPECT_EQ(names(controller->lastSession), "n") << "what is loaded stays";
    desktop.preferences.remove("lastSessionDate");
    EXPECT_TRUE(start().lastSession->empty());
}

TEST_F(LastSession, ThatIsDamagedIsNoneAndStaysStoredUntilItIsReplaced) {
    using namespace std::string_literals;
    const std::string deep(100000, '[');
    for (const std::string& damaged :
         {""s, "["s, "null"s, "{}"s, R"([{"name": "n", "path": "/p"}, {"name": "n"}])"s,
          R"([{"name": "n", "path": 1}])"s, R"(["n", "/p"])"s,
          "[{\"name\": \"n\", \"path\": \"/\xff\"}]"s, deep}) {
        EXPECT_EQ(startWith(dataOf(damaged), desktop.loop.now()), "");
        EXPECT_EQ(storedText(), damaged);
    }
    EXPECT_EQ(startWith(R"([{"name": "n", "path": "/p"}])", desktop.loop.now()), "")
        << "a text is no data";
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
    controller->reopenLastSession();
    EXPECT_EQ(storedText(), "");
    EXPECT_EQ(storedDate(), Value("-"));
    controller->reopenLastSession();
    EXPECT_EQ(after(0s),
              Lines("0.00 open /applications/one.desktop", "0.00 open /applications/two.desktop"));
    quitAll();
    desktop.files.paths.clear();
    controller->reopenLastSession();
    EXPECT_EQ(after(0s), "");
    EXPECT_TRUE(start().lastSession->empty()) << "also when nothing of it can be opened";
}

TEST_F(LastSession, IsReopenedAndForgottenByOthers) {
    openInstalled("one");
    openInstalled("two");
    serve();
    EXPECT_EQ(give("reopen"), "Non ci sono app da riaprire.");
    quitAll();
    const json two = json::parse(R"([{"name": "one", "path": "/applications/one.desktop"},
                                     {"name": "two", "path": "/applications/two.desktop"}])");
    EXPECT_EQ(status()["reopenable"], two);
    EXPECT_EQ(answer("reopen"), (json{{"reopened", two}, {"text", "Riapro 2 app."}}));
    EXPECT_EQ(status()["reopenable"], json::array());
    openInstalled("one");
    for (const char* name : {"Lost", "Lost", "Back"})
        desktop.open(name);
    controller->quitAll(PowerAction::none);
    EXPECT_THAT(give("reopen"), testing::StartsWith("refused"));
    desktop.advance(20s);
    desktop.open("Back");
    controller->refresh();
    EXPECT_EQ(give("reopen"), "Riapro 1 app. Non si può riaprire: Lost.");
    EXPECT_EQ(give("reopen"), "Non ci sono app da riaprire.");
    openInstalled("one");
    quitAll();
    EXPECT_EQ(give("forget"), "");
    EXPECT_EQ(give("reopen"), "Non ci sono app da riaprire.");
}

} // namespace
} // namespace velmorquit
