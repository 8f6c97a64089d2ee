#include "BackupStory.h"

#include <chrono>
#include <fstream>
#include <sys/stat.h>

namespace velmorquit {
namespace {

using testing::HasSubstr;
using testing::Not;

unsigned modeOf(const fs::path& path) {
    struct stat its{};
    return ::stat(path.c_str(), &its) == 0 ? its.st_mode & 07777U : 0;
}

/// The processes that restic runs as, with the repository among their arguments.
std::string resticsOn(const fs::path& place) {
    return run({"pgrep", "-d", " ", "-f", "^.{0,19}restic.*" + place.string()}).text;
}

std::size_t bytesToBackUp() {
    return std::getenv("VELMOR_LARGE") ? std::size_t(1) << 30 : std::size_t(24) << 20;
}

TEST_F(BackupStory, BacksUpAndGivesBackEveryKindOfFile) {
    makeMixedFiles();
    write(home / ".cache/junk", "junk");
    write(home / "films/left out.iso", "iso");
    const fs::path place = home / "Backup";
    setUp(place, {"--exclude", "*.iso"});
    EXPECT_EQ(tool({"latestbackup"}).status, 1);

    const auto before = std::chrono::system_clock::now();
    ASSERT_THAT(backUp(), succeeds());
    for (const char* folder : {"config", "run", "state"}) {
        for (const auto& made : fs::recursive_directory_iterator(root / folder))
            EXPECT_EQ(modeOf(made), made.is_directory() ? 0700U : 0600U) << made;
    }
    ASSERT_EQ(dates().size(), 1U);
    EXPECT_GE(dates().front(), before);
    const std::string latest = lastLineOf(tool({"latestbackup"}).text);
    EXPECT_THAT(latest, testing::MatchesRegex(place.string() + "/[0-9]{4}(-[0-9]{2}){2}-[0-9]{6}"));

    write(home / "docs/note.txt", "two");
    ASSERT_THAT(backUp(), succeeds());
    const auto restore = [this](const std::string& date, const Words& files, const char* to) {
        Words words{"restore", date};
        words.insert(words.end(), files.begin(), files.end());
        words.insert(words.end(), {"--to", root / to});
        return tool(words);
    };
    const auto restored = [this](const char* to, const fs::path& file) {
        return fs::path((root / to).string() + file.string());
    };
    EXPECT_THAT(restore("latest", {}, "all"), succeeds());
    EXPECT_EQ(
        run({"diff", "-r", "--no-dereference", home / "docs", restored("all", home / "docs")}).text,
        "");
    // Neither what is left out nor the backups themselves.
    for (const char* name : {".cache/junk", "films/left out.iso", "Backup"})
        EXPECT_FALSE(fs::exists(restored("all", home / name))) << name;
    EXPECT_EQ(restore("latest", {}, "all").status, 1);

    const fs::path note = home / "docs/note.txt";
    ASSERT_THAT(restore(latest.substr(latest.rfind('/') + 1), {note}, "one"), succeeds());
    EXPECT_EQ(contents(restored("one", note)), "one");
    const fs::path odd = home / "docs/*[stars]?\\";
    ASSERT_THAT(restore("latest", {odd}, "odd"), succeeds());
    EXPECT_EQ(contents(restored("odd", odd)), "pattern");
    EXPECT_FALSE(fs::exists(restored("odd", note)));
    EXPECT_THAT(restore("latest", {"/no\n\x1b[2J\u202esuch"}, "none"),
                isRefusedWith("/no [2Jsuch"));
    EXPECT_FALSE(fs::exists(root / "none"));
}

TEST_F(BackupStory, ProgressRisesOverAllDestinationsAndAStopLeavesNothingBehind) {
    writeRandom(home / "large", bytesToBackUp());
    setUp(root / "one/Backup");
    setUp(root / "two/Backup");
    limit(static_cast<int>(bytesToBackUp() / 1024 / 4));

    const auto backup = start({"startbackup", "--block"});
    double last = -1;
    while (backup->isRunning() && last < 0.6) {
        const Progress now = progress();
        EXPECT_GE(now.percent, backup->isRunning() ? last : -1);
        EXPECT_LE(now.percent, 1);
        last = std::max(last, now.percent);
        linger(50);
    }
    EXPECT_GE(last, 0.6);
    EXPECT_TRUE(progress().isRunning);
    EXPECT_EQ(run({"sh", "-c",
                   "grep -laFf " + passwordFile() +
                       " /proc/[0-9]*/cmdline /proc/[0-9]*/environ 2>/dev/null"})
                  .text,
              "");
    EXPECT_NE(
        run({"sh", "-c",
             "cd /proc; for one in " + resticsOn(root) + "; do grep -la HOME= $one/environ; done"})
            .text,
        "")
        << "restic has the variables of its user";
    EXPECT_THAT(backUp(), isRefusedWith("Un backup è già in corso."));

    EXPECT_EQ(tool({"stopbackup"}).status, 0);
    EXPECT_FALSE(progress().isRunning);
    EXPECT_EQ(resticsOn(root), "");
    EXPECT_EQ(outcomeOf(*backup).status, 1);
    // The first was done, the second was under way.
    EXPECT_EQ(dates(0).size(), 1U);
    EXPECT_EQ(dates(1).size(), 0U);
    EXPECT_EQ(locksIn(root / "two/Backup"), 0U);
    for (const char* word : {"check", "stopbackup"})
        EXPECT_THAT(tool({word}), succeeds());
}

TEST_F(BackupStory, AfterACrashTheNextStartPutsThingsInOrder) {
    writeRandom(home / "large", bytesToBackUp());
    const fs::path place = root / "disk/Backup";
    setUp(place, {"--keep-last", "1"});
    limit(static_cast<int>(bytesToBackUp() / 1024 / 8));
    auto backup = start({"startbackup", "--block"});
    ASSERT_TRUE(comesTo(0.2));
    backup->send(SIGKILL);
    // It doesn't go on without the tool.
    EXPECT_TRUE(waitUntil([&] { return resticsOn(place).empty(); }));
    EXPECT_EQ(locksIn(place), 0U);
    EXPECT_FALSE(progress().isRunning);

    // The power is cut: neither has the time to remove its lock.
    backup = start({"startbackup", "--block"});
    ASSERT_TRUE(comesTo(0.2));
    run({"sh", "-c", "kill -KILL " + resticsOn(place)});
    backup->send(SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return resticsOn(place).empty() && !backup->isRunning(); }));
    ASSERT_EQ(locksIn(place), 1U);
    write(place / "locks" / std::string(64, 'a'), "");

    fs::remove(root / "bin/restic");
    // The second one removes the first, for which nobody else may have a lock.
    for (int count = 0; count < 2; ++count) {
        const Outcome end = backUp();
        EXPECT_THAT(end, succeeds());
        EXPECT_THAT(end.text, Not(HasSubstr("Attenzione")));
    }
    EXPECT_EQ(dates().size(), 1U);
    EXPECT_EQ(locksIn(place), 0U);
    EXPECT_EQ(tool({"check"}).status, 0);
}

TEST_F(BackupStory, SomebodyElsesBackupsSurvive) {
    makeMixedFiles();
    const fs::path place = root / "disk/Backup";
    const fs::path password = root / "password";
    fs::create_directories(place.parent_path());
    write(password, "correct horse\n");
    const auto restic = [&](Words words) {
        words.insert(words.begin(), {"/usr/bin/restic", "-r", place, "-p", password});
        return run(words);
    };
    for (const Words& words : {Words{"init"}, Words{"backup", home},
                               Words{"backup", "--host", "elsewhere", "--tag", "velmorquit", home}})
        ASSERT_THAT(restic(words), succeeds());

    EXPECT_THAT(tool({"setup", place}), isRefusedWith("--password-file"));
    write(root / "wrong", "wrong");
    EXPECT_THAT(tool({"setup", place, "--password-file", root / "wrong"}),
                isRefusedWith("è sbagliata"));
    EXPECT_FALSE(fs::exists(settings));
    EXPECT_TRUE(fs::is_empty(root / "config/velmorquit/passwords"));
    const Outcome joined = tool({"setup", place, "--password-file", password, "--keep-last", "1"});
    ASSERT_THAT(joined, succeeds());
    EXPECT_THAT(joined.text, Not(HasSubstr("correct horse")));

    for (int count = 0; count < 2; ++count)
        ASSERT_THAT(backUp(), succeeds());
    EXPECT_EQ(dates().size(), 1U);
    EXPECT_THAT(restic({"snapshots"}).text,
                testing::AllOf(HasSubstr("3 snapshots"), HasSubstr("elsewhere")));
    EXPECT_THAT(tool({"list"}).text, HasSubstr("elsewhere"));

    // Forgotten, its files and the way into them stay.
    const std::string file = passwordFile();
    EXPECT_THAT(tool({"remove", place}).text, HasSubstr(file));
    EXPECT_TRUE(fs::exists(file) && fs::exists(place / "config"));
    EXPECT_EQ(tool({"remove", place}).status, 1);
}

TEST_F(BackupStory, DamageIsFoundWhereverItIs) {
    makeMixedFiles();
    const fs::path place = root / "disk/Backup";
    setUp(place);
    ASSERT_THAT(backUp(), succeeds());
    fs::path largest = place / "config";
    for (const auto& file : fs::recursive_directory_iterator(place / "data")) {
        if (file.is_regular_file() && file.file_size() > fs::file_size(largest))
            largest = file.path();
    }
    fs::permissions(largest, fs::perms::owner_all);
    std::fstream(largest, std::ios::in | std::ios::out | std::ios::binary).seekp(1000) << "damage";
    EXPECT_THAT(tool({"check"}),
                isRefusedWith("I backup in " + place.string() + " sono danneggiati"));

    write(settings, "<plist><dict>");
    for (const Words& words : {Words{"startbackup", "--block"}, Words{"list"},
                               Words{"remove", place}, Words{"setup", root / "disk/Other"}})
        EXPECT_THAT(tool(words), isRefusedWith("è danneggiato"));
    EXPECT_EQ(contents(settings), "<plist><dict>");
}

TEST_F(BackupStory, EachObstacleIsToldInOneSentence) {
    makeMixedFiles();
    EXPECT_THAT(backUp(), isRefusedWith("setup CARTELLA"));
    EXPECT_THAT(tool({"setup", home, "--source", home}), isRefusedWith("nella destinazione"));
    EXPECT_THAT(tool({"setup", root / "unplugged/Backup"}), isRefusedWith("collegato"));
    EXPECT_THAT(tool({"setup", home / "docs", "--source", root / "run"}),
                isRefusedWith("già altre cose"));
    const fs::path place = root / "one/Backup";
    setUp(place);
    setUp(root / "two/Backup");

    // One that isn't there doesn't hold back the other, and nothing is made in its place.
    fs::rename(place, root / "one/away");
    fs::create_directory(place);
    EXPECT_THAT(backUp(), isRefusedWith(place.string() + " non si trova"));
    EXPECT_EQ(dates(0).size(), 0U);
    EXPECT_EQ(dates(1).size(), 1U);
    EXPECT_TRUE(fs::is_empty(place));
    ASSERT_THAT(tool({"remove", root / "two/Backup"}), succeeds());
    fs::remove(place);
    fs::rename(root / "one/away", place);

    // A file that can't be read is told; the rest counts. Root reads all that it isn't kept from.
    fs::permissions(home / "docs/note.txt", fs::perms::none);
    Words command{VELMORQUIT_TMUTIL, "startbackup", "--block"};
    if (::geteuid() == 0)
        command.insert(command.begin(),
                       {"setpriv", "--bounding-set=-dac_override,-dac_read_search"});
    const Outcome end = run(command);
    EXPECT_THAT(end, succeeds());
    EXPECT_THAT(end.text, HasSubstr("non ho potuto leggere"));
    EXPECT_EQ(dates().size(), 1U);

    write(passwordFile(), "wrong");
    EXPECT_THAT(backUp(), isRefusedWith("La password della destinazione"));
    ::setenv("PATH", (root / "bin").c_str(), 1);
    EXPECT_THAT(backUp(), isRefusedWith("apt install restic"));
}

TEST_F(BackupStory, AFullDiskIsToldAtOnceAndUsableAfterwards) {
    writeRandom(home / "large", 8 << 20);
    const fs::path disk = root / "disk";
    fs::create_directory(disk);
    write(root / "inside", "mount -t tmpfs -o size=6m none \"$2\" || exit 77\n"
                           "\"$1\" setup \"$2/Backup\" >/dev/null || exit 3\n"
                           "\"$1\" startbackup --block && exit 4\n"
                           "ls -A \"$2/Backup/locks\" | grep -q . && exit 5\n"
                           "mount -o remount,size=60m \"$2\"\n"
                           "\"$1\" startbackup --block >/dev/null || exit 6\n"
                           "\"$1\" check >/dev/null || exit 7\n");
    const Outcome end = run({"unshare", "--mount", "--map-current-user", "bash", root / "inside",
                             VELMORQUIT_TMUTIL, disk});
    if (end.status == 77 || end.text.find("unshare") != std::string::npos)
        GTEST_SKIP() << "no namespaces here: " << end.text;
    EXPECT_THAT(end, ends(0, HasSubstr("è pieno")));
}

} // namespace
} // namespace velmorquit
