#include "Remote/AnswerJson.h"
#include "Remote/ChangeJson.h"

#include <gtest/gtest.h>

namespace velmorquit::remote {
namespace {

using std::chrono::seconds;

/// With something in every field.
Status fullStatus() {
    const Application note{.name = "Note",
                           .id = "org.example.note",
                           .process = 100,
                           .memory = 9,
                           .isExcluded = true,
                           .reason = StayReason::asking};
    const Application nameless{.name = "Ca\xff", .id = std::nullopt, .process = 7};
    return {.run = {.phase = phases::Done{.closed = 2, .freed = 3},
                    .continuesAt = std::nullopt,
                    .note = "n",
                    .then = PowerAction::restart},
            .applications = {note, nameless},
            .sight = Sight::incomplete,
            .stubborn = {note, nameless},
            .excluded = {"a", "b"},
            .memory = {.used = 1, .total = 2},
            .afterQuit = PowerAction::logOut,
            .backupFirst = true,
            .ejectDrives = true,
            .backups = {.areConfigured = true, .last = dateOf(50)},
            .drives = {{.name = "one", .path = "file:///one"}},
            .schedule = Schedule{.date = dateOf(60),
                                 .then = PowerAction::shutDown,
                                 .asks = true,
                                 .isAwaiting = true},
            .ending = Ending{.stage = EndState::Stage::refused,
                             .then = LoginRequest::logOut,
                             .text = "t",
                             .obstacles = {{EndObstacle::Kind::job, "make"}},
                             .list = "4",
                             .question = "q?"},
            .limits = "l",
            .scheduleNote = "s",
            .reopenable = {{"Mail", "/mail.desktop"}}};
}

/// Scripts depend on every byte of it.
const std::string fullText =
    R"({"phase":"done","closed":2,"freed":3,"note":"n","then":"restart",)"
    R"("applications":[{"name":"Note","id":"org.example.note","process":100,"memory":9,)"
    R"("excluded":true},{"name":"Ca�","id":null,"process":7,"memory":0,"excluded":false}],)"
    R"("sight":"incomplete",)"
    R"("stubborn":[{"name":"Note","id":"org.example.note","process":100,"memory":9,)"
    R"("excluded":true,"reason":"asking"},{"name":"Ca�","id":null,"process":7,"memory":0,)"
    R"("excluded":false,"reason":null}],"excluded":["a","b"],"memory":{"used":1,"total":2},)"
    R"("afterQuit":"logOut","backupFirst":true,"ejectDrives":true,)"
    R"("backups":{"configured":true,"last":50},)"
    R"("drives":[{"name":"one","path":"file:///one"}],)"
    R"("schedule":{"date":60,"then":"shutDown","asks":true,"awaiting":true},)"
    R"("ending":{"stage":"refused","then":"logOut","text":"t",)"
    R"("obstacles":[{"kind":"job","name":"make"}],"list":"4","question":"q?"},)"
    R"("limits":"l","scheduleNote":"s",)"
    R"("reopenable":[{"name":"Mail","path":"/mail.desktop"}]})";

TEST(RemoteJson, AStatusIsWhatItWasOnTheOtherSide) {
    EXPECT_EQ(textOf(encode(fullStatus())), fullText);
    EXPECT_EQ(textOf(encode(decodeStatus(parsed(fullText)))), fullText);
    const std::string bare = textOf(encode(Status()));
    EXPECT_TRUE(bare.ends_with(
        R"("drives":[],"schedule":null,"ending":null,"limits":null,"scheduleNote":null,)"
        R"("reopenable":[],"note":null})"))
        << bare;
    EXPECT_EQ(textOf(encode(decodeStatus(parsed(bare)))), bare);
}

TEST(RemoteJson, AChangeIsWhatItWasOnTheOtherSide) {
    for (const char* text : {
             R"({"change":"phase","phase":"idle"})",
             R"({"change":"phase","phase":"quitting","total":2})",
             R"({"change":"phase","phase":"backingUp","fraction":null})",
             R"({"change":"phase","phase":"backingUp","fraction":0.5})",
             R"({"change":"phase","phase":"backupFailed","reason":"r","continuesAt":90})",
             R"({"change":"phase","phase":"done","closed":1,"freed":2,"note":null,"then":"none"})",
             R"({"change":"stubborn","applications":[]})",
             R"({"change":"opened","application":{"name":"A","id":null,"process":1,"memory":2,)"
             R"("excluded":false}})",
             R"({"change":"windowless","application":{"name":"A","id":"a","process":1,)"
             R"("memory":2,"excluded":true}})",
             R"({"change":"excluded","key":"k"})",
             R"({"change":"event","event":"quitDone","closed":3})",
             R"({"change":"event","event":"backupProgress","fraction":0.25})",
             R"({"change":"event","event":"backupFinished","success":true})",
             R"({"change":"event","event":"disksEjected","count":1,"failed":["two"]})",
             R"({"change":"event","event":"confirmationNeeded"})",
             R"({"change":"schedule","schedule":null})",
             R"({"change":"attention","seconds":59})",
             R"({"change":"scheduleNote","note":"n"})",
             R"({"change":"ending","ending":null})",
             R"({"change":"ending","ending":{"stage":"waiting","then":"shutDown","text":"t",)"
             R"("obstacles":[],"list":null}})",
         }) {
        const auto change = decodeChange(parsed(text));
        ASSERT_TRUE(change) << text;
        EXPECT_EQ(textOf(encode(*change)), text);
    }
}

TEST(RemoteJson, WhatMakesNoSenseIsNeutral) {
    for (const std::string& text :
         {std::string(), std::string("{"), std::string("null"), std::string("[1]"),
          std::string(R"({"phase":7})"), std::string("\"\xff\""), std::string(100000, '[')}) {
        const Json json = parsed(text);
        EXPECT_FALSE(isStatus(json));
        EXPECT_FALSE(decodeChange(json));
        EXPECT_FALSE(decodeAnswer(json).asked);
        EXPECT_TRUE(decodeActions(json).empty());
        EXPECT_TRUE(decodeStatus(json).applications.empty());
    }
    EXPECT_FALSE(decodeChange(parsed(R"({"change":"event","event":"explosion"})")));
    const Status odd = decodeStatus(parsed(
        R"({"phase":"dancing","applications":[7,{"name":"a\u001b[2J\n\u202eb","process":1e30,)"
        R"("memory":-1,"excluded":"yes","reason":"bored"}],"sight":4,"schedule":[],)"
        R"("ending":{"stage":"odd","obstacles":[{"kind":"odd"}],"list":4}})"));
    EXPECT_TRUE(is<phases::Idle>(odd.run.phase));
    ASSERT_EQ(odd.applications.size(), 2U);
    EXPECT_EQ(odd.applications[1], (Application{.name = "a [2J b", .id = std::nullopt}));
    EXPECT_EQ(odd.sight, Sight::all);
    EXPECT_FALSE(odd.schedule);
    ASSERT_TRUE(odd.ending);
    EXPECT_EQ(odd.ending->stage, EndState::Stage::none);
    EXPECT_EQ(odd.ending->obstacles.at(0).kind, EndObstacle::Kind::unknown);
    EXPECT_FALSE(odd.ending->list);
    const auto far = decodeSchedule(parsed(R"({"date":9223372036854775807})"));
    EXPECT_EQ(far->date, dateOf(INT64_MAX));
}

} // namespace
} // namespace velmorquit::remote
