#include "Services/Actions/ActionRunner.h"
#include "Services/RemoteStory.h"

namespace velmorquit {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// Actions as the desktop asks for them; questions are answered with `isWanted`.
class ActionStory : public RemoteStory {
protected:
    void ready() { actions.setController(&start()); }
    /// Asks for it, and says what happens in that time.
    std::string ask(ActionRequest request, Duration time = 100ms) {
        actions.perform(
            request,
            [this](const std::string& question, const std::string& button,
                   std::function<void(bool)> give) {
                desktop.write("asks: " + question + " [" + button + "]");
                decide = std::move(give);
                if (isWanted)
                    std::exchange(decide, nullptr)(*isWanted);
            },
            [this](const ActionAnswer& given) {
                desktop.write(
                    given.status == ActionAnswer::Status::notReady   ? "not ready: " + given.text
                    : given.status == ActionAnswer::Status::declined ? "declined"
                                                                     : "answers: " + given.text);
                value = given.value;
            });
        return after(time);
    }

    std::optional<bool> isWanted = true;
    std::function<void(bool)> decide;
    std::optional<std::int64_t> value;
};

TEST_F(ActionStory, WaitsTwoSecondsForTheProgramToBeReady) {
    EXPECT_EQ(ask({.kind = ActionKind::cancelSchedule}, 2s - 1ns), "");
    EXPECT_EQ(after(1ns),
              Lines("0.00 not ready: Velmor Quit non è pronta: riprova tra un attimo."));
    start();
    in(1950ms, [this] { actions.setController(controller.get()); });
    EXPECT_EQ(ask({.kind = ActionKind::cancelSchedule}, 2s),
              Lines("1.95 answers: Non c'è nessuna chiusura programmata."));
}

TEST_F(ActionStory, QuitsAtOnceOrAsksWhenSomethingIsToFollow) {
    desktop.open("A").quitsAfter(1s);
    ready();
    EXPECT_THAT(ask({.kind = ActionKind::quitAll}), HasSubstr("answers: Chiudo 1 app.\n"));
    EXPECT_EQ(ask({.kind = ActionKind::quitAll}),
              Lines("0.00 answers: Velmor Quit sta già chiudendo le app."));
    after(1min);
    EXPECT_EQ(ask({.kind = ActionKind::quitAll}, 1s),
              Lines("0.00 answers: Non c'è niente da chiudere."));

    for (const char* name : {"B", "C", "D", "E"})
        desktop.open(name);
    isWanted = false;
    EXPECT_EQ(ask({.kind = ActionKind::quitAll, .then = AfterQuit::restart}),
              Lines("0.00 asks: Chiudo 4 app e poi riavvia? [Continua]", "0.00 declined"));
    isWanted = true;
    EXPECT_THAT(ask({.kind = ActionKind::quitAll, .then = AfterQuit::restart}, 3s),
                AllOf(HasSubstr("answers: Chiudo 4 app.\n"), HasSubstr(" restart\n")));
    EXPECT_EQ(ask({.kind = ActionKind::quitAll, .then = AfterQuit::shutDown}, 3s),
              Lines("0.00 asks: Chiudo 0 app e poi spegni? [Continua]", "0.00 cancel request",
                    "0.00 answers: Chiudo 0 app.", "0.00 done 0 0", "1.20 shut down"))
        << "there is nothing to quit, and yet it was asked for";
}

TEST_F(ActionStory, AnAnswerMayComeWhenNobodyIsThereAnyMore) {
    desktop.open("A");
    ready();
    isWanted.reset();
    const ActionRequest request{.kind = ActionKind::quitAll, .then = AfterQuit::logOut};
    ask(request, 1h);
    actions.setController(nullptr);
    decide(true);
    EXPECT_EQ(after(1s), Lines("0.00 declined"));
    decide(true);

    auto other = std::make_unique<ActionRunner>(desktop.loop, desktop.kernel, desktop.formats);
    other->setController(controller.get());
    other->perform(
        request, [&](const auto&, const auto&, std::function<void(bool)> give) { decide = give; },
        [](const ActionAnswer&) { ADD_FAILURE(); });
    desktop.advance(1s);
    other.reset();
    decide(true);
    desktop.advance(1s);
}

TEST_F(ActionStory, SchedulesCancelsReopensAndReports) {
    desktop.open("A").identified("a");
    desktop.files.paths.insert("/applications/a.desktop");
    desktop.kernel.total = 16ULL << 30;
    desktop.kernel.pages = MemoryPages{.pageSize = 1, .internal = 12ULL << 30};
    ready();
    EXPECT_EQ(ask({.kind = ActionKind::reopenApps}),
              Lines("0.00 answers: Non ci sono app da riaprire."));
    EXPECT_EQ(ask({.kind = ActionKind::scheduleQuit, .then = AfterQuit::shutDown, .minutes = 30}),
              Lines("0.00 answers: Fatto: alle 09:30 spegni."));
    EXPECT_EQ(controller->schedule.get()->action, PowerAction::shutDown);
    EXPECT_EQ(ask({.kind = ActionKind::cancelSchedule}),
              Lines("0.00 answers: Annullata: non chiudo niente."));
    EXPECT_FALSE(controller->schedule.get());
    EXPECT_EQ(ask({.kind = ActionKind::memory}),
              Lines("0.00 answers: In uso 12288 MB su 16384 MB (75%)."));
    EXPECT_EQ(value, 75);
    controller->quitAll(PowerAction::none);
    after(5s);
    EXPECT_EQ(ask({.kind = ActionKind::reopenApps}),
              Lines("0.00 open /applications/a.desktop", "0.00 answers: Riapro 1 app."));
}

TEST(ActionTest, NothingFollowsUnlessItIsScheduled) {
    EXPECT_EQ(actionNamed("quit-all")->then, AfterQuit::nothing);
    EXPECT_EQ(actionNamed("schedule-quit")->then, AfterQuit::shutDown);
}

TEST_F(RemoteStory, TheScheduleIsSetForAnHourOrForSoManyMinutes) {
    serve();
    EXPECT_EQ(give("schedule", {"minutes", "90", "shutDown"}), "Fatto: alle 10:30 spegni.");
    EXPECT_EQ(give("schedule", {"minutes", "600", "none"}), "Fatto: alle 19:00 chiudi tutto.");
    EXPECT_EQ(give("schedule", {"at", "8:59", "none"}), "Fatto: alle 08:59 chiudi tutto.");
    const char* const outside = "refused: I minuti vanno da 1 a 600.";
    for (const char* minutes : {"0", "601", "-1", "5x", "", "99999999999"})
        EXPECT_EQ(give("schedule", {"minutes", minutes, "none"}), outside) << minutes;
    EXPECT_EQ(give("action", {"schedule-quit", "minutes=601"}), outside);
    for (const char* time : {"24:00", "9:60", "9.30", "9:5", "-1:30", ""})
        EXPECT_EQ(give("schedule", {"at", time, "none"}), "refused: L'ora si scrive così: 23:05.");
    for (const Words& words : {Words{"minutes", "5", "nothing"}, {"in", "5", "none"}})
        EXPECT_EQ(give("schedule", words), "unknown") << words.front();
    for (const char* argument : {"then=never", "minutes", "minutes=", "hours=1", "="})
        EXPECT_EQ(give("action", {"quit-all", argument}), "unknown") << argument;
    EXPECT_EQ(give("action", {"explode"}), "unknown");
    EXPECT_EQ(give("postpone", {"10"}), "Fatto: alle 09:09 chiudi tutto.");
    EXPECT_EQ(give("cancel"), "Annullata: non chiudo niente.");
    EXPECT_EQ(give("cancel"), "Non c'è nessuna chiusura programmata.");
    EXPECT_EQ(give("postpone", {"10"}), "refused: Non c'è nessuna chiusura programmata.");
    EXPECT_EQ(give("confirm"), "refused: Nessuna chiusura aspetta una conferma.");
    EXPECT_EQ(give("action", {"schedule-quit", "minutes=1"}), "");
    EXPECT_EQ(after(1s), Lines("0.00 shows: Fatto: alle 09:01 spegni."));
}

TEST_F(RemoteStory, TellsWhatBecomesOfTheSchedule) {
    desktop.open("A");
    serve();
    EXPECT_EQ(give("schedule", {"minutes", "1", "restart"}), "Fatto: alle 09:01 riavvia.");
    desktop.advance(58s);
    EXPECT_EQ(status()["schedule"]["then"], "restart");
    EXPECT_EQ(status()["schedule"]["awaiting"], false);
    desktop.advance(2s);
    EXPECT_EQ(told(), "schedule attention=59 attention=30 attention=10 attention=9 attention=8 "
                      "attention=7 attention=6 attention=5 attention=4 attention=3 attention=2 "
                      "attention=1 event schedule ");
    EXPECT_EQ(give("confirm"), "Confermata: chiudo le app.");
    EXPECT_EQ(give("cancel"), "Annullato: non spengo, non riavvio e non esco.");
    EXPECT_THAT(after(1min), AllOf(HasSubstr(" quit A\n"), Not(HasSubstr("restart"))))
        << "the run itself goes on";
}

TEST_F(RemoteStory, PublishedActionsAreDescribedAndDoneOnlyWhereTheUserCanBeAsked) {
    desktop.open("A");
    serve();
    const json published = answer("actions")["actions"];
    EXPECT_EQ(published.size(), 5U);
    EXPECT_EQ(published[1]["parameters"]["minutes"]["highest"], 600);
    EXPECT_EQ(published[1]["parameters"]["then"]["choices"]["logOut"], "Esci utente");
    EXPECT_EQ(give("action", {"quit-all", "then=restart"}), "");
    EXPECT_EQ(after(1min), "") << "nobody could be asked";
}

} // namespace
} // namespace velmorquit
