#include "Linux/Bus/BusCall.h"
#include "Linux/Proc/Confinement.h"
#include "Linux/Remote/BusCallers.h"
#include "support/Child.h"
#include "support/PrivateBus.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <list>
#include <map>
#include <memory>
#include <optional>

#include <sys/syscall.h>
#include <unistd.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;

/// What is in a process's folder of /proc, by its path there: a file where it has lines, or else a
/// link, which is gone where it has no target.
using Entries = std::map<std::string, std::string>;

Entries plainEntries() {
    return {{"exe", "/usr/bin/thing"},
            {"root", "/"},
            {"ns/mnt", "x:[1]"},
            {"ns/user", "x:[1]"},
            {"ns/pid", "x:[1]"},
            {"mountinfo", "22 1 8:1 / / rw - ext4 /dev/a rw\n23 22 0:5 / /proc rw - proc p rw\n"},
            {"cgroup", "0::/user.slice/session-1.scope\n"}};
}

void makeEntries(const fs::path& folder, const Entries& entries) {
    for (const char* inner : {"ns", "attr"})
        fs::create_directories(folder / inner);
    for (const auto& [name, content] : entries) {
        if (content.ends_with('\n'))
            std::ofstream(folder / name) << content;
        else if (!content.empty())
            fs::create_symlink(content, folder / name);
    }
}

TEST(ConfinementTest, KnowsWhatShutsAProcessInAndTakesWhatItCannotReadForThat) {
    struct Row {
        const char* what;
        Entries entries;
        bool isConfined;
        std::string name = "thing";
        std::string label{};
    };
    const auto unit = [](const std::string& name) {
        return std::pair<const std::string, std::string>("cgroup",
                                                         "0::/user.slice/app.slice/" + name + '\n');
    };
    const std::pair<const std::string, std::string> others{"ns/mnt", "x:[2]"};
    const std::string noMore = "Name:\tthing\nNoNewPrivs:\t1\nSeccomp:\t0\n";
    const std::string id = "-01234567-0123-0123-0123-0123456789ab.scope";
    const std::vector<Row> rows{
        {"a plain program", {}, false},
        {"of an application", {unit("app-gnome-org.foo.Bar-12.scope")}, false},
        {"a service that hides a folder", {others}, false},
        {"without a way to more rights", {{"status", noMore}}, false},
        {"the same, with other folders", {others, {"status", noMore}}, true},
        {"other users", {{"ns/user", "x:[2]"}}, true},
        {"other processes", {{"ns/pid", "x:[2]"}}, true},
        {"another root by its path", {{"root", "/srv/jail"}}, true},
        {"another root",
         {others, {"mountinfo", "22 1 0:55 /newroot / rw - tmpfs tmpfs rw\n"}},
         true},
        {"another root on top",
         {others, {"mountinfo", "22 1 8:1 / / rw - ext4 a rw\n23 22 0:9 / / rw - overlay o rw\n"}},
         true},
        {"a root that is no mount",
         {others, {"mountinfo", "23 22 0:5 / /proc rw - proc p rw\n"}},
         true},
        {"a broker", {{"exe", "/usr/bin/xdg-dbus-proxy"}}, true, "xdg-dbus-proxy"},
        {"a broker that was updated",
         {{"exe", "/usr/bin/xdg-dbus-proxy (deleted)"}},
         true,
         "xdg-dbus-proxy"},
        {"a sandbox", {unit("app-flatpak-org.foo.Bar-12.scope")}, true, "org.foo.Bar"},
        {"a snap", {others, unit("snap.tune.tune" + id)}, true, "tune_tune"},
        {"a classic snap", {unit("snap.code.code" + id)}, false, "code_code"},
        {"a label of the bus's", {}, true, "thing", {"snap.tune.tune (enforce)\0", 25}},
        {"a classic snap's label", {}, false, "thing", {"snap.code.code (complain)\0", 26}},
        {"a label that ends what breaks it", {}, true, "thing", "viewer (kill)"},
        {"a label that holds", {}, true, "thing", "viewer (enforce)"},
        {"a label that doesn't", {}, false, "thing", "unconfined"},
        {"a label of the kernel's", {{"attr/current", "viewer (enforce)\n"}}, true},
        {"a long name",
         {{"exe", "/app/" + std::string(70, 'a')}},
         false,
         std::string(60, 'a') + "…"},
        {"one that can't be looked at", {{"ns/mnt", ""}}, true},
        {"one without a program", {{"exe", ""}}, true, ""},
        {"a name that lies", {{"exe", "/opt/\u202equit\n<b>x"}}, false, "___quit__b_x"},
    };
    for (const Row& row : rows) {
        const TemporaryFolder folder;
        Entries entries = row.entries;
        entries.merge(plainEntries());
        makeEntries(folder.path() / "1", entries);
        makeEntries(folder.path() / std::to_string(::getpid()), plainEntries());
        const ProcDirectory proc(folder.path().string());
        const Confinement found = confinementOf(1, row.label, proc);
        EXPECT_EQ(found.isConfined, row.isConfined) << row.what;
        EXPECT_EQ(found.name, row.name) << row.what;
        for (const ProcessId gone : {0, -1, 4711}) {
            const Confinement nobody = confinementOf(gone, {}, proc);
            EXPECT_TRUE(nobody.isConfined && nobody.name.empty()) << gone;
        }
    }
}

/// Who the bus and the kernel say has given a message on this bus.
class BusCallersTest : public testing::Test {
protected:
    RemoteCaller find(const QString& connection) {
        std::optional<RemoteCaller> found;
        callers.find(connection, [&](const RemoteCaller& caller) { found = caller; });
        EXPECT_FALSE(found) << "it doesn't wait";
        EXPECT_TRUE(waitUntil([&] { return found.has_value(); }));
        return found.value_or(RemoteCaller());
    }
    /// The connection of a process that stays on the bus, started by this command.
    QString connectionOf(const std::vector<std::string>& before) {
        std::vector<std::string> command = before;
        command.insert(command.end(),
                       {"gdbus", "monitor", "--address", bus.address(), "--dest", "org.test"});
        const QStringList known = names();
        children.emplace_back(command);
        QStringList fresh;
        waitUntil([&] {
            fresh = names().filter(QRegularExpression("^:"));
            fresh.removeIf([&](const QString& name) { return known.contains(name); });
            return !fresh.isEmpty();
        });
        return fresh.value(0);
    }
    QStringList names() {
        return own.call(busQuestion("ListNames")).arguments().value(0).toStringList();
    }

    PrivateBus bus;
    QDBusConnection own = bus.connect();
    BusCallers callers{own};
    std::list<Child> children;
};

TEST_F(BusCallersTest, TellsAProcessInANamespaceFromOneBesideIt) {
    const RemoteCaller self = find(own.baseService());
    EXPECT_FALSE(self.isConfined);
    EXPECT_EQ(self.name, "linux_tests");
    const RemoteCaller beside = find(connectionOf({}));
    EXPECT_FALSE(beside.isConfined);
    EXPECT_EQ(beside.name, "gdbus");
    if (std::system("unshare --user --map-root-user true 2>/dev/null") != 0)
        GTEST_SKIP() << "no namespaces here";
    // Where all is as outside but for what it may become.
    if (std::system("bwrap --dev-bind / / true 2>/dev/null") == 0) {
        EXPECT_TRUE(find(connectionOf({"bwrap", "--dev-bind", "/", "/"})).isConfined);
    }
    const RemoteCaller inside = find(connectionOf({"unshare", "--user", "--map-root-user"}));
    EXPECT_TRUE(inside.isConfined);
    EXPECT_EQ(inside.name, "gdbus");
}

TEST_F(BusCallersTest, WhoHasGoneOrIsNotToldIsConfined) {
    const QString gone = connectionOf({});
    children.clear();
    EXPECT_TRUE(waitUntil([&] { return !names().contains(gone); }));
    EXPECT_TRUE(find(gone).isConfined);
    EXPECT_TRUE(find(":9.99").isConfined);
    EXPECT_TRUE(callers.callerOf({}).isConfined);
    EXPECT_TRUE(callers.callerOf({{"ProcessID", "x"}}).isConfined);
}

// The id may be another process's by now, which the bus's hold on the first one tells.
TEST_F(BusCallersTest, AnIdCountsOnlyWhileTheProcessThatTheBusHoldsLives) {
    auto child = std::make_unique<Child>(std::vector<std::string>{"sleep", "1000"});
    const int held = static_cast<int>(::syscall(SYS_pidfd_open, child->id(), 0));
    const QVariantMap credentials{
        {"ProcessID", static_cast<uint>(::getpid())},
        {"ProcessFD", QVariant::fromValue(QDBusUnixFileDescriptor(held))}};
    EXPECT_FALSE(callers.callerOf(credentials).isConfined);
    child.reset();
    EXPECT_TRUE(callers.callerOf(credentials).isConfined);
    ::close(held);
}

} // namespace
} // namespace velmorquit
