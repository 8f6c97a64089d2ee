#include "Services/ControllerStory.h"
#include "Services/Remote/RemoteControl.h"

#include <nlohmann/json.hpp>

namespace velmorquit {
namespace {

using nlohmann::json;
using Status = RemoteAnswer::Status;

class RemoteControlTest : public ControllerStory {
protected:
    void serve() {
        start();
        control = std::make_unique<RemoteControl>(*controller, actions, desktop.ports());
        desktop.loop.settle();
        desktop.remote.changes.clear();
    }

    json status() { return json::parse(desktop.remote.give("status").text); }

    std::string told() {
        std::string kinds;
        for (const std::string& change : desktop.remote.changes)
            kinds += json::parse(change)["change"].get<std::string>() + ' ';
        return kinds;
    }

    ActionRunner actions{desktop.loop, desktop.kernel, desktop.formats};
    std::unique_ptr<RemoteControl> control;
};

TEST_F(RemoteControlTest, TellsTheStatusOfARunWithFreshFigures) {
    auto& note = desktop.open("Note", 5).identified("org.example.note").ignoresAsking();
    desktop.open("Ca\xff", 3).quitsAfter(1s);
    serve();
    note.setMemory(9);
    EXPECT_EQ(desktop.remote.give("quitAll", {"restart"}).status, Status::done);
    desktop.advance(7s);
    const json now = status();
    EXPECT_EQ(now["phase"], "waiting");
    EXPECT_EQ(now["applications"],
              json::parse(R"([{"name":"Note","id":"org.example.note","process":100,"memory":9,
                               "excluded":false}])"));
    EXPECT_EQ(now["stubborn"][0]["name"], "Note");
    EXPECT_EQ(desktop.remote.give("leave").status, Status::done);
    EXPECT_EQ(status()["phase"], "done");
    EXPECT_EQ(status()["closed"], 1);
    EXPECT_EQ(status()["freed"], 3);
}

TEST_F(RemoteControlTest, AnnouncesEachChangeOnce) {
    auto& note = desktop.open("Note").quitsAfter(7s);
    serve();
    desktop.open("Mail").quitsAfter(100ms);
    note.setMemory(50);
    controller->refresh();
    desktop.loop.settle();
    EXPECT_EQ(told(), "opened ");
    desktop.remote.give("quitAll");
    desktop.advance(20s);
    EXPECT_EQ(told(),
              "opened phase closed event stubborn phase closed stubborn event phase phase ");
}

TEST_F(RemoteControlTest, RefusesWhatCannotBeDoneNowAndUnknownWords) {
    desktop.open("Root").cannotBeAsked().cannotBeForced();
    serve();
    for (const char* verb : {"force", "leave"})
        EXPECT_EQ(desktop.remote.give(verb).status, Status::refused) << verb;
    EXPECT_EQ(desktop.remote.give("quitAll", {"explode"}).status, Status::unknown);
    EXPECT_EQ(desktop.remote.give("quitAll", {"none", "none"}).status, Status::unknown);
    EXPECT_EQ(desktop.remote.give("exclude").status, Status::unknown);
    EXPECT_EQ(desktop.remote.give("Status").status, Status::unknown);
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
    desktop.remote.give("quitAll");
    EXPECT_EQ(desktop.remote.give("quitAll").status, Status::refused);
    desktop.advance(7s);
    EXPECT_EQ(json::parse(desktop.remote.give("force").text)["refused"], json::array({"Root"}));
    EXPECT_TRUE(is<phases::Waiting>(controller->phase));
}

TEST_F(RemoteControlTest, UnderstandsTheNamesThatAPersonWouldUse) {
    desktop.preferences.set("excludedApps", Value::Array{});
    desktop.open("Text Editor").identified("org.example.Editor");
    desktop.open("Twin").identified("org.example.one");
    desktop.open("Twin").identified("org.example.two");
    serve();
    const auto excluded = [&] { return status()["excluded"]; };
    EXPECT_EQ(desktop.remote.give("exclude", {"text editor"}).status, Status::done);
    EXPECT_EQ(desktop.remote.give("exclude", {"Text Editor"}).status, Status::done);
    EXPECT_EQ(excluded(), json::array({"org.example.Editor"}));
    EXPECT_EQ(desktop.remote.give("exclude", {"twin"}).status, Status::refused);
    EXPECT_EQ(desktop.remote.give("exclude", {"ORG.EXAMPLE.TWO"}).status, Status::done);
    EXPECT_EQ(desktop.remote.give("exclude", {"101"}).status, Status::done);
    EXPECT_EQ(excluded(),
              json::array({"org.example.Editor", "org.example.one", "org.example.two"}));
    EXPECT_EQ(desktop.remote.give("exclude", {"nobody"}).status, Status::refused);
    desktop.open("Text Viewer");
    controller->refresh();
    EXPECT_EQ(desktop.remote.give("include", {"text"}).status, Status::done) << "the excluded one";
    EXPECT_EQ(desktop.remote.give("include", {"Text Editor"}).status, Status::done);
    EXPECT_EQ(desktop.remote.give("exclude", {"text"}).text,
              "Più app cominciano con «text»: Text Editor, Text Viewer.");
    EXPECT_EQ(desktop.remote.give("include", {"tw"}).text,
              "Più app cominciano con «tw»: org.example.one, org.example.two.");
    EXPECT_EQ(excluded(), json::array({"org.example.one", "org.example.two"}));
}

TEST_F(RemoteControlTest, AsksOnlyThoseThatAreNamedAndNoRunBegins) {
    desktop.open("Note").identified("org.example.note").quitsAfter(1s);
    desktop.open("Notebook").quitsAfter(1s);
    auto& shell = desktop.open("Shell").hindered(StayReason::busyTerminal);
    desktop.open("Twin").identified("one");
    desktop.open("Twin").identified("two");
    desktop.preferences.set("excludedApps", Value::Array{"org.example.note"});
    serve();
    desktop.startLog();
    const auto refusal = [&](const std::vector<std::string>& names) {
        const RemoteAnswer answer = desktop.remote.give("quit", names);
        return answer.status == Status::refused ? answer.text : "";
    };
    EXPECT_EQ(refusal({"Note", "Nobody"}), "Nessuna app aperta si chiama «Nobody».");
    EXPECT_EQ(refusal({"not"}), "Più app cominciano con «not»: Note, Notebook.");
    EXPECT_EQ(refusal({"Notebook", "Twin"}), "Più app si chiamano «Twin»: indica l'id di una.");
    EXPECT_EQ(refusal({"Shell"}), "Shell: Vi è in corso un comando che andrebbe perso.");
    EXPECT_EQ(refusal({""}), "Nessuna app aperta si chiama «».");
    EXPECT_EQ(desktop.log(), Lines()) << "nobody is asked where one name is wrong";

    const json answer =
        json::parse(desktop.remote.give("quit", {"note", "NOTEB", "sh", "Note", "one"}).text);
    EXPECT_EQ(answer["text"], "Chiedo di chiudersi a: Note, Notebook, Twin.\n"
                              "Shell: Vi è in corso un comando che andrebbe perso.");
    EXPECT_EQ(answer["asked"].size(), 3U);
    EXPECT_EQ(answer["notAsked"][0]["reason"], "busyTerminal");
    desktop.advance(10s);
    EXPECT_EQ(told(), "closed closed closed ") << "an excluded one that is named, too";
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
    EXPECT_TRUE(controller->lastSession->empty());

    shell.ignoresAsking();
    desktop.remote.give("quitAll");
    EXPECT_EQ(refusal({"Shell"}), "Velmor Quit sta già chiudendo le app.");
}

TEST_F(RemoteControlTest, TellsAnEndFromALossOfWindowsWhicheverComesFirst) {
    desktop.open("Ends");
    auto& tray = desktop.open("Tray").livesOnWithoutWindows();
    serve();
    desktop.remote.give("quitAll");
    desktop.advance(100ms);
    EXPECT_EQ(told(), "phase windowless closed ");
    desktop.advance(1s);
    controller->leaveStubbornOpen();
    desktop.advance(1s);
    desktop.remote.changes.clear();
    tray.end();
    desktop.loop.settle();
    EXPECT_EQ(told(), "closed ");
}

TEST_F(RemoteControlTest, TellsWhyTheyStayAndWhenThatChanges) {
    auto& note = desktop.open("Note").ignoresAsking();
    serve();
    desktop.remote.give("quitAll");
    desktop.advance(7s);
    EXPECT_EQ(status()["stubborn"][0]["reason"], json());
    desktop.remote.changes.clear();
    note.setStayReason(StayReason::asking);
    desktop.advance(2s);
    EXPECT_EQ(told(), "stubborn ");
    EXPECT_EQ(json::parse(desktop.remote.changes[0])["applications"][0]["reason"], "asking");
    EXPECT_EQ(status()["stubborn"][0]["reason"], "asking");
    desktop.startLog();
    EXPECT_EQ(desktop.remote.give("askAgain", {"note"}).status, Status::done);
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Note"));
    EXPECT_EQ(desktop.remote.give("askAgain", {"other"}).status, Status::refused);
    note.hindered(StayReason::asking);
    const RemoteAnswer answer = desktop.remote.give("askAgain");
    EXPECT_EQ(answer.status, Status::refused);
    EXPECT_EQ(answer.text, "Note: Ha una finestra aperta che aspetta una risposta.");
}

TEST_F(RemoteControlTest, AnnouncesTheResultOfEachEmptyRunAndTakesNoneInTheTurnOfAnother) {
    serve();
    for (int run = 0; run < 2; ++run) {
        desktop.remote.changes.clear();
        EXPECT_EQ(desktop.remote.give("quitAll").status, Status::done);
        EXPECT_EQ(desktop.remote.give("quitAll").status, Status::refused);
        desktop.advance(1s);
        EXPECT_EQ(told(), "phase ");
    }
}

TEST_F(RemoteControlTest, IncludesWhatIsNotOpenByItsKey) {
    desktop.preferences.set("excludedApps", Value::Array{"Org.Example.Closed"});
    desktop.open("org.example.closed");
    serve();
    EXPECT_EQ(desktop.remote.give("include", {"Org.Example.Closed"}).status, Status::done);
    desktop.loop.settle();
    EXPECT_EQ(told(), "included ");
    EXPECT_TRUE(controller->excluded->empty());
}

} // namespace
} // namespace velmorquit
