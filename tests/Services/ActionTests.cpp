#include "Services/Actions/ActionRunner.h"
#include "Services/ControllerStory.h"
#include "Services/Remote/RemoteControl.h"

#include <nlohmann/json.hpp>

#include <set>

namespace velmorquit {
namespace {

using nlohmann::json;

/// Actions as the desktop asks for them; questions are answered with `isWanted`.
class ActionStory : public ControllerStory {
protected:
    QuitController& ready() {
        QuitController& started = start();
        actions.setController(&started);
        return started;
    }
    void ask(ActionRequest request) {
        actions.perform(
            request,
            [this](const std::string& question, const std::string& button,
                   std::function<void(bool)> give) {
                desktop.write("asks: " + question + " [" + button + "]");
                answer = std::move(give);
                if (isWanted)
                    std::exchange(answer, nullptr)(*isWanted);
            },
            [this](const ActionAnswer& given) {
                desktop.write(
                    given.status == ActionAnswer::Status::notReady   ? "not ready: " + given.text
                    : given.status == ActionAnswer::Status::declined ? "declined"
                                                                     : "answers: " + given.text);
                value = given.value;
            });
    }
    bool said(const std::string& text) const {
        return desktop.log().find(' ' + text + '\n') != std::string::npos;
    }

    std::optional<bool> isWanted = true;
    std::function<void(bool)> answer;
    std::optional<std::int64_t> value;
    ActionRunner actions{desktop.loop, desktop.kernel, desktop.formats};
};

TEST_F(ActionStory, WaitsTwoSecondsForTheProgramToBeReady) {
    ask({.kind = ActionKind::cancelSchedule});
    desktop.advance(2s - 1ns);
    EXPECT_EQ(desktop.log(), "");
    desktop.advance(1ns);
    EXPECT_TRUE(said("not ready: Velmor Quit non è pronta: riprova tra un attimo."));

    start();
    ask({.kind = ActionKind::cancelSchedule});
    desktop.advance(1950ms);
    actions.setController(controller.get());
    desktop.advance(50ms);
    EXPECT_TRUE(said("answers: Non c'è nessuna chiusura programmata."));
}

TEST_F(ActionStory, QuitsAtOnceOrAsksWhenSomethingIsToFollow) {
    desktop.open("A").quitsAfter(1s);
    ready();
    ask({.kind = ActionKind::quitAll});
    desktop.advance(100ms);
    EXPECT_TRUE(said("answers: Chiudo 1 app."));
    ask({.kind = ActionKind::quitAll});
    desktop.advance(100ms);
    EXPECT_TRUE(said("answers: Velmor Quit sta già chiudendo le app."));
    desktop.advance(1min);
    ask({.kind = ActionKind::quitAll});
    desktop.advance(1s);
    EXPECT_TRUE(said("answers: Non c'è niente da chiudere."));
    EXPECT_TRUE(is<phases::Idle>(controller->phase));

    for (const char* name : {"B", "C", "D", "E"})
        desktop.open(name);
    desktop.startLog();
    isWanted = false;
    ask({.kind = ActionKind::quitAll, .then = AfterQuit::restart});
    desktop.advance(1s);
    EXPECT_EQ(desktop.log(),
              Lines("0.00 asks: Chiudo 4 app e poi riavvia? [Continua]", "0.00 declined"));
    isWanted = true;
    ask({.kind = ActionKind::quitAll, .then = AfterQuit::restart});
    desktop.advance(3s);
    EXPECT_TRUE(said("answers: Chiudo 4 app."));
    EXPECT_TRUE(said("restart"));
    ask({.kind = ActionKind::quitAll, .then = AfterQuit::shutDown});
    desktop.advance(3s);
    EXPECT_TRUE(said("asks: Chiudo 0 app e poi spegni? [Continua]"));
    EXPECT_TRUE(said("shut down")) << "there is nothing to quit, and yet it was asked for";
}

TEST_F(ActionStory, AnAnswerMayComeWhenNobodyIsThereAnyMore) {
    desktop.open("A");
    ready();
    isWanted.reset();
    ask({.kind = ActionKind::quitAll, .then = AfterQuit::logOut});
    desktop.advance(1h);
    actions.setController(nullptr);
    answer(true);
    desktop.advance(1s);
    EXPECT_TRUE(said("declined"));
    answer(true);

    auto other = std::make_unique<ActionRunner>(desktop.loop, desktop.kernel, desktop.formats);
    other->setController(controller.get());
    std::function<void(bool)> late;
    other->perform(
        {.kind = ActionKind::quitAll, .then = AfterQuit::logOut},
        [&](const auto&, const auto&, std::function<void(bool)> give) { late = give; },
        [](const ActionAnswer&) { ADD_FAILURE(); });
    desktop.advance(1s);
    other.reset();
    late(true);
    desktop.advance(1s);
}

TEST_F(ActionStory, SchedulesCancelsReopensAndReports) {
    desktop.open("A").identified("a");
    desktop.files.paths.insert("/applications/a.desktop");
    desktop.kernel.total = 16ULL << 30;
    desktop.kernel.pages = MemoryPages{.pageSize = 1, .internal = 12ULL << 30};
    ready();
    ask({.kind = ActionKind::reopenApps});
    ask({.kind = ActionKind::scheduleQuit, .then = AfterQuit::shutDown, .minutes = 30});
    desktop.advance(1s);
    EXPECT_TRUE(said("answers: Non ci sono app da riaprire."));
    EXPECT_TRUE(said("answers: Fatto: alle 09:30 spegni."));
    EXPECT_EQ(controller->schedule.get()->action, PowerAction::shutDown);
    ask({.kind = ActionKind::cancelSchedule});
    ask({.kind = ActionKind::memory});
    desktop.advance(1s);
    EXPECT_TRUE(said("answers: Annullata: non chiudo niente."));
    EXPECT_FALSE(controller->schedule.get());
    EXPECT_TRUE(said("answers: In uso 12288 MB su 16384 MB (75%)."));
    EXPECT_EQ(value, 75);
    controller->quitAll(PowerAction::none);
    desktop.advance(5s);
    ask({.kind = ActionKind::reopenApps});
    desktop.advance(1s);
    EXPECT_TRUE(said("answers: Riapro 1 app."));
    EXPECT_TRUE(said("open /applications/a.desktop"));
}

TEST(ActionTest, EachIsFoundByItsNameWithItsDefaults) {
    std::set<std::string> names;
    for (const ActionDescription& action : allActions()) {
        names.insert(action.name);
        const auto request = actionNamed(action.name);
        ASSERT_TRUE(request);
        EXPECT_EQ(request->kind, action.kind);
        EXPECT_FALSE(problemOf(*request));
        EXPECT_EQ(action.summary.empty(), !action.then);
    }
    EXPECT_EQ(names.size(), 5U);
    EXPECT_EQ(actionNamed("quit-all")->then, AfterQuit::nothing);
    EXPECT_EQ(actionNamed("schedule-quit")->then, AfterQuit::shutDown);
    EXPECT_EQ(allActions()[1].summary, "Tra %1$@ minuti chiudi tutto, poi %2$@");
    EXPECT_FALSE(actionNamed("Quit-all"));
    EXPECT_FALSE(afterQuitFromRaw("none"));
    for (const auto& [minutes, isGood] :
         {std::pair(0, false), {1, true}, {600, true}, {601, false}, {-1, false}})
        EXPECT_EQ(!problemOf({.kind = ActionKind::scheduleQuit, .minutes = minutes}), isGood);
}

/// What other processes say of the schedule, and hear.
class RemoteScheduleTest : public ActionStory {
protected:
    void serve(bool asksFirst = true) {
        desktop.preferences.set("confirmScheduled", asksFirst);
        ready();
        control = std::make_unique<RemoteControl>(*controller, actions, desktop.ports());
        control->schedule().onAnswer = [this](const ActionAnswer& given) {
            desktop.write("shows: " + given.text);
        };
        desktop.loop.settle();
        desktop.remote.changes.clear();
    }
    std::string give(const std::string& verb, const std::vector<std::string>& arguments = {}) {
        const RemoteAnswer given = desktop.remote.give(verb, arguments);
        if (given.status != RemoteAnswer::Status::done)
            return (given.status == RemoteAnswer::Status::refused ? "refused: " : "unknown: ") +
                   given.text;
        return json::parse(given.text).value("text", "");
    }

    std::unique_ptr<RemoteControl> control;
};

TEST_F(RemoteScheduleTest, SetsItForAnHourOrForSoManyMinutes) {
    serve();
    EXPECT_EQ(give("schedule", {"minutes", "90", "shutDown"}), "Fatto: alle 10:30 spegni.");
    EXPECT_EQ(give("schedule", {"at", "8:59", "none"}), "Fatto: alle 08:59 chiudi tutto.");
    EXPECT_EQ(controller->schedule.get()->date, desktop.loop.now() + 24h - 1min);
    for (const char* minutes : {"0", "601", "5x", "", "99999999999"})
        EXPECT_EQ(give("schedule", {"minutes", minutes, "none"}),
                  "refused: I minuti vanno da 1 a 600.");
    for (const char* time : {"24:00", "9:60", "9.30", "9:5", "-1:30", ""})
        EXPECT_EQ(give("schedule", {"at", time, "none"}), "refused: L'ora si scrive così: 23:05.");
    EXPECT_EQ(give("schedule", {"minutes", "5", "nothing"}).substr(0, 8), "unknown:");
    EXPECT_EQ(give("schedule", {"in", "5", "none"}).substr(0, 8), "unknown:");
    EXPECT_EQ(give("postpone", {"10"}), "Fatto: alle 09:09 chiudi tutto.");
    EXPECT_EQ(give("cancel"), "Annullata: non chiudo niente.");
    EXPECT_EQ(give("cancel"), "Non c'è nessuna chiusura programmata.");
    EXPECT_EQ(give("postpone", {"10"}), "refused: Non c'è nessuna chiusura programmata.");
    EXPECT_EQ(give("confirm"), "refused: Nessuna chiusura aspetta una conferma.");
}

TEST_F(RemoteScheduleTest, TellsWhatBecomesOfIt) {
    desktop.open("A");
    serve();
    EXPECT_EQ(give("schedule", {"minutes", "1", "restart"}), "Fatto: alle 09:01 riavvia.");
    desktop.advance(58s);
    const json status = json::parse(desktop.remote.give("status").text)["schedule"];
    EXPECT_EQ(status["then"], "restart");
    EXPECT_EQ(status["awaiting"], false);
    desktop.advance(2s);
    std::string told;
    for (const std::string& text : desktop.remote.changes) {
        const json change = json::parse(text);
        told += change["change"].get<std::string>();
        if (change.contains("seconds"))
            told += '=' + std::to_string(change["seconds"].get<int>());
        told += ' ';
    }
    EXPECT_EQ(told, "schedule attention=59 attention=30 attention=10 attention=9 attention=8 "
                    "attention=7 attention=6 attention=5 attention=4 attention=3 attention=2 "
                    "attention=1 event schedule ");
    EXPECT_EQ(give("confirm"), "Confermata: chiudo le app.");
    EXPECT_EQ(give("cancel"), "Annullato: non spengo, non riavvio e non esco.");
    desktop.advance(1min);
    EXPECT_FALSE(said("restart"));
    EXPECT_TRUE(said("quit A")) << "the run itself goes on";
}

TEST_F(RemoteScheduleTest, PublishedActionsAreShownOnTheScreen) {
    desktop.open("A");
    serve();
    EXPECT_EQ(give("action", {"schedule-quit", "minutes=5"}), "");
    desktop.advance(1s);
    EXPECT_TRUE(said("shows: Fatto: alle 09:05 spegni."));
    EXPECT_EQ(give("action", {"schedule-quit", "minutes=601"}),
              "refused: I minuti vanno da 1 a 600.");
    for (const char* argument : {"then=never", "minutes", "minutes=", "hours=1", "="})
        EXPECT_EQ(give("action", {"quit-all", argument}).substr(0, 8), "unknown:");
    EXPECT_EQ(give("action", {"explode"}).substr(0, 8), "unknown:");
    const json actions = json::parse(desktop.remote.give("actions").text)["actions"];
    EXPECT_EQ(actions.size(), 5U);
    EXPECT_EQ(actions[1]["parameters"]["minutes"]["highest"], 600);
    EXPECT_EQ(actions[1]["parameters"]["then"]["choices"]["logOut"], "Esci utente");
    EXPECT_EQ(give("action", {"quit-all", "then=restart"}), "");
    desktop.advance(1min);
    EXPECT_FALSE(said("quit A")) << "nobody could be asked";
}

} // namespace
} // namespace velmorquit
