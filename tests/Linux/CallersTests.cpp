#include "Linux/Proc/Confinement.h"
#include "Linux/Remote/BusCallers.h"
#include "support/Child.h"
#include "support/PrivateBus.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <list>
#include <optional>

#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;

/// A /proc with this process and another one in it.
class FakeProc {
public:
    FakeProc() {
        for (const ProcessId id : {ProcessId(::getpid()), other})
            addPlain(id);
    }

    static constexpr ProcessId other = 1;

    [[nodiscard]] std::string path() const { return folder_.string(); }
    void link(const char* name, const char* target, ProcessId id = other) const {
        const fs::path file = folder_ / std::to_string(id) / name;
        fs::remove(file);
        if (*target != '\0')
            fs::create_symlink(target, file);
    }
    void write(const char* name, const std::string& content, ProcessId id = other) const {
        std::ofstream(folder_ / std::to_string(id) / name) << content;
    }

private:
    void addPlain(ProcessId id) const {
        fs::create_directories(folder_ / std::to_string(id) / "ns");
        fs::create_directories(folder_ / std::to_string(id) / "attr");
        link("exe", "/usr/bin/thing", id);
        link("root", "/", id);
        for (const char* kind : {"ns/mnt", "ns/user", "ns/pid"})
            link(kind, "x:[1]", id);
        write("mountinfo", "22 1 8:1 / / rw - ext4 /dev/a rw\n23 22 0:5 / /proc rw - proc p rw\n",
              id);
        write("cgroup", "0::/user.slice/session-1.scope\n", id);
    }

    const TemporaryFolder temporary_;
    const fs::path& folder_ = temporary_.path();
};

TEST(ConfinementTest, KnowsWhatShutsAProcessInAndTakesWhatItCannotReadForThat) {
    struct Row {
        const char* what;
        std::function<void(const FakeProc&)> change;
        bool isConfined;
        std::string name;
        std::string label{};
    };
    const auto unit = [](const char* name) {
        return [name](const FakeProc& proc) {
            proc.write("cgroup", std::string("0::/user.slice/app.slice/") + name + '\n');
        };
    };
    const auto link = [](const char* name, const std::string& target) {
        return [=](const FakeProc& proc) { proc.link(name, target.c_str()); };
    };
    const std::vector<Row> rows{
        {"a plain program", [](const FakeProc&) {}, false, "thing"},
        {"of an application", unit("app-gnome-org.foo.Bar-12.scope"), false, "thing"},
        {"a service that hides a folder", link("ns/mnt", "x:[2]"), false, "thing"},
        {"without a way to more rights",
         [](const FakeProc& proc) {
             proc.write("status", "Name:\tthing\nNoNewPrivs:\t1\nSeccomp:\t0\n");
         },
         false, "thing"},
        {"the same, with other folders",
         [](const FakeProc& proc) {
             proc.link("ns/mnt", "x:[2]");
             proc.write("status", "Name:\tthing\nNoNewPrivs:\t1\nSeccomp:\t0\n");
         },
         true, "thing"},
        {"other users", link("ns/user", "x:[2]"), true, "thing"},
        {"other processes", link("ns/pid", "x:[2]"), true, "thing"},
        {"another root by its path", link("root", "/srv/jail"), true, "thing"},
        {"another root",
         [](const FakeProc& proc) {
             proc.link("ns/mnt", "x:[2]");
             proc.write("mountinfo", "22 1 0:55 /newroot / rw - tmpfs tmpfs rw\n");
         },
         true, "thing"},
        {"another root on top",
         [](const FakeProc& proc) {
             proc.link("ns/mnt", "x:[2]");
             proc.write("mountinfo",
                        "22 1 8:1 / / rw - ext4 a rw\n23 22 0:9 / / rw - overlay o rw\n");
         },
         true, "thing"},
        {"a root that is no mount",
         [](const FakeProc& proc) {
             proc.link("ns/mnt", "x:[2]");
             proc.write("mountinfo", "23 22 0:5 / /proc rw - proc p rw\n");
         },
         true, "thing"},
        {"the broker of a sandbox", link("exe", "/usr/bin/xdg-dbus-proxy"), true, "xdg-dbus-proxy"},
        {"a sandboxed application", unit("app-flatpak-org.foo.Bar-12.scope"), true, "org.foo.Bar"},
        {"a snap",
         [&unit](const FakeProc& proc) {
             unit("snap.tune.tune-01234567-0123-0123-0123-0123456789ab.scope")(proc);
             proc.link("ns/mnt", "x:[2]");
         },
         true, "tune_tune"},
        {"a classic snap", unit("snap.code.code-01234567-0123-0123-0123-0123456789ab.scope"), false,
         "code_code"},
        {"a broker that was updated", link("exe", "/usr/bin/xdg-dbus-proxy (deleted)"), true,
         "xdg-dbus-proxy"},
        {"a label of the bus's", [](const FakeProc&) {}, true, "thing",
         std::string("snap.tune.tune (enforce)\0", 25)},
        {"a classic snap's label", [](const FakeProc&) {}, false, "thing",
         std::string("snap.code.code (complain)\0", 26)},
        {"a label that ends what breaks it", [](const FakeProc&) {}, true, "thing",
         "viewer (kill)"},
        {"a label that holds", [](const FakeProc&) {}, true, "thing", "viewer (enforce)"},
        {"a label that doesn't", [](const FakeProc&) {}, false, "thing", "unconfined"},
        {"a label of the kernel's",
         [](const FakeProc& proc) { proc.write("attr/current", "viewer (enforce)\n"); }, true,
         "thing"},
        {"a long name", link("exe", "/app/" + std::string(70, 'a')), false,
         std::string(60, 'a') + "…"},
        {"one that can't be looked at", link("ns/mnt", ""), true, "thing"},
        {"one without a program", link("exe", ""), true, ""},
        {"a name that lies", link("exe", "/opt/\u202equit\n<b>x"), false, "___quit__b_x"},
    };
    for (const Row& row : rows) {
        const FakeProc proc;
        row.change(proc);
        const Confinement found =
            confinementOf(FakeProc::other, row.label, ProcDirectory(proc.path()));
        EXPECT_EQ(found.isConfined, row.isConfined) << row.what;
        EXPECT_EQ(found.name, row.name) << row.what;
    }
    const FakeProc proc;
    for (const ProcessId gone : {0, -1, 4711}) {
        const Confinement found = confinementOf(gone, {}, ProcDirectory(proc.path()));
        EXPECT_TRUE(found.isConfined);
        EXPECT_EQ(found.name, "");
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
        QString fresh;
        waitUntil([&] {
            for (const QString& name : names()) {
                if (name.startsWith(':') && !known.contains(name))
                    fresh = name;
            }
            return !fresh.isEmpty();
        });
        return fresh;
    }
    QStringList names() {
        return own
            .call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                 "org.freedesktop.DBus", "ListNames"))
            .arguments()
            .value(0)
            .toStringList();
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
    const pid_t child = ::fork();
    if (child == 0) {
        ::pause();
        ::_exit(0);
    }
    const int held = static_cast<int>(::syscall(SYS_pidfd_open, child, 0));
    const QVariantMap credentials{
        {"ProcessID", static_cast<uint>(::getpid())},
        {"ProcessFD", QVariant::fromValue(QDBusUnixFileDescriptor(held))}};
    EXPECT_FALSE(callers.callerOf(credentials).isConfined);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(callers.callerOf(credentials).isConfined);
    ::close(held);
}

} // namespace
} // namespace velmorquit
