#include "Simulated/SimulatedFormats.h"
#include "Tools/velmorctl/FollowedRun.h"
#include "Tools/velmorctl/Sentences.h"

#include <gmock/gmock.h>

namespace velmorquit {
namespace {

using testing::HasSubstr;
namespace changes = remote::changes;

remote::Application note() {
    return {.name = "Note", .id = "org.example.note", .process = 100, .memory = 9 << 20};
}

class ControlSentences : public testing::Test {
protected:
    std::string told(const remote::Change& change) const { return changeText(change, formats); }

    SimulatedFormats formats;
};

TEST_F(ControlSentences, TellTheStatusInATable) {
    remote::Status status;
    EXPECT_EQ(statusText(status, formats), "Pronta\nNessuna app aperta\n");
    status.sight = Sight::noWindowList;
    EXPECT_THAT(statusText(status, formats), HasSubstr("Non vedo che cosa è aperto"));
    status.run.phase = phases::Waiting();
    status.applications = {note()};
    // One that has lost its windows is waited for as well.
    status.stubborn = {note(), {.name = "日本", .id = std::nullopt, .process = 7}};
    status.stubborn[0].reason = StayReason::asking;
    status.stubborn[1].reason = StayReason::inTray;
    status.limits = "l";
    status.reopenable = {{"Mail", "/mail"}};
    const std::string text = statusText(status, formats);
    EXPECT_TRUE(text.starts_with("Aspetto una risposta\nl\n2 app aperte:\n  Note  ")) << text;
    EXPECT_THAT(text, HasSubstr("ancora aperta: aspetta una tua risposta\n"));
    EXPECT_THAT(text, HasSubstr("—                 ancora in esecuzione, nell'area di notifica\n"));
    EXPECT_EQ(text.find("Da riaprire"), std::string::npos) << "a run is in progress";
    status.run.phase = phases::Done();
    EXPECT_THAT(statusText(status, formats), HasSubstr("Da riaprire: Mail\n"));
}

TEST_F(ControlSentences, TellWhatChanges) {
    remote::Application asking = note();
    asking.reason = StayReason::asking;
    EXPECT_EQ(told(changes::Stubborn{{asking}}), "Ancora aperta: Note (aspetta una tua risposta)");
    EXPECT_EQ(told(changes::Stubborn{}), "");
    EXPECT_EQ(told(changes::Run{{.phase = phases::BackingUp{0.256}}}), "Backup in corso: 26%");
    EXPECT_EQ(told(changes::Run{{.phase = phases::Done{}, .note = "n"}}),
              "Finito: nessuna app chiusa · n");
    EXPECT_EQ(told(changes::Happened{events::DisksEjected{.count = 1, .failed = {"a", "b"}}}),
              "Ancora collegati: a, b");
    EXPECT_EQ(told(changes::Happened{events::BackupFinished{false}}), "");
    EXPECT_EQ(told(changes::Scheduled{}), "Nessuna chiusura programmata");
}

TEST_F(ControlSentences, TheWaitEndsWithWhatTheLineAskedFor) {
    CommandLine line{.command = &remote::commandOf(remote::Verb::quitAll)};
    const auto done = [](int closed, PowerAction then) {
        return changes::Run{{.phase = phases::Done{.closed = closed}, .then = then}};
    };
    const auto ended = [&](const remote::Change& result, EndState::Stage stage) {
        FollowedRun run(line, formats);
        EXPECT_FALSE(run.hear(result)) << "it is of an earlier run";
        run.begin({note()});
        const auto status = run.hear(result);
        remote::Ending ending;
        ending.stage = stage;
        return status ? status : run.hearEnding(ending);
    };
    using Stage = EndState::Stage;
    testing::internal::CaptureStdout();
    EXPECT_EQ(ended(done(1, PowerAction::none), Stage::none), ExitStatus::success);
    EXPECT_EQ(ended(done(0, PowerAction::none), Stage::none), ExitStatus::failure);
    line.then = AfterQuit::restart;
    EXPECT_EQ(ended(done(1, PowerAction::restart), Stage::waiting), std::nullopt);
    EXPECT_EQ(ended(done(1, PowerAction::restart), Stage::underWay), ExitStatus::success);
    EXPECT_EQ(ended(done(1, PowerAction::restart), Stage::refused), ExitStatus::failure);
    EXPECT_EQ(ended(done(1, PowerAction::none), Stage::underWay), ExitStatus::failure)
        << "it was broken off";
    line.endsWithRun = true;
    EXPECT_EQ(ended(done(1, PowerAction::restart), Stage::waiting), ExitStatus::success);
    testing::internal::GetCapturedStdout();
}

} // namespace
} // namespace velmorquit
