#include "Tools/velmorquit-tmutil/ResticAnswers.h"
#include "Tools/velmorquit-tmutil/ResticReport.h"
#include "Tools/velmorquit-tmutil/Retention.h"
#include "Tools/velmorquit-tmutil/Settings.h"
#include "Tools/velmorquit-tmutil/Sources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace velmorquit::tmutil {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST(Retention, LooksOnlyAtItsOwnSeriesAndNamesTheRulesThatThereAre) {
    Destination destination;
    destination.host = "at-setup";
    destination.sources = {"/home/one", "/srv"};
    destination.keep = {.last = 2, .weekly = 5};
    EXPECT_THAT(Retention::arguments(destination),
                ElementsAre("forget", "--json", "--prune", "--tag=velmorquit", "--host=at-setup",
                            "--path=/home/one", "--path=/srv", "--keep-last=2", "--keep-weekly=5"));
}

TEST(Retention, StrikesWhatIsGoneByTheBeginningOfItsIdAndNothingUnknown) {
    Destination recorded;
    for (const char* id : {"abc", "abd", "", "abc12"})
        recorded.snapshots.push_back({id, {}});
    Retention::strike(recorded, {"abc12ef", "ff"});
    std::vector<std::string> left;
    for (const SnapshotRecord& snapshot : recorded.snapshots)
        left.push_back(snapshot.id);
    EXPECT_THAT(left, ElementsAre("abd", ""));
}

TEST(Settings, AListWithAPlaceThatLacksSomethingIsNone) {
    Destination whole;
    whole.path = whole.id = whole.passwordFile = "/a";
    EXPECT_TRUE(Settings::decode(Settings::encode({whole, whole})));
    for (const auto part : {&Destination::path, &Destination::id, &Destination::passwordFile}) {
        Destination damaged = whole;
        (damaged.*part).clear();
        EXPECT_FALSE(Settings::decode(Settings::encode({damaged, whole})));
    }
}

TEST(ResticAnswers, NameWhatWasRemovedAndWhatWentWrong) {
    const std::string answer = R"([{"remove":[{"id":"one"},{"id":"two"}]},{"remove":null},)"
                               R"({"remove":[{"id":"three"}]}])";
    EXPECT_THAT(ResticAnswers::removed(answer + "\nremoved 3 snapshots\n"),
                ElementsAre("one", "two", "three"));
    EXPECT_TRUE(ResticAnswers::removed("no JSON").empty());
    EXPECT_EQ(ResticAnswers::lastLine("first\nFatal: it is full \n{\"code\":1}\n"
                                      "the `unlock` command can be used\nstorage ID 12\n\n"),
              "Fatal: it is full");
}

TEST(ResticAnswers, AreSortedByDatesThatAreRoundedUp) {
    const auto snapshots = ResticAnswers::snapshots(
        R"([{"id":"b","time":"2026-11-23T03:52:56.946434519Z","tags":["velmorquit"]},)"
        R"({"id":"a","time":"2026-11-23T04:52:56+01:00","hostname":"h","paths":["/p","/q"]}])");
    ASSERT_EQ(snapshots.size(), 2U);
    EXPECT_EQ(snapshots[0].id, "a");
    EXPECT_THAT(snapshots[0].paths, ElementsAre("/p", "/q"));
    EXPECT_FALSE(snapshots[0].isOurs);
    EXPECT_TRUE(snapshots[1].isOurs);
    EXPECT_EQ(snapshots[1].date - snapshots[0].date, 1s);
}

TEST(ResticReport, IsAFractionOnceAllIsCountedAndNeverGoesBack) {
    ResticReport report;
    report.hear(R"({"message_type":"status","percent_done":0.5,"total_bytes":10})");
    EXPECT_FALSE(report.fraction()) << "the total may grow yet";
    report.hear(R"({"message_type":"status","percent_done":0.4,"total_bytes":20})");
    EXPECT_FALSE(report.fraction());
    report.hear(R"({"message_type":"status","percent_done":0.3,"total_bytes":20})");
    EXPECT_EQ(report.fraction(), 0.3);
    for (const char* line :
         {R"({"message_type":"status","percent_done":0.2,"total_bytes":30})", "", "{", "null"}) {
        report.hear(line);
        EXPECT_EQ(report.fraction(), 0.3) << line;
    }
    report.hear(R"({"message_type":"error","during":"scan","item":"/twice"})");
    report.hear(R"({"message_type":"error","during":"archival","item":"/secret"})");
    report.hear(R"({"message_type":"summary","snapshot_id":"abc","files_new":2,)"
                R"("files_changed":3,"data_added":7})");
    EXPECT_EQ(report.unreadable(), 1);
    EXPECT_EQ(report.unreadablePath(), "/secret");
    EXPECT_EQ(report.snapshot(), "abc");
    EXPECT_EQ(report.files(), 5);
    EXPECT_EQ(report.added(), 7U);
}

TEST(Sources, LeaveOutWhatIsMadeAnewUnlessItIsWhatIsWanted) {
    ::setenv("HOME", "/nonexistent/her [home]", 1);
    Destination home;
    home.path = "/media/a";
    home.sources = {"/nonexistent/her [home]"};
    home.excludes = {"*.iso"};
    Destination system;
    system.path = "/media/b";
    system.sources = {"/var/tmp/work", "/"};
    const auto ofHome = Sources::excludes(home, {home, system});
    for (const char* pattern : {"/nonexistent/her \\[home]/.cache", "/media/a", "/media/b", "/tmp",
                                "/var/tmp", "lost+found"})
        EXPECT_THAT(ofHome, Contains(pattern));
    EXPECT_EQ(ofHome.back(), "*.iso") << "what the user says comes last";
    const auto ofSystem = Sources::excludes(system, {system});
    EXPECT_THAT(ofSystem, Not(Contains("/var/tmp")));
    EXPECT_THAT(ofSystem, Contains("/proc"));
}

TEST(Sources, AreRealFoldersOutsideThePlaceEachOnce) {
    const auto sources = Sources::resolve({"/tmp/", "/tmp", "/usr/../tmp"}, "/media/a");
    const auto* found = std::get_if<std::vector<std::string>>(&sources);
    ASSERT_NE(found, nullptr);
    EXPECT_THAT(*found, ElementsAre(std::filesystem::canonical("/tmp").string()));
    EXPECT_NE(problemOf(Sources::resolve({"/nonexistent"}, "/media/a")), nullptr);
    EXPECT_NE(problemOf(Sources::resolve({"/tmp"}, "/tmp")), nullptr);
    EXPECT_EQ(problemOf(Sources::resolve({"/tmp"}, "/tm")), nullptr) << "only named alike";
}

} // namespace
} // namespace velmorquit::tmutil
