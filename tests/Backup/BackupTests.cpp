#include "BackupStory.h"

#include "support/Waiting.h"

#include <gmock/gmock.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

namespace velmorquit {
namespace {

using testing::HasSubstr;
using testing::Not;

unsigned modeOf(const fs::path& path) {
    struct stat its{};
    return ::stat(path.c_str(), &its) == 0 ? its.st_mode & 07777U : 0;
}

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

bool areSame(const fs::path& one, const fs::path& other) {
    Child child({"diff", "--recursive", "--no-dereference", one, other});
    waitUntil([&] { return !child.isRunning(); });
    EXPECT_EQ(child.output(), "");
    return child.status() == 0;
}

/// Whether a process shows the text in its arguments or its environment.
bool isShown(const std::string& text) {
    for (const auto& process : fs::directory_iterator("/proc")) {
        for (const char* name : {"cmdline", "environ"}) {
            if (contentOf(process.path() / name).find(text) != std::string::npos)
                return true;
        }
    }
    return false;
}

/// The processes that restic runs as, with the repository among their arguments.
std::vector<pid_t> resticsOn(const fs::path& place) {
    std::vector<pid_t> found;
    for (const auto& process : fs::directory_iterator("/proc")) {
        const std::string words = contentOf(process.path() / "cmdline");
        if (words.find("restic") < 20 && words.find(place.string()) != std::string::npos)
            found.push_back(std::stoi(process.path().filename()));
    }
    return found;
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
    const std::string file = passwordFile();
    EXPECT_EQ(tool({"latestbackup"}).status, 1);

    const auto before = std::chrono::system_clock::now();
    End end = tool({"startbackup", "--block"});
    ASSERT_EQ(end.status, 0) << end.output;
    for (const char* folder : {"config", "run", "state"}) {
        for (const auto& made : fs::recursive_directory_iterator(root / folder))
            EXPECT_EQ(modeOf(made), made.is_directory() ? 0700U : 0600U) << made;
    }
    ASSERT_EQ(dates().size(), 1U);
    EXPECT_GE(dates().front(), before);
    const std::string latest = tool({"latestbackup"}).lastLine();
    EXPECT_THAT(latest, testing::MatchesRegex(place.string() + "/[0-9]{4}(-[0-9]{2}){2}-[0-9]{6}"));

    write(home / "docs/note.txt", "two");
    ASSERT_EQ(tool({"startbackup", "--block"}).status, 0);
    end = tool({"restore", "latest", "--to", root / "all"});
    EXPECT_EQ(end.status, 0) << end.output;
    EXPECT_TRUE(areSame(home / "docs", (root / "all").string() + home.string() + "/docs"));
    // Neither what is left out nor the backups themselves.
    for (const char* name : {".cache/junk", "films/left out.iso", "Backup"})
        EXPECT_FALSE(fs::exists((root / "all").string() + (home / name).string())) << name;
    EXPECT_EQ(tool({"restore", "latest", "--to", root / "all"}).status, 1);

    const std::string first = latest.substr(latest.rfind('/') + 1);
    ASSERT_EQ(tool({"restore", first, home / "docs/note.txt", "--to", root / "one"}).status, 0);
    EXPECT_EQ(contentOf((root / "one").string() + home.string() + "/docs/note.txt"), "one");
    const fs::path odd = home / "docs/*[stars]?\\";
    ASSERT_EQ(tool({"restore", "latest", odd, "--to", root / "odd"}).status, 0);
    EXPECT_EQ(contentOf((root / "odd").string() + odd.string()), "pattern");
    EXPECT_FALSE(fs::exists((root / "odd").string() + (home / "docs/note.txt").string()));
    end = tool({"restore", "latest", "/no\n\x1b[2J\u202esuch", "--to", root / "none"});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.lastLine(), testing::HasSubstr("/no [2Jsuch"));
    EXPECT_FALSE(fs::exists(root / "none"));
}

TEST_F(BackupStory, ProgressRisesOverAllDestinationsAndAStopLeavesNothingBehind) {
    writeRandom(home / "large", bytesToBackUp());
    setUp(root / "one/Backup");
    setUp(root / "two/Backup");
    limit(static_cast<int>(bytesToBackUp() / 1024 / 4));
    const std::string password = contentOf(passwordFile()).substr(0, 29);

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
    EXPECT_FALSE(isShown(password));
    const End second = tool({"startbackup", "--block"});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.lastLine(), "Un backup è già in corso.");

    EXPECT_EQ(tool({"stopbackup"}).status, 0);
    EXPECT_FALSE(progress().isRunning);
    EXPECT_TRUE(resticsOn(root).empty());
    EXPECT_TRUE(waitUntil([&] { return !backup->isRunning(); }));
    EXPECT_EQ(backup->status(), 1);
    // The first was done, the second was under way.
    EXPECT_EQ(dates(0).size(), 1U);
    EXPECT_EQ(dates(1).size(), 0U);
    EXPECT_EQ(locksIn(root / "two/Backup"), 0U);
    const End checked = tool({"check"});
    EXPECT_EQ(checked.status, 0) << checked.output;
    EXPECT_EQ(tool({"stopbackup"}).status, 0);
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
    for (const pid_t process : resticsOn(place))
        ::kill(process, SIGKILL);
    backup->send(SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return resticsOn(place).empty() && !backup->isRunning(); }));
    ASSERT_EQ(locksIn(place), 1U);
    write(place / "locks" / std::string(64, 'a'), "");

    fs::remove(root / "bin/restic");
    // The second one removes the first, for which nobody else may have a lock.
    for (int count = 0; count < 2; ++count) {
        const End end = tool({"startbackup", "--block"});
        EXPECT_EQ(end.status, 0) << end.output;
        EXPECT_THAT(end.output, Not(HasSubstr("Attenzione")));
    }
    EXPECT_EQ(dates().size(), 1U);
    EXPECT_EQ(locksIn(place), 0U);
    EXPECT_EQ(tool({"check"}).status, 0);
}

TEST_F(BackupStory, SomebodyElsesBackupsSurvive) {
    makeMixedFiles();
    const fs::path place = root / "disk/Backup";
    fs::create_directories(place.parent_path());
    write(root / "password", "correct horse\n");
    const auto plain = [&](std::vector<std::string> words) {
        words.insert(words.begin(), {"/usr/bin/restic", "-r", place, "-p", root / "password"});
        Child child(words);
        return wait(child);
    };
    ASSERT_EQ(plain({"init"}).status, 0);
    ASSERT_EQ(plain({"backup", home}).status, 0);
    ASSERT_EQ(plain({"backup", "--host", "elsewhere", "--tag", "velmorquit", home}).status, 0);

    EXPECT_THAT(tool({"setup", place}).lastLine(), HasSubstr("--password-file"));
    write(root / "wrong", "wrong");
    EXPECT_THAT(tool({"setup", place, "--password-file", root / "wrong"}).lastLine(),
                HasSubstr("è sbagliata"));
    EXPECT_FALSE(fs::exists(settings));
    EXPECT_TRUE(fs::is_empty(root / "config/velmorquit/passwords"));
    const End joined =
        tool({"setup", place, "--password-file", root / "password", "--keep-last", "1"});
    ASSERT_EQ(joined.status, 0) << joined.output;
    EXPECT_THAT(joined.output, Not(HasSubstr("correct horse")));

    for (int count = 0; count < 2; ++count)
        ASSERT_EQ(tool({"startbackup", "--block"}).status, 0);
    EXPECT_EQ(dates().size(), 1U);
    const std::string snapshots = restic(place, {"snapshots"}).output;
    EXPECT_THAT(snapshots, HasSubstr("3 snapshots"));
    EXPECT_THAT(snapshots, HasSubstr("elsewhere"));
    EXPECT_THAT(tool({"list"}).output, HasSubstr("elsewhere"));

    // Forgotten, its files and the way into them stay.
    const std::string file = passwordFile();
    EXPECT_THAT(tool({"remove", place}).output, HasSubstr(file));
    EXPECT_TRUE(fs::exists(file) && fs::exists(place / "config"));
    EXPECT_EQ(tool({"remove", place}).status, 1);
}

TEST_F(BackupStory, DamageIsFoundWhereverItIs) {
    makeMixedFiles();
    const fs::path place = root / "disk/Backup";
    setUp(place);
    ASSERT_EQ(tool({"startbackup", "--block"}).status, 0);
    fs::path largest;
    for (const auto& file : fs::recursive_directory_iterator(place / "data")) {
        const bool isLarger = file.is_regular_file() &&
                              (largest.empty() || file.file_size() > fs::file_size(largest));
        if (isLarger)
            largest = file.path();
    }
    fs::permissions(largest, fs::perms::owner_all);
    {
        std::fstream pack(largest, std::ios::in | std::ios::out | std::ios::binary);
        pack.seekp(1000);
        pack << "damage";
    }
    const End end = tool({"check"});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.lastLine(), HasSubstr("I backup in " + place.string() + " sono danneggiati"));

    write(settings, "<plist><dict>");
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"startbackup", "--block"},
          {"list"},
          {"remove", place},
          {"setup", root / "disk/Other"}}) {
        const End refused = tool(words);
        EXPECT_EQ(refused.status, 1);
        EXPECT_THAT(refused.lastLine(), HasSubstr("è danneggiato"));
    }
    EXPECT_EQ(contentOf(settings), "<plist><dict>");
}

TEST_F(BackupStory, EachObstacleIsToldInOneSentence) {
    makeMixedFiles();
    EXPECT_THAT(tool({"startbackup", "--block"}).lastLine(), HasSubstr("setup CARTELLA"));
    EXPECT_THAT(tool({"setup", home, "--source", home}).lastLine(),
                HasSubstr("nella destinazione"));
    EXPECT_THAT(tool({"setup", root / "unplugged/Backup"}).lastLine(), HasSubstr("collegato"));
    EXPECT_THAT(tool({"setup", home / "docs", "--source", root / "run"}).lastLine(),
                HasSubstr("già altre cose"));
    const fs::path place = root / "one/Backup";
    setUp(place);
    setUp(root / "two/Backup");

    // One that isn't there doesn't hold back the other, and nothing is made in its place.
    fs::rename(root / "one/Backup", root / "one/away");
    fs::create_directory(place);
    End end = tool({"startbackup", "--block"});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.lastLine(), HasSubstr(place.string() + " non si trova"));
    EXPECT_EQ(dates(0).size(), 0U);
    EXPECT_EQ(dates(1).size(), 1U);
    EXPECT_TRUE(fs::is_empty(place));
    ASSERT_EQ(tool({"remove", root / "two/Backup"}).status, 0);
    fs::remove(place);
    fs::rename(root / "one/away", place);

    // What can't be read is told; the rest counts. Root reads all that it isn't kept from.
    fs::permissions(home / "docs/note.txt", fs::perms::none);
    std::vector<std::string> command{VELMORQUIT_TMUTIL, "startbackup", "--block"};
    if (::geteuid() == 0)
        command.insert(command.begin(),
                       {"setpriv", "--bounding-set=-dac_override,-dac_read_search"});
    Child reader(command);
    end = wait(reader);
    EXPECT_EQ(end.status, 0) << end.output;
    EXPECT_THAT(end.output, HasSubstr("non ho potuto leggere"));
    EXPECT_EQ(dates().size(), 1U);

    write(passwordFile(), "wrong");
    end = tool({"startbackup", "--block"});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.lastLine(), HasSubstr("La password della destinazione"));

    ::setenv("PATH", (root / "bin").c_str(), 1);
    end = tool({"startbackup", "--block"});
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.lastLine(), HasSubstr("apt install restic"));
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
    Child inside({"unshare", "--mount", "--map-current-user", "bash", root / "inside",
                  VELMORQUIT_TMUTIL, disk});
    const End end = wait(inside);
    if (end.status == 77 || end.output.find("unshare") != std::string::npos)
        GTEST_SKIP() << "no namespaces here: " << end.output;
    EXPECT_EQ(end.status, 0) << end.output;
    EXPECT_THAT(end.lastLine(), HasSubstr("è pieno"));
}

} // namespace
} // namespace velmorquit
