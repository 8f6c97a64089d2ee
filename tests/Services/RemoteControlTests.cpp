#include "Services/RemoteStory.h"

namespace velmorquit {
namespace {

using RemoteControlTest = RemoteStory;
using testing::StartsWith;

TEST_F(RemoteControlTest, TellsTheStatusOfARunWithFreshFigures) {
    auto& note = desktop.open("Note", 5).identified("org.example.note").ignoresAsking();
    desktop.open("Ca\xff", 3).quitsAfter(1s);
    serve();
    note.setMemory(9);
    EXPECT_EQ(give("quitAll", {"restart"}), "");
    desktop.advance(7s);
    const json now = status();
    EXPECT_EQ(now["phase"], "waiting");
    EXPECT_EQ(now["applications"],
              json::parse(R"([{"name":"Note","id":"org.example.note","process":100,"memory":9,
                               "excluded":false}])"));
    EXPECT_EQ(now["stubborn"][0]["name"], "Note");
    EXPECT_EQ(give("leave"), "");
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
    give("quitAll");
    desktop.advance(20s);
    EXPECT_EQ(told(), "phase closed event stubborn phase closed stubborn event phase phase ");
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(give("quitAll"), "");
        EXPECT_THAT(give("quitAll"), StartsWith("refused")) << "in the turn of another";
        desktop.advance(1s);
        EXPECT_EQ(told(), "phase ") << "an empty run has a result, too";
    }
}

TEST_F(RemoteControlTest, RefusesWhatCannotBeDoneNowAndUnknownWords) {
    desktop.open("Root").cannotBeAsked().cannotBeForced();
    serve();
    for (const char* verb : {"force", "leave"})
        EXPECT_THAT(give(verb), StartsWith("refused")) << verb;
    for (const auto& [verb, words] :
         std::vector<std::pair<const char*, Words>>{{"quitAll", {"explode"}},
                                                    {"quitAll", {"none", "none"}},
                                                    {"exclude", {}},
                                                    {"Status", {}}})
        EXPECT_EQ(give(verb, words), "unknown") << verb;
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
    give("quitAll");
    desktop.advance(7s);
    EXPECT_EQ(answer("force")["refused"], json::array({"Root"}));
    EXPECT_TRUE(is<phases::Waiting>(controller->phase));
}

TEST_F(RemoteControlTest, UnderstandsTheNamesThatAPersonWouldUse) {
    desktop.preferences.set("excludedApps", Value::Array{"Org.Example.Closed"});
    desktop.open("Text Editor").identified("org.example.Editor");
    desktop.open("Twin").identified("org.example.one");
    desktop.open("Twin").identified("org.example.two");
    desktop.open("org.example.closed");
    serve();
    const auto excluded = [&](const char* verb, const char* name) {
        const std::string said = give(verb, {name});
        std::string keys;
        for (const std::string& key : controller->excluded.get())
            keys += key.substr(key.rfind('.') + 1) + ' ';
        return said.starts_with("refused: ") ? said.substr(9) : keys;
    };
    EXPECT_EQ(excluded("include", "Org.Example.Closed"), "") << "by its key, as it isn't open";
    desktop.loop.settle();
    EXPECT_EQ(told(), "included ");
    EXPECT_EQ(excluded("exclude", "text editor"), "Editor ");
    EXPECT_EQ(excluded("exclude", "Text Editor"), "Editor ");
    EXPECT_EQ(excluded("exclude", "twin"), "Più app si chiamano «twin»: indica l'id di una.");
    EXPECT_EQ(excluded("exclude", "ORG.EXAMPLE.TWO"), "Editor two ");
    EXPECT_EQ(excluded("exclude", "101"), "Editor one two ");
    EXPECT_EQ(excluded("exclude", "nobody"), "Nessuna app aperta si chiama «nobody».");
    desktop.open("Text Viewer");
    controller->refresh();
    EXPECT_EQ(excluded("include", "text"), "one two ") << "the excluded one";
    EXPECT_EQ(excluded("include", "Text Editor"), "one two ");
    EXPECT_EQ(excluded("exclude", "text"),
              "Più app cominciano con «text»: Text Editor, Text Viewer.");
    EXPECT_EQ(excluded("include", "tw"),
              "Più app cominciano con «tw»: org.example.one, org.example.two.");
    EXPECT_EQ(status()["excluded"], json::array({"org.example.one", "org.example.two"}));
}

TEST_F(RemoteControlTest, AsksOnlyThoseThatAreNamedAndNoRunBegins) {
    desktop.open("Note").identified("org.example.note").quitsAfter(1s);
    desktop.open("Notebook").quitsAfter(1s);
    auto& shell = desktop.open("Shell").hindered(StayReason::busyTerminal);
    desktop.open("Twin").identified("one");
    desktop.open("Twin").identified("two");
    desktop.preferences.set("excludedApps", Value::Array{"org.example.note"});
    serve();
    EXPECT_EQ(give("quit", {"Note", "Nobody"}), "refused: Nessuna app aperta si chiama «Nobody».");
    EXPECT_EQ(give("quit", {"not"}), "refused: Più app cominciano con «not»: Note, Notebook.");
    EXPECT_EQ(give("quit", {"Notebook", "Twin"}),
              "refused: Più app si chiamano «Twin»: indica l'id di una.");
    EXPECT_EQ(give("quit", {"Shell"}),
              "refused: Shell: Vi è in corso un comando che andrebbe perso.");
    EXPECT_EQ(give("quit", {""}), "refused: Nessuna app aperta si chiama «».");
    EXPECT_EQ(after(1s), "") << "nobody is asked where one name is wrong";

    const json given = answer("quit", {"note", "NOTEB", "sh", "Note", "one"});
    EXPECT_EQ(given["text"], "Chiedo di chiudersi a: Note, Notebook, Twin.\n"
                             "Shell: Vi è in corso un comando che andrebbe perso.");
    EXPECT_EQ(given["asked"].size(), 3U);
    EXPECT_EQ(given["notAsked"][0]["reason"], "busyTerminal");
    desktop.advance(10s);
    EXPECT_EQ(told(), "closed closed closed ") << "an excluded one that is named, too";
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
    EXPECT_TRUE(controller->lastSession->empty());

    shell.ignoresAsking();
    give("quitAll");
    EXPECT_EQ(give("quit", {"Shell"}), "refused: Velmor Quit sta già chiudendo le app.");
}

TEST_F(RemoteControlTest, TellsAnEndFromALossOfWindowsWhicheverComesFirst) {
    desktop.open("Ends");
    auto& tray = desktop.open("Tray").livesOnWithoutWindows();
    serve();
    give("quitAll");
    desktop.advance(100ms);
    EXPECT_EQ(told(), "phase windowless closed ");
    desktop.advance(1s);
    controller->leaveStubbornOpen();
    desktop.advance(1s);
    told();
    tray.end();
    desktop.loop.settle();
    EXPECT_EQ(told(), "closed ");
}

TEST_F(RemoteControlTest, TellsWhyTheyStayAndWhenThatChanges) {
    auto& note = desktop.open("Note").ignoresAsking();
    serve();
    give("quitAll");
    after(7s);
    EXPECT_EQ(status()["stubborn"][0]["reason"], json());
    desktop.remote.changes.clear();
    note.setStayReason(StayReason::asking);
    after(2s);
    EXPECT_EQ(json::parse(desktop.remote.changes[0])["applications"][0]["reason"], "asking");
    EXPECT_EQ(told(), "stubborn ");
    EXPECT_EQ(status()["stubborn"][0]["reason"], "asking");
    EXPECT_EQ(give("askAgain", {"note"}), "Chiedo di nuovo di chiudersi a: Note.");
    EXPECT_EQ(after(0s), Lines("0.00 quit Note"));
    EXPECT_THAT(give("askAgain", {"other"}), StartsWith("refused"));
    note.hindered(StayReason::asking);
    EXPECT_EQ(give("askAgain"), "refused: Note: Ha una finestra aperta che aspetta una risposta.");
}

} // namespace
} // namespace velmorquit
